import assert from "node:assert/strict";
import { test } from "node:test";

import { Game } from "../../../web/page/src/game.js";
import { gameFromText, gameToText, loadChoices, loadGame, saveChoices, saveGame } from "../../../web/page/src/storage.js";
import { longGame } from "../support/long_game.mjs";

// As the browser's: texts by name.
function storageWith(values = {}) {
  const kept = new Map(Object.entries(values));
  return { getItem: (name) => kept.get(name) ?? null, setItem: (name, value) => kept.set(name, String(value)) };
}

function sample() {
  const game = new Game();
  game.play("e4");
  game.play("e5");
  return {
    game, player: "b", limit: { kind: "clock", minutes: 3, increment: 2 },
    clocks: [null, { w: 1, b: 2 }, { w: 3, b: 4 }], scores: [null, 20, -32768], flipped: true,
  };
}

test("A game comes back as it was", () => {
  const storage = storageWith();
  const state = sample();
  state.game.declare("0-1", "Time is over: Black wins.");
  saveGame(state, storage);
  const { saved, damaged } = loadGame(storage);
  assert.equal(damaged, false);
  assert.equal(saved.game.fen, state.game.fen);
  assert.deepEqual(saved.game.outcome(), { result: "0-1", reason: "Time is over: Black wins." });
  const { game: _, ...rest } = saved;
  const { game: __, ...expected } = state;
  assert.deepEqual(rest, expected);
});

test("A game from a set-up position and a very long one come back", () => {
  const game = new Game("4k3/8/8/8/8/8/4P3/4K3 w - - 3 9");
  game.play("e4");
  assert.equal(gameFromText(gameToText({ ...sample(), game })).game.fen, game.fen);
  const long = new Game();
  for (const move of longGame(2000).moves) long.play(move);
  assert.equal(gameFromText(gameToText({ ...sample(), game: long })).game.fen, long.fen);
});

test("Nothing kept is not damage", () => {
  assert.deepEqual(loadGame(storageWith()), { saved: null, damaged: false });
});

test("Whatever else is kept is refused", () => {
  const good = JSON.parse(gameToText(sample()));
  const bad = [
    "", "{", "null", "3", "[]", "{}", '"text"', "\u0000", JSON.stringify({ ...good, format: 2 }),
    JSON.stringify({ ...good, moves: 7 }), JSON.stringify({ ...good, moves: "e2e4 e2e4" }),
    JSON.stringify({ ...good, moves: "e4" }), JSON.stringify({ ...good, start: "<b>" }),
    JSON.stringify({ ...good, start: null }), JSON.stringify({ ...good, moves: "e2e4 ".repeat(100000) }),
  ];
  for (const text of bad) assert.deepEqual(loadGame(storageWith({ "mirvo.game": text })), { saved: null, damaged: true }, text.slice(0, 60));
});

test("Odd parts of a good game are replaced", () => {
  const good = JSON.parse(gameToText(sample()));
  const odd = {
    ...good, player: "<i>", limit: { kind: "depth", depth: 1e9 }, clocks: "no", scores: [1.5, "x", 1e9, 4, 5],
    flipped: "yes", declared: { result: "7-0", reason: "?" }, __proto__: { polluted: true },
  };
  const saved = gameFromText(JSON.stringify(odd));
  assert.equal(saved.player, "w");
  assert.deepEqual(saved.limit, { kind: "depth", depth: 20 });
  assert.deepEqual(saved.clocks, [null, null, null]);
  assert.deepEqual(saved.scores, [null, null, null]);
  assert.equal(saved.flipped, false);
  assert.equal(saved.game.outcome(), null);
});

test("A browser without storage is no obstacle", () => {
  const closed = { getItem() { throw new Error("denied"); }, setItem() { throw new Error("full"); } };
  assert.deepEqual(loadGame(closed), { saved: null, damaged: false });
  saveGame(sample(), closed);
  saveChoices({ theme: "dark" }, closed);
  assert.equal(loadChoices(closed).theme, "auto");
});

test("Choices come back, odd ones do not", () => {
  const storage = storageWith();
  saveChoices({ theme: "dark", singleKeys: false }, storage);
  assert.deepEqual(loadChoices(storage), { theme: "dark", singleKeys: false });
  for (const text of ["null", "[]", "{", '{"theme":"<b>","singleKeys":1}']) {
    assert.deepEqual(loadChoices(storageWith({ "mirvo.choices": text })), { theme: "auto", singleKeys: true });
  }
});
