import assert from "node:assert/strict";
import { test } from "node:test";

import { Game } from "../../../web/page/src/game.js";
import { MAX_COMMAND, positionCommand } from "../../../web/page/src/uci_position.js";
import { longGame } from "../support/long_game.mjs";

function gameOf(moves, fen) {
  const game = new Game(fen);
  for (const move of moves) game.play(move);
  return game;
}

// Plays a command and gives the position that it leads to.
function positionOf(command) {
  const found = /^position (?:startpos|fen (.+?))(?: moves (.+))?$/.exec(command);
  return gameOf((found[2] ?? "").split(" ").filter(Boolean), found[1]).fen;
}

test("A short game is told from its start", () => {
  assert.equal(positionCommand(new Game()), "position startpos");
  assert.equal(positionCommand(gameOf(["e4", "e5"])), "position startpos moves e2e4 e7e5");
  assert.equal(positionCommand(gameOf(["e4", "e5"]), 1), "position startpos moves e2e4");
  const fen = "4k3/P7/8/8/8/8/8/4K3 w - - 0 1";
  assert.equal(positionCommand(gameOf(["a8=Q"], fen)), `position fen ${fen} moves a7a8q`);
});

test("A position with an en-passant square is told by its double step", () => {
  const fen = "rnbqkbnr/ppp1pppp/8/8/3pP3/8/PPPP1PPP/RNBQKBNR b KQkq e3 0 3";
  const command = positionCommand(new Game(fen));
  assert.equal(command, "position fen rnbqkbnr/ppp1pppp/8/8/3p4/8/PPPPPPPP/RNBQKBNR w KQkq - 0 3 moves e2e4");
  assert.equal(positionOf(command), fen);
  const whites = "4k3/8/8/3pP3/8/8/8/4K3 w - d6 0 5";
  assert.equal(positionOf(positionCommand(new Game(whites))), whites);
});

test("A long game is told from a later position, in one line that the engine can read", () => {
  const { moves } = longGame(2000);
  const game = gameOf(moves);
  for (const count of [1, 500, 660, 661, 700, 1001, 1500, 1999, 2000]) {
    const command = positionCommand(game, count);
    assert.ok(command.length <= MAX_COMMAND);
    const [placement, side, rights, enPassant] = positionOf(command).split(" ");
    assert.deepEqual([placement, side, rights, enPassant], game.fenAt(count).split(" ").slice(0, 4));
  }
});
