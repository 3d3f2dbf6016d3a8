// The scripts for browsers: worker.js spoken to in strings, and createEngine of
// index.js, on a page that is isolated and on one that is not.
import assert from "node:assert/strict";
import path from "node:path";
import test from "node:test";
import { pathToFileURL } from "node:url";

import { importFromPackage, packageFolder } from "./kit.mjs";
import "./worker_shim.mjs";

const workerUrl = pathToFileURL(path.join(packageFolder, "worker.js"));

for (const isolated of [true, false]) {
  const page = isolated ? "an isolated page" : "any page";

  test(`strings to and from worker.js on ${page}`, async () => {
    globalThis.crossOriginIsolated = isolated;
    const worker = new Worker(workerUrl);
    const lines = [];
    await new Promise((resolve, reject) => {
      worker.onerror = reject;
      worker.onmessage = ({ data }) => {
        lines.push(data);
        if (data === "readyok") {
          worker.postMessage("position startpos moves a2a3 h7h6"); // in no book
          worker.postMessage(isolated ? "go infinite" : "go depth 6");
        }
        if (/ depth 6 .* pv /.test(data)) worker.postMessage("stop");
        if (/^bestmove/.test(data)) resolve();
      };
      worker.postMessage("uci");
      worker.postMessage("isready");
    });
    assert.ok(lines.includes("uciok"));
    assert.ok(lines.every((line) => typeof line === "string" && !line.includes("\n")));
    assert.match(lines[0], /^Welcome/);
    const closed = new Promise((resolve) => {
      worker.onclose = resolve;
    });
    worker.postMessage("quit");
    await closed;
  });

  test(`createEngine on ${page}`, async () => {
    globalThis.crossOriginIsolated = isolated;
    const { createEngine } = await importFromPackage("index.js");
    const engine = await createEngine({ files: { "book.bk": null } });
    assert.equal(engine.interruptible, isolated);
    const first = new Promise((resolve) => {
      engine.addEventListener("line", resolve, { once: true });
    });
    assert.match((await first).line, /^Welcome/);
    const answered = new Promise((resolve) => {
      engine.addEventListener("line", (event) => event.line.startsWith("bestmove") && resolve());
    });
    engine.send("uci");
    engine.send("position startpos");
    engine.send("go depth 4");
    await answered;
    assert.equal(await engine.quit(), 0);
  });
}

test("files that are not there reject", async () => {
  globalThis.location = pathToFileURL(`${packageFolder}/`);
  const { createEngine } = await importFromPackage("index.js");
  await assert.rejects(createEngine({ folder: "nowhere/" }), /404/);
  const engine = await createEngine({ folder: "./", args: ["-perft", "1"] });
  const status = await new Promise((resolve) => {
    engine.addEventListener("exit", (event) => resolve(event.status));
  });
  assert.equal(status, 0);
});
