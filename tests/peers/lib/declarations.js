"use strict";
// The clients' type declarations as the schema of a wire format: a JSON value has to be of the declared type, without a
// member too many.

const assert = require("node:assert/strict");
const path = require("node:path");
const ts = require("typescript");

const file = path.join(process.env.NODE_PATH, "..", "declared.ts");
const options = {
  strict: true,
  noEmit: true,
  skipLibCheck: true,
  target: ts.ScriptTarget.ES2022,
  module: ts.ModuleKind.Node16,
  types: [],
};

// `values`: [type, JSON value] pairs; `preamble`: imports and helper types.
function assertDeclared(preamble, values) {
  const lines = values.map(([type, value], index) => `export const value${index}: ${type} = ${JSON.stringify(value)};`);
  const source = [preamble, ...lines].join("\n");
  const host = ts.createCompilerHost(options);
  const { getSourceFile, fileExists, readFile } = host;
  host.fileExists = (name) => name === file || fileExists(name);
  host.readFile = (name) => (name === file ? source : readFile(name));
  host.getSourceFile = (name, ...more) =>
    name === file ? ts.createSourceFile(name, source, options.target) : getSourceFile(name, ...more);

  const checked = ts.createProgram([file], options, host);
  const found = ts.getPreEmitDiagnostics(checked, checked.getSourceFile(file));
  assert.equal(found.map((each) => ts.flattenDiagnosticMessageText(each.messageText, "\n")).join("\n"), "");
}

module.exports = { assertDeclared };
