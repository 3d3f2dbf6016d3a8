// The little server that shows the page on this machine.
import assert from "node:assert/strict";
import { spawn, spawnSync } from "node:child_process";
import fs from "node:fs";
import http from "node:http";
import net from "node:net";
import os from "node:os";
import path from "node:path";
import { after, test } from "node:test";
import { fileURLToPath } from "node:url";

import { serve } from "../../../web/page/serve.mjs";

const script = path.resolve(path.dirname(fileURLToPath(import.meta.url)), "../../../web/page/serve.mjs");
const folder = fs.mkdtempSync(path.join(os.tmpdir(), "mirvo-serve-"));
fs.mkdirSync(path.join(folder, "page/sub"), { recursive: true });
fs.writeFileSync(path.join(folder, "secret.txt"), "secret");
fs.writeFileSync(path.join(folder, "page/index.html"), "<title>page</title>");
fs.writeFileSync(path.join(folder, "page/sub/a.wasm"), "wasm");
after(() => fs.rmSync(folder, { recursive: true }));

// Sends a path as it is: `fetch` would tidy it up.
function get(server, target, method = "GET") {
  return new Promise((resolve, reject) => {
    http.request({ host: "127.0.0.1", port: server.address().port, path: target, method }, (response) => {
      let text = "";
      response.on("data", (part) => { text += part; });
      response.on("end", () => resolve({ status: response.statusCode, headers: response.headers, text }));
    }).on("error", reject).end();
  });
}

test("Files come with their kind and the isolation headers", async (context) => {
  const server = await serve(path.join(folder, "page"));
  context.after(() => server.close());
  const page = await get(server, "/");
  assert.equal(page.status, 200);
  assert.match(page.headers["content-type"], /^text\/html/);
  assert.equal(page.headers["cross-origin-opener-policy"], "same-origin");
  assert.equal(page.headers["cross-origin-embedder-policy"], "require-corp");
  assert.equal((await get(server, "/sub/a.wasm?x#y")).headers["content-type"], "application/wasm");
  assert.equal((await get(server, "/index.html", "HEAD")).text, "");
});

test("The headers can be left out", async (context) => {
  const server = await serve(path.join(folder, "page"), { isolated: false });
  context.after(() => server.close());
  assert.equal((await get(server, "/")).headers["cross-origin-opener-policy"], undefined);
});

test("Nothing outside the folder is shown, and only reading is possible", async (context) => {
  const server = await serve(path.join(folder, "page"));
  context.after(() => server.close());
  const targets = ["/../secret.txt", "/%2e%2e/secret.txt", "/..%2fsecret.txt", "//secret.txt", "/sub", "/nothing", "/%00", "/%", "/sub/..%5c..%5csecret.txt"];
  for (const target of targets) {
    const answer = await get(server, target);
    assert.equal(answer.status, 404, target);
    assert.doesNotMatch(answer.text, /secret/);
  }
  assert.equal((await get(server, "/", "POST")).status, 404);
});

test("The address is printed, and is this machine's alone", async () => {
  const child = spawn(process.execPath, [script, "--port", "0", path.join(folder, "page")]);
  const line = await new Promise((resolve) => { child.stdout.once("data", (data) => resolve(String(data))); });
  child.kill();
  assert.match(line, /^Mirvo is at http:\/\/127\.0\.0\.1:\d+\/ /);
});

test("A port that is taken or none is told", async (context) => {
  const other = net.createServer().listen(0, "127.0.0.1");
  context.after(() => other.close());
  await new Promise((resolve) => { other.once("listening", resolve); });
  for (const [port, message] of [[String(other.address().port), /choose another with --port N/], ["x", /needs a number/]]) {
    const child = spawn(process.execPath, [script, "--port", port, folder]);
    let text = "";
    child.stderr.on("data", (data) => { text += data; });
    const status = await new Promise((resolve) => { child.on("close", resolve); });
    assert.equal(status, 1);
    assert.match(text, message);
  }
});

test("web/serve.sh tells its options, and refuses others before it does anything", () => {
  const run = (...words) => spawnSync("bash", [path.join(path.dirname(script), "../serve.sh"), ...words], { encoding: "utf8" });
  const help = run("--help");
  assert.equal(help.status, 0);
  for (const option of ["--port N", "--no-build", "--no-isolation"]) assert.ok(help.stdout.includes(option), option);
  for (const words of [["--nonsense"], ["--port"], ["--port", "x"]]) {
    const { status, stdout, stderr } = run(...words);
    assert.equal(status, 2, words.join(" "));
    assert.equal(stdout, "");
    assert.match(stderr, /^serve\.sh: /);
  }
});
