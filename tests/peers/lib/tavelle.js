"use strict";
const { spawn } = require("node:child_process");
const { text } = require("node:stream/consumers");

// Tavelle's own client: LLMService::reword with these arguments. Resolves with { answer } or { error }.
async function reword(given) {
  const process_ = spawn(process.env.TAVELLE_SEND, { stdio: ["pipe", "pipe", "inherit"] });
  process_.stdin.end(JSON.stringify(given));
  return JSON.parse(await text(process_.stdout));
}

const oddText =
  'He said "it\'s a \\ test"\n\tand \u2028 \u007f' +
  '👩‍👩‍👧‍👦 ﷽ \u202Eright to left\u202C </script> \u0000';

// Requests worth comparing; what a provider wants beside them is added by its test.
const requests = [
  { text: "i cant come tommorow", systemPrompt: "Reword the following text.", temperature: 0.7 },
  { text: oddText, systemPrompt: "", temperature: 1 },
  { text: "x".repeat(100000), systemPrompt: "Übersetze.\nNur den Text.", temperature: 0 },
];

module.exports = { reword, requests };
