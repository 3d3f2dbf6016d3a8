import assert from "node:assert/strict";
import { test } from "node:test";

import { Game } from "../../../web/page/src/game.js";
import { START_FEN } from "../../../web/page/src/rules.js";

function played(moves, fen) {
  const game = new Game(fen);
  for (const move of moves.split(" ")) assert.ok(game.play(move), move);
  return game;
}

test("Moves are taken as coordinates, as records and in short notation", () => {
  const game = new Game();
  assert.equal(game.play("e2e4").san, "e4");
  assert.equal(game.play({ from: "g8", to: "f6" }).uci, "g8f6");
  assert.equal(game.play("Nf3").uci, "g1f3");
  assert.equal(game.fen, "rnbqkb1r/pppppppp/5n2/8/4P3/5N2/PPPP1PPP/RNBQKB1R b KQkq - 2 2");
});

test("What is no move changes nothing", () => {
  const game = new Game();
  for (const word of ["e2e5", "Ke2", "--", "", "0000", "<b>", "O-O", "e2e4e5"]) assert.equal(game.play(word), null, word);
  assert.equal(game.fen, START_FEN);
});

test("A promotion needs its piece", () => {
  const fen = "8/P3k3/8/8/8/8/8/4K3 w - - 0 1";
  assert.equal(new Game(fen).play({ from: "a7", to: "a8" }), null);
  assert.equal(new Game(fen).play("a7a8n").san, "a8=N");
});

test("Taking back restores the position and what has been repeated", () => {
  const game = played("Nf3 Nf6 Ng1 Ng8 Nf3 Nf6 Ng1 Ng8");
  assert.match(game.outcome().reason, /three times/);
  game.takeBack(1);
  assert.equal(game.outcome(), null);
  game.takeBack(100);
  assert.equal(game.fen, START_FEN);
  assert.equal(game.plies.length, 0);
});

test("Mate ends the game", () => {
  assert.deepEqual(played("f3 e5 g4 Qh4#").outcome(), { result: "0-1", reason: "Checkmate: Black wins." });
});

test("Draws end the game", () => {
  const draws = [
    ["7k/8/6K1/8/8/8/8/5Q2 w - - 0 1", "Qf7", /stalemate/],
    ["7k/8/8/8/8/8/5p2/6K1 w - - 0 1", "Kxf2", /enough pieces/],
    ["7k/8/8/8/8/8/5R2/6K1 w - - 99 80", "Kh2", /fifty moves/],
  ];
  for (const [fen, move, reason] of draws) {
    const { result, reason: told } = played(move, fen).outcome();
    assert.equal(result, "1/2-1/2");
    assert.match(told, reason);
  }
});

test("What is declared holds until a move or a take-back", () => {
  const game = played("e4 e5");
  game.declare("1-0", "Time is over: White wins.");
  assert.equal(game.outcome().result, "1-0");
  game.takeBack(1);
  assert.equal(game.outcome(), null);
});

test("A mate on the board counts more than what was declared", () => {
  const game = played("f3 e5 g4 Qh4#");
  game.declare("1-0", "Time is over: White wins.");
  assert.equal(game.outcome().result, "0-1");
});

test("A bare king is known", () => {
  const game = new Game("7k/8/8/8/8/8/5R2/6K1 w - - 0 1");
  assert.equal(game.hasBareKing("b"), true);
  assert.equal(game.hasBareKing("w"), false);
});
