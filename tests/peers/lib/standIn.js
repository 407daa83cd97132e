"use strict";
// The stand-in as the recorder in front of which both clients send, and as the server whose answers are judged.

const { spawn } = require("node:child_process");
const fs = require("node:fs");
const os = require("node:os");
const path = require("node:path");
const readline = require("node:readline");

const program = path.join(__dirname, "../../../tools/stand-in/stand-in.py");

class StandIn {
  // Resolves once it listens. `key` is the only one that it takes.
  static async start(key) {
    const folder = fs.mkdtempSync(path.join(os.tmpdir(), "tavelle-peers-"));
    const log = path.join(folder, "log");
    const command = ["-B", program, "--until-input-closes", "--log", log, "--log-secrets", "--key", key];
    const process_ = spawn("/usr/bin/python3", command, { stdio: ["pipe", "pipe", "inherit"] });
    for await (const line of readline.createInterface({ input: process_.stdout })) {
      return new StandIn(process_, folder, `http://127.0.0.1:${line.split(" ").at(-1)}`);
    }
    throw new Error("the stand-in did not start");
  }

  constructor(process_, folder, url) {
    this.process = process_;
    this.folder = folder;
    this.url = url;
  }

  // What was received since the last call: { method, path, query, headers, body }; header names in lower case, the body parsed.
  takeRequests() {
    const log = path.join(this.folder, "log");
    const lines = fs.readFileSync(log, "utf8").split("\n").filter(Boolean);
    fs.truncateSync(log);
    return lines.map(JSON.parse).map(({ method, path: target, headers, body }) => {
      const [path_, query = null] = target.split("?");
      const named = Object.fromEntries(headers.map(([name, value]) => [name.toLowerCase(), value]));
      return { method, path: path_, query, headers: named, body: JSON.parse(body) };
    });
  }

  async stop() {
    const ended = new Promise((resolve) => this.process.once("exit", resolve));
    this.process.stdin.end();
    await ended;
    fs.rmSync(this.folder, { recursive: true });
  }
}

module.exports = { StandIn };
