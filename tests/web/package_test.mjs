// The package folder is whole, holds nothing else, and is small.
import assert from "node:assert/strict";
import fs from "node:fs";
import path from "node:path";
import test from "node:test";

import { importFromPackage, packageFolder, readSource } from "./kit.mjs";

const description = JSON.parse(fs.readFileSync(path.join(packageFolder, "package.json"), "utf8"));
const files = fs.readdirSync(packageFolder, { recursive: true, withFileTypes: false })
  .map(String);
const isIn = (name) => fs.existsSync(path.join(packageFolder, name));

test("the program is small", () => {
  const { size } = fs.statSync(path.join(packageFolder, "mirvo.wasm"));
  assert.ok(size < Number(process.argv[2]), `${size} bytes`);
});

test("everything that is named is there", () => {
  const named = [description.types, ...Object.values(description.bin),
    ...Object.values(description.exports).flatMap((entry) =>
      typeof entry === "string" ? [entry] : Object.values(entry))];
  for (const name of named) assert.ok(isIn(name), name);
  for (const name of ["LICENCE.txt", "README.md"]) assert.ok(isIn(name), name);
  assert.equal(description.dependencies, undefined);
  assert.equal(fs.readFileSync(path.join(packageFolder, "LICENCE.txt"), "utf8"),
    readSource("packaging/LICENCE.txt"));
});

test("scripts import scripts of the package, and Node's in Node's only", () => {
  for (const name of files.filter((file) => /\.m?js$/.test(file))) {
    const text = fs.readFileSync(path.join(packageFolder, name), "utf8");
    const targets = [...text.matchAll(/(?:from|import) "([^"]+)"/g)].map((match) => match[1]);
    for (const target of targets) {
      if (target.startsWith("node:")) {
        assert.match(name, /^(node|command|bin)/);
      } else {
        assert.ok(isIn(path.join(path.dirname(name), target)), `${name}: ${target}`);
      }
    }
  }
});

test("the program wants what the host gives, and nothing else", async () => {
  const { Host } = await importFromPackage("host.js");
  const program = new WebAssembly.Module(
    fs.readFileSync(path.join(packageFolder, "mirvo.wasm")));
  const host = fs.readFileSync(path.join(packageFolder, "host.js"), "utf8");
  assert.ok(Host);
  for (const { name } of WebAssembly.Module.imports(program)) {
    assert.match(host, new RegExp(`\\b${name}: `), name);
  }
});
