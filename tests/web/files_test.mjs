// The files in memory behave as those of a disk, where the program looks; output
// becomes lines wherever it is cut.
import assert from "node:assert/strict";
import test from "node:test";

import { importFromPackage } from "./kit.mjs";

const { LineConsole } = await importFromPackage("line_console.js");
const { MemoryFiles } = await importFromPackage("memory_files.js");
const flags = await importFromPackage("file_errors.js");

const name = (text) => new TextEncoder().encode(text);
const bytes = name;

function readAll(file) {
  const target = new Uint8Array(1000);
  return new TextDecoder().decode(target.slice(0, file.read(target)));
}

test("files that are there are read", () => {
  const files = new MemoryFiles({ "config.txt": "Ponder=1\n", "b.bk": bytes("xyz"), "no.bk": null });
  assert.equal(readAll(files.open(name("config.txt"), 0)), "Ponder=1\n");
  const book = files.open(name("./b.bk"), 0);
  assert.equal(book.seek(0, 2), 3);
  assert.equal(readAll(book), "");
  assert.equal(book.seek(-2, 1), 1);
  assert.equal(readAll(book), "yz");
  assert.throws(() => book.seek(-1, 0), { code: "EINVAL" });
  assert.throws(() => book.write(bytes("q")), { code: "EBADF" });
  for (const missing of ["no.bk", "CONFIG.TXT", "folder/config.txt", ""]) {
    assert.throws(() => files.open(name(missing), 0), { code: "ENOENT" }, missing);
  }
});

test("an engine's files are its own", () => {
  const given = bytes("xyz");
  const files = new MemoryFiles({ "./b.bk": given });
  given[0] = 0;
  const file = files.open(name("b.bk"), flags.readWrite);
  assert.equal(readAll(file), "xyz");
  file.seek(0, 0);
  file.write(bytes("abc"));
  assert.equal(given[1], 121);
});

test("lines of output, in pieces or many at a time", () => {
  const lines = [];
  const console = new LineConsole((line) => lines.push(line));
  for (const piece of ["Setup", ".", ".Done.\n\nu", "ciok\nid \u00e9\nrest"]) {
    for (const byte of piece === "." ? [bytes(piece)] : [...bytes(piece)].map((b) => [b])) {
      console.write(Uint8Array.from(byte));
    }
  }
  console.write(bytes("a\nb\nc"));
  assert.deepEqual(lines, ["Setup..Done.", "", "uciok", "id \u00e9", "resta", "b"]);
  console.finish();
  console.finish();
  assert.deepEqual(lines.slice(6), ["c"]);
});

test("files are written, and told of at the end", () => {
  const files = new MemoryFiles({ "old.txt": "old contents", "same.txt": "same" });
  const log = files.open(name("log.txt"), flags.readWrite | flags.create | flags.truncate);
  assert.equal(log.write(bytes("one\n")), 4);
  log.write(bytes("two\n"));
  log.seek(0, 0);
  assert.equal(readAll(log), "one\ntwo\n");
  log.seek(10, 0);
  log.write(bytes("far"));
  files.open(name("old.txt"), flags.writeOnly | flags.create | flags.truncate).write(bytes("new"));
  files.open(name("old.txt"), flags.writeOnly | flags.append).write(bytes("er"));
  const written = Object.fromEntries(Object.entries(files.written())
    .map(([file, contents]) => [file, new TextDecoder().decode(contents)]));
  assert.deepEqual(written, { "log.txt": "one\ntwo\n\0\0far", "old.txt": "newer" });
  assert.throws(() => files.open(name("no/where.txt"), flags.writeOnly | flags.create),
    { code: "ENOENT" });
  files.remove(name("old.txt"));
  assert.throws(() => files.open(name("old.txt"), 0), { code: "ENOENT" });
  assert.throws(() => files.remove(name("old.txt")), { code: "ENOENT" });
});

test("a large file grows without losing anything", () => {
  const files = new MemoryFiles({});
  const file = files.open(name("big"), flags.writeOnly | flags.create);
  for (let i = 0; i < 1000; ++i) file.write(new Uint8Array(777).fill(i % 256));
  const { big } = files.written();
  assert.equal(big.length, 777000);
  assert.ok(big.every((byte, index) => byte === Math.floor(index / 777) % 256));
});
