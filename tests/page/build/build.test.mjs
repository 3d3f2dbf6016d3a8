// What is built: the same bytes each time, complete, and nothing that asks others.
import assert from "node:assert/strict";
import { execFileSync, spawnSync } from "node:child_process";
import fs from "node:fs";
import os from "node:os";
import path from "node:path";
import { after, test } from "node:test";
import { fileURLToPath } from "node:url";

import { zipOf } from "../../../web/page/make_zip.mjs";

const source = path.resolve(path.dirname(fileURLToPath(import.meta.url)), "../../..");
const enginePackage = process.env.MIRVO_PACKAGE ?? path.join(source, "build/web/package");
const built = process.env.MIRVO_PAGE ?? path.join(source, "build/web/page");
const folder = fs.mkdtempSync(path.join(os.tmpdir(), "mirvo-page-"));
after(() => fs.rmSync(folder, { recursive: true }));

function build(...words) {
  return spawnSync(process.execPath, [path.join(source, "web/page/build.mjs"), ...words], { cwd: folder, encoding: "utf8" });
}

function contentsOf(place, prefix = "") {
  return fs.readdirSync(path.join(place, prefix), { withFileTypes: true }).flatMap((entry) => (entry.isDirectory()
    ? contentsOf(place, `${prefix}${entry.name}/`)
    : [[prefix + entry.name, fs.readFileSync(path.join(place, prefix, entry.name)).toString("latin1")]])).sort();
}

test("The page is the same wherever it is built, and so is its archive", () => {
  const again = path.join(folder, "deep/er/page");
  assert.equal(build(enginePackage, again).status, 0);
  assert.deepEqual(contentsOf(again), contentsOf(built));
  assert.deepEqual(zipOf(again), zipOf(built));
});

test("Names and the offline copy's version follow the contents", () => {
  const changed = path.join(folder, "package");
  fs.cpSync(enginePackage, changed, { recursive: true });
  fs.appendFileSync(path.join(changed, "config.txt"), "Ponder=0\n");
  const other = path.join(folder, "other");
  assert.equal(build(changed, other).status, 0);
  const engineOf = (place) => fs.readdirSync(place).find((name) => name.startsWith("engine-"));
  const versionOf = (place) => /VERSION = "(\w+)"/.exec(fs.readFileSync(path.join(place, "service_worker.js"), "utf8"))[1];
  assert.notEqual(engineOf(other), engineOf(built));
  assert.notEqual(versionOf(other), versionOf(built));
});

test("The offline copy holds every file but itself", () => {
  const listed = JSON.parse(/FILES = (\[.*\]);/.exec(fs.readFileSync(path.join(built, "service_worker.js"), "utf8"))[1]);
  const there = contentsOf(built).map(([name]) => name).filter((name) => name !== "service_worker.js");
  assert.deepEqual(listed.sort(), there);
});

test("The page names no other host", () => {
  const own = /^(index\.html|mirvo-\w+\.(js|css)|service_worker\.js|manifest\.webmanifest|icon\.svg)$/;
  for (const [name, text] of contentsOf(built).filter(([file]) => own.test(file))) {
    const hosts = (text.match(/\b(?:https?|wss?):\/\/[^\s"'`)<]+/g) ?? [])
      .filter((address) => !address.startsWith("http://www.w3.org/"));
    assert.deepEqual(hosts, [], name);
  }
});

test("The licences of all parts are told", () => {
  const text = fs.readFileSync(path.join(built, "LICENCES.txt"), "utf8");
  for (const part of [/chess\.js 1\./, /BSD-2-Clause/, /cm-chessboard 8\./, /\(MIT\)/, /Jeff Hlywa/, /Stefan Haack/]) assert.match(text, part);
});

test("The policy of the page allows its own scripts and nothing else", () => {
  const html = fs.readFileSync(path.join(built, "index.html"), "utf8");
  const policy = /Content-Security-Policy" content="([^"]+)"/.exec(html)[1].split("; ");
  assert.ok(policy.includes("default-src 'none'"));
  assert.ok(policy.includes("script-src 'self' 'wasm-unsafe-eval'"));
  assert.doesNotMatch(html, / on\w+="|<script(?! type="module" src=)|javascript:|%[A-Z]+%/);
});

test("Every file of the sources is named where the build looks for changes", () => {
  const listed = fs.readFileSync(path.join(source, "web/page/CMakeLists.txt"), "utf8");
  for (const place of ["src", "static"]) {
    for (const name of fs.readdirSync(path.join(source, "web/page", place))) assert.ok(listed.includes(`${place}/${name}\n`), name);
  }
});

test("Without the engine's package the build says what to do", () => {
  const { status, stderr } = build(path.join(folder, "nothing"), path.join(folder, "page"));
  assert.notEqual(status, 0);
  assert.match(stderr, /build the preset "web" first/);
});

test("The archive is one that others can read", () => {
  const archive = path.join(folder, "page.zip");
  fs.writeFileSync(archive, zipOf(built));
  const check = "import sys, zipfile\nz = zipfile.ZipFile(sys.argv[1])\nassert z.testzip() is None\n"
    + "print('\\n'.join(f'{i.filename} {i.date_time[0]} {i.external_attr >> 16:o} {i.file_size}' for i in z.infolist()))";
  const listing = execFileSync("/usr/bin/python3", ["-c", check, archive], { encoding: "utf8" }).trim().split("\n");
  const expected = contentsOf(built).map(([name, text]) => `mirvo-web/${name} 1980 100644 ${text.length}`);
  assert.deepEqual(listing, expected);
});
