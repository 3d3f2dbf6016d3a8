// Evaluations and searches against the figures of a separate, simpler program.
import assert from "node:assert/strict";
import test from "node:test";

import { LocalEngine, linesOf, positionCommand, readSource, resultLines } from "./kit.mjs";

// [position, lines] of a file whose blocks begin with "position: ".
function blocks(name) {
  return readSource(`tests/data/reference/${name}`).split(/^position: /m).slice(1)
    .map((block) => linesOf(block))
    .map(([position, ...lines]) => [position, lines.filter((line) => line !== "")]);
}

test("evaluations, term by term", () => {
  const positions = blocks("evaluation.txt");
  assert.equal(positions.length, 186);
  for (const [position, [score, ...lines]] of positions) {
    const end = lines.findIndex((line) => line.startsWith("Total:")) + 1;
    const engine = new LocalEngine({ args: ["-eval", ...position.split(" ")] });
    const first = engine.lines.findIndex((line) => line.includes("material:"));
    const printed = engine.lines.slice(first).filter((line) => line !== "");
    assert.deepEqual(printed, [...lines.slice(0, end), `Full eval: ${score}`], position);
    assert.equal(engine.status, 0);
  }
});

const isResult = (line) => line.startsWith("depth") || line.startsWith("bestmove");
const trimmed = (lines) => lines.map((line) => line.trimEnd());

test("searches of new engines", () => {
  const positions = blocks("search.txt");
  assert.equal(positions.length, 40);
  for (const [position, lines] of positions) {
    const engine = new LocalEngine();
    engine.ask("uci");
    engine.ask(positionCommand(position));
    const printed = resultLines(engine.ask("go depth 7"));
    assert.deepEqual(trimmed(printed), trimmed(lines.filter(isResult)), position);
  }
});

test("searches of one engine", () => {
  const lines = linesOf(readSource("tests/data/reference/session.txt"));
  const engine = new LocalEngine();
  engine.ask("uci");
  const printed = [];
  for (const command of lines.filter((line) => line.startsWith("command: "))) {
    engine.ask(command.slice("command: ".length));
    printed.push(...resultLines(engine.ask("go depth 6")));
  }
  assert.deepEqual(trimmed(printed), trimmed(lines.filter(isResult)));
});
