// bin/mirvo.mjs as a program: pipes, files, signals, exit status.
import assert from "node:assert/strict";
import { execFileSync, spawn } from "node:child_process";
import fs from "node:fs";
import os from "node:os";
import path from "node:path";
import test from "node:test";

import { packageFolder } from "./kit.mjs";

const program = path.join(packageFolder, "bin/mirvo.mjs");
const logName = "mirvo_0.2.7_d_log.txt";

function emptyFolder() {
  const folder = fs.mkdtempSync(path.join(os.tmpdir(), "mirvo-web-"));
  process.on("exit", () => fs.rmSync(folder, { recursive: true }));
  return folder;
}

// Whatever fails, nothing stays behind.
const sessions = [];
process.on("exit", () => sessions.forEach(({ child }) => child.kill("SIGKILL")));

class Session {
  text = "";
  #wake = () => {};

  constructor(args = [], folder = emptyFolder()) {
    sessions.push(this);
    this.child = spawn(process.execPath, [program, ...args], { cwd: folder });
    this.child.stdout.setEncoding("utf8").on("data", (data) => {
      this.text += data;
      this.#wake();
    });
    this.child.stdin.on("error", () => {});
    this.errors = "";
    this.child.stderr.on("data", (data) => {
      this.errors += data;
    });
    this.end = new Promise((resolve) => {
      this.child.on("close", (status, signal) => resolve({ status, signal }));
    });
  }

  send(lines) {
    this.child.stdin.write(`${lines}\n`);
  }

  async expect(pattern) {
    let begin = 0;
    for (;;) {
      const match = pattern.exec(this.text.slice(begin));
      if (match) return match;
      begin = Math.max(0, this.text.length - 1000);
      await new Promise((resolve) => {
        this.#wake = resolve;
      });
    }
  }
}

test("the end of the input ends the engine, behind the search", async () => {
  const session = new Session();
  session.send("uci\nsetoption name Use Opening Book value false\nposition startpos\ngo depth 7");
  session.child.stdin.end();
  assert.deepEqual(await session.end, { status: 0, signal: null });
  assert.match(session.text, /\nbestmove [a-h]/);
  assert.equal(session.errors, "");
});

test("an endless search ends with the input", async () => {
  const session = new Session();
  session.send("uci\nposition startpos moves a2a3 a7a6 h2h3 h7h6\ngo infinite");
  await session.expect(/ depth 5 /);
  session.child.stdin.end();
  assert.deepEqual(await session.end, { status: 0, signal: null });
  assert.match(session.text, /\nbestmove [a-h]/);
});

test("input of any size arrives", async () => {
  const session = new Session();
  session.send("uci");
  session.send("isready\n".repeat(50000) + "quit");
  assert.deepEqual(await session.end, { status: 0, signal: null });
  assert.equal(session.text.match(/^readyok$/gm).length, 50000);
});

test("commands read no input and leave with their status", () => {
  const text = execFileSync(process.execPath, [program, "-perft", "4"], {
    encoding: "utf8", cwd: emptyFolder(), stdio: ["ignore", "pipe", "inherit"],
  });
  assert.match(text, /\n4 +197281\n$/);
});

test("settings and book come from the folder, or else from the package", async () => {
  const folder = emptyFolder();
  const plain = new Session([], folder);
  plain.send("uci\nquit");
  await plain.end;
  assert.match(plain.text, /TTHashSize=16\n/);
  assert.deepEqual(fs.readdirSync(folder), [logName]);
  assert.equal(fs.readFileSync(path.join(folder, logName), "utf8"), plain.text);

  fs.writeFileSync(path.join(folder, "config.txt"), "TTHashSize=3\n");
  const own = new Session([], folder);
  own.send("uci\nquit");
  await own.end;
  assert.match(own.text, /TTHashSize=3\n/);
});

test("an interrupt ends it, in the middle of a search too", async () => {
  const session = new Session();
  session.send("uci\nposition startpos moves a2a3\ngo infinite");
  await session.expect(/ depth 5 /);
  session.child.kill("SIGINT");
  assert.deepEqual(await session.end, { status: null, signal: "SIGINT" });
});

test("under XBoard an interrupt is ignored and a request to terminate followed", async () => {
  const session = new Session();
  session.send("xboard");
  await session.expect(/feature .*done=1\n/);
  session.child.kill("SIGINT");
  session.send("uci");
  await session.expect(/uciok\n/);
  session.send("xboard");
  await session.expect(/done=1\n[^]*done=1\n/);
  session.child.kill("SIGTERM");
  assert.deepEqual(await session.end, { status: 0, signal: null });
});

test("a command whose output nobody reads any more ends", async () => {
  const session = new Session(["-bookstats", "book.bk"]);
  session.child.stdout.destroy();
  assert.deepEqual(await session.end, { status: 141, signal: null });
});
