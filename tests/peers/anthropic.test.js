"use strict";
const assert = require("node:assert/strict");
const { after, before, test } = require("node:test");
const Anthropic = require("@anthropic-ai/sdk");

const { assertSameRequest, generated } = require("./lib/compare");
const { assertDeclared } = require("./lib/declarations");
const { StandIn } = require("./lib/standIn");
const { requests, reword } = require("./lib/tavelle");

const key = "made-up key & #1";
const model = "claude-sonnet-4-20250514";
let standIn, theirs;

before(async () => {
  standIn = await StandIn.start(key);
  theirs = new Anthropic({ apiKey: key, baseURL: standIn.url, maxRetries: 0 });
});
after(() => standIn.stop());

const ours = (given) => reword({ provider: "anthropic", model, baseURL: `${standIn.url}/v1`, apiKey: key, ...given });

const bodyOf = ({ text, systemPrompt, temperature }) => ({
  model,
  max_tokens: 4096,
  temperature,
  system: systemPrompt,
  messages: [{ role: "user", content: text }],
});

test("both clients send the same request, and read the same answer", async () => {
  for (const request of requests) {
    const message = await theirs.messages.create(bodyOf(request));
    assert.deepEqual(await ours(request), { answer: message.content[0].text.trim() });
    const [their, our] = standIn.takeRequests();
    // Their client tells the server how long it will wait.
    assertSameRequest(our, their, { headers: { ...generated, "x-stainless-timeout": { theirs: /^\d+$/ } } });
  }
});

test("request and answer are what the declarations say", async () => {
  const response = await theirs.messages.create(bodyOf(requests[0])).asResponse();
  await ours(requests[0]);
  const [, our] = standIn.takeRequests();
  assertDeclared('import type { Anthropic } from "@anthropic-ai/sdk";', [
    ["Anthropic.MessageCreateParamsNonStreaming", our.body],
    ["Anthropic.Message", await response.json()],
  ]);
});

test("a refusal is of the kind that their client knows", async () => {
  const good = bodyOf(requests[0]);
  const clientWith = (given) => new Anthropic({ apiKey: key, baseURL: standIn.url, maxRetries: 0, ...given });
  const refused = (client, body, kind, status, type) =>
    assert.rejects(client.messages.create(body), (error) => {
      assert.ok(error instanceof kind, String(error));
      assert.equal(error.status, status);
      assert.equal(error.error.type, "error");
      assert.equal(error.error.error.type, type);
      assert.ok(error.requestID, "the request's number");
      return true;
    });
  await refused(clientWith({ apiKey: "another" }), good, Anthropic.AuthenticationError, 401, "authentication_error");
  await refused(theirs, { ...good, model: "no-such-model" }, Anthropic.NotFoundError, 404, "not_found_error");

  const invalid = (client, body) => refused(client, body, Anthropic.BadRequestError, 400, "invalid_request_error");
  await invalid(clientWith({ defaultHeaders: { "anthropic-version": null } }), good);
  await invalid(theirs, { ...good, max_tokens: undefined });
  await invalid(theirs, { ...good, max_tokens: 4096.5 });
  await invalid(theirs, { ...good, messages: [] });
  await invalid(theirs, { ...good, messages: [{ role: "system", content: "as OpenAI has it" }] });
  await invalid(theirs, { ...good, temperature: 1.5 });
  await invalid(theirs, { ...good, max_toks: 1 });
});
