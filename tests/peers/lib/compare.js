"use strict";
// Compares two requests whole: what differs has to be named, and what is named has to differ.

const assert = require("node:assert/strict");

// How node's HTTP client differs from libcurl, whatever is sent.
const transport = {
  "accept-encoding": { ours: /gzip/, theirs: /gzip/ },
  "accept-language": { theirs: /^\*$/ },
  connection: { theirs: /^keep-alive$/ },
  "sec-fetch-mode": { theirs: /^cors$/ },
  "user-agent": { ours: /^Tavelle\//, theirs: /./ },
};

// What the clients of OpenAI and Anthropic add, which one generator wrote: that they want JSON, where Tavelle takes what comes, and
// what machine they run on, of which Tavelle tells nothing.
const generated = {
  accept: { ours: /^\*\/\*$/, theirs: /^application\/json$/ },
  "x-stainless-arch": { theirs: /./ },
  "x-stainless-lang": { theirs: /^js$/ },
  "x-stainless-os": { theirs: /./ },
  "x-stainless-package-version": { theirs: /./ },
  "x-stainless-retry-count": { theirs: /^0$/ },
  "x-stainless-runtime": { theirs: /^node$/ },
  "x-stainless-runtime-version": { theirs: /./ },
};

function assertSide(value, pattern, where) {
  if (pattern) assert.match(value ?? "(absent)", pattern, where);
  else assert.equal(value, undefined, `${where} is expected to be absent`);
}

// `headers`: the differences by name, each with a pattern of our value and of theirs; no pattern: the header is absent.
// `query`: ours and theirs, where they differ.
function assertSameRequest(ours, theirs, { headers = {}, query } = {}) {
  assert.equal(ours.method, theirs.method);
  assert.equal(ours.path, theirs.path);
  if (query) assert.deepEqual([ours.query, theirs.query], [query.ours, query.theirs]);
  else assert.equal(ours.query, theirs.query);

  const differences = { ...transport, ...headers };
  for (const name of new Set([...Object.keys(ours.headers), ...Object.keys(theirs.headers), ...Object.keys(differences)])) {
    const difference = differences[name];
    if (!difference) {
      assert.equal(ours.headers[name], theirs.headers[name], `header ${name}`);
      continue;
    }
    assertSide(ours.headers[name], difference.ours, `our ${name}`);
    assertSide(theirs.headers[name], difference.theirs, `their ${name}`);
    assert.notEqual(ours.headers[name], theirs.headers[name], `${name} is named as a difference`);
  }

  assert.deepEqual(Object.keys(ours.body).sort(), Object.keys(theirs.body).sort());
  for (const member of Object.keys(theirs.body)) assert.deepEqual(ours.body[member], theirs.body[member], `member ${member}`);
}

module.exports = { assertSameRequest, generated };
