"use strict";
const assert = require("node:assert/strict");
const { after, before, test } = require("node:test");
const { ApiError, GoogleGenAI } = require("@google/genai");

const { assertSameRequest } = require("./lib/compare");
const { assertDeclared } = require("./lib/declarations");
const { StandIn } = require("./lib/standIn");
const { requests, reword } = require("./lib/tavelle");

const key = "made-up-key";
const model = "gemini-2.0-flash";
let standIn, theirs;

before(async () => {
  standIn = await StandIn.start(key);
  theirs = new GoogleGenAI({ apiKey: key, httpOptions: { baseUrl: standIn.url } });
});
after(() => standIn.stop());

const ours = (given) => reword({ provider: "gemini", model, baseURL: `${standIn.url}/v1beta`, apiKey: key, ...given });

const parametersOf = ({ text, systemPrompt, temperature }) => ({
  model,
  contents: [{ role: "user", parts: [{ text }] }],
  config: { systemInstruction: { parts: [{ text: systemPrompt }] }, temperature, maxOutputTokens: 4096 },
});

test("both clients send the same request, and read the same answer", async () => {
  for (const request of requests) {
    const response = await theirs.models.generateContent(parametersOf(request));
    assert.deepEqual(await ours(request), { answer: response.text.trim() });
    const [their, our] = standIn.takeRequests();
    assertSameRequest(our, their, {
      // Tavelle's key travels in the query and in no header.
      query: { ours: `key=${key}`, theirs: null },
      headers: { "x-goog-api-key": { theirs: /^made-up-key$/ }, "x-goog-api-client": { theirs: /^google-genai-sdk\// } },
    });
  }
});

test("request and answer are what the declarations say", async () => {
  await theirs.models.generateContent(parametersOf(requests[0]));
  await ours(requests[0]);
  const [their, our] = standIn.takeRequests();
  const { "content-length": _, ...headers } = their.headers;
  const response = await fetch(standIn.url + their.path, { method: "POST", headers, body: JSON.stringify(their.body) });
  assertDeclared(
    `import type { Content, GenerateContentResponse, GenerationConfig } from "@google/genai";
     // On the wire an enumeration's value is its text.
     type Wire<T> = T extends string ? \`\${T}\` : T extends object ? { [K in keyof T]: Wire<T[K]> } : T;
     type Request = { contents: Content[]; systemInstruction: Content; generationConfig: GenerationConfig };
     type Response = Pick<GenerateContentResponse, "candidates" | "modelVersion" | "responseId" | "usageMetadata">;`,
    [
      ["Wire<Request>", our.body],
      ["Wire<Response>", await response.json()],
    ],
  );
});

test("a refusal is of the kind that their client knows", async () => {
  const good = parametersOf(requests[0]);
  const stranger = new GoogleGenAI({ apiKey: "another", httpOptions: { baseUrl: standIn.url } });
  const refused = (client, parameters, code, status) =>
    assert.rejects(client.models.generateContent(parameters), (error) => {
      assert.ok(error instanceof ApiError, String(error));
      assert.equal(error.status, code);
      const body = JSON.parse(error.message);
      assert.deepEqual([body.error.code, body.error.status], [code, status]);
      return true;
    });
  await refused(stranger, good, 400, "INVALID_ARGUMENT");
  await refused(theirs, { ...good, model: "no-such-model" }, 404, "NOT_FOUND");
  await refused(theirs, { ...good, contents: [{ role: "stranger", parts: [{ text: "hi" }] }] }, 400, "INVALID_ARGUMENT");
  await refused(theirs, { ...good, config: { temperature: 3 } }, 400, "INVALID_ARGUMENT");
  await refused(theirs, { ...good, config: { maxOutputTokens: 0.5 } }, 400, "INVALID_ARGUMENT");
});
