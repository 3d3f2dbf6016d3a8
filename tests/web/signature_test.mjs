// The program searches as many nodes as every other build.
import assert from "node:assert/strict";
import test from "node:test";

import { LocalEngine, linesOf, positionCommand, readSource } from "./kit.mjs";

const depth = 7;

function countNodes(fen) {
  const engine = new LocalEngine();
  engine.ask("uci");
  engine.ask(positionCommand(fen));
  const counts = engine.ask(`go depth ${depth}`)
    .map((line) => / score .* nodes (\d+)/.exec(line)?.[1])
    .filter((count) => count !== undefined);
  return Number(counts.at(-1));
}

test("node signature", () => {
  const stored = linesOf(readSource("tests/data/signature.txt"))
    .filter((line) => line.includes("|") && !line.startsWith("#"))
    .map((line) => line.split(" | "));
  assert.ok(stored.length > 30);
  for (const [name, fen, nodes] of stored) assert.equal(countNodes(fen), Number(nodes), name);
});
