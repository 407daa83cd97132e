"use strict";
const assert = require("node:assert/strict");
const { after, before, test } = require("node:test");
const OpenAI = require("openai");

const { assertSameRequest, generated } = require("./lib/compare");
const { assertDeclared } = require("./lib/declarations");
const { StandIn } = require("./lib/standIn");
const { requests, reword } = require("./lib/tavelle");

const key = "made-up key & #1";
const model = "gpt-4o";
let standIn, theirs;

before(async () => {
  standIn = await StandIn.start(key);
  theirs = new OpenAI({ apiKey: key, baseURL: `${standIn.url}/v1`, maxRetries: 0 });
});
after(() => standIn.stop());

const ours = (given) => reword({ provider: "openai", model, baseURL: `${standIn.url}/v1`, apiKey: key, ...given });

const bodyOf = ({ text, systemPrompt, temperature }) => ({
  model,
  temperature,
  messages: [
    { role: "system", content: systemPrompt },
    { role: "user", content: text },
  ],
});

test("both clients send the same request, and read the same answer", async () => {
  for (const request of requests) {
    const completion = await theirs.chat.completions.create(bodyOf(request));
    assert.deepEqual(await ours(request), { answer: completion.choices[0].message.content.trim() });
    const [their, our] = standIn.takeRequests();
    assertSameRequest(our, their, { headers: generated });
  }
});

test("request and answer are what the declarations say", async () => {
  const response = await theirs.chat.completions.create(bodyOf(requests[0])).asResponse();
  await ours(requests[0]);
  const [, our] = standIn.takeRequests();
  assertDeclared('import type { OpenAI } from "openai";', [
    ["OpenAI.Chat.Completions.ChatCompletionCreateParamsNonStreaming", our.body],
    ["OpenAI.Chat.Completions.ChatCompletion", await response.json()],
  ]);
});

test("a refusal is of the kind that their client knows", async () => {
  const good = bodyOf(requests[0]);
  const stranger = new OpenAI({ apiKey: "another", baseURL: `${standIn.url}/v1`, maxRetries: 0 });
  const refused = (client, body, kind, details) =>
    assert.rejects(client.chat.completions.create(body), (error) => {
      assert.ok(error instanceof kind, String(error));
      assert.equal(error.type, "invalid_request_error");
      assert.ok(error.requestID, "the request's number");
      for (const [name, value] of Object.entries(details)) assert.equal(error[name], value, name);
      return true;
    });
  await refused(stranger, good, OpenAI.AuthenticationError, { status: 401, code: "invalid_api_key" });
  await refused(theirs, { ...good, model: "no-such-model" }, OpenAI.NotFoundError, { status: 404, code: "model_not_found" });
  await refused(theirs, { ...good, temperature: 3 }, OpenAI.BadRequestError, { status: 400, param: "temperature" });
  await refused(theirs, { ...good, messages: undefined }, OpenAI.BadRequestError, { code: "missing_required_parameter" });
  await refused(theirs, { ...good, max_toks: 1 }, OpenAI.BadRequestError, { status: 400 });

  const tooMany = encodeURIComponent('{"error":{"code":"rate_limit_exceeded"}}');
  await assert.rejects(
    theirs.chat.completions.create({ ...good, model: `misbehave:status=429,body=${tooMany}` }),
    (error) => error instanceof OpenAI.RateLimitError && error.code === "rate_limit_exceeded",
  );
});
