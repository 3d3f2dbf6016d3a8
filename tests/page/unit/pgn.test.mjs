import assert from "node:assert/strict";
import { test } from "node:test";

import { Game } from "../../../web/page/src/game.js";
import { MAX_PGN_LENGTH, cleanText, readPgn, writePgn } from "../../../web/page/src/pgn.js";
import { START_FEN } from "../../../web/page/src/rules.js";
import { longGame } from "../support/long_game.mjs";

const sans = (game) => game.plies.map((ply) => ply.san).join(" ");

test("A game with tags, comments, variations, marks and a result is read", () => {
  const text = `[Event "A \\"good\\" one"]
[White "Somebody"]
% an escaped line e4 e4
1. e4! {best by test} e5 $1 (1... c5 2. Nf3 (2. c3 {with a ) in it} d5) d6) 2.Nf3 ; a remark
2... Nc6 3.Bb5 a6?! 1-0`;
  const { game, tags, result, note, error } = readPgn(text);
  assert.equal(error, undefined);
  assert.equal(sans(game), "e4 e5 Nf3 Nc6 Bb5 a6");
  assert.equal(tags.Event, 'A "good" one');
  assert.equal(result, "1-0");
  assert.equal(note, "");
});

test("A game may begin elsewhere, and need no moves", () => {
  const fen = "4k3/8/8/8/8/8/4P3/4K3 w - - 0 1";
  const { game } = readPgn(`[SetUp "1"]\n[FEN "${fen}"]\n\n1. e4 Kd7 *`);
  assert.equal(game.startFen, fen);
  assert.equal(sans(game), "e4 Kd7");
  assert.equal(readPgn(`[FEN "${fen}"]`).game.startFen, fen);
});

test("Of several games the first is read, and that is said", () => {
  const both = '[Event "1"]\n\n1. e4 *\n\n[Event "2"]\n\n1. d4 *\n';
  assert.equal(sans(readPgn(both).game), "e4");
  assert.match(readPgn(both).note, /first game/);
  assert.match(readPgn(both.replace("e4 *", "e4")).note, /first game/);
});

test("What cannot be read is told and named", () => {
  const complaints = [
    ["", /no game/],
    ["   \n\n", /no game/],
    ["1. e5 *", /Move 1\. "e5" is not possible/],
    ["1. e4 Ke7 *", /Move 1\.\.\. "Ke7" is not possible/],
    ["1. e4 -- 2. d4 *", /Move 1\.\.\. "--"/],
    ['[FEN "x"]\n1. e4 *', /The game's position: Not a FEN/],
    [`1. ${"<script>alert(1)</script>"} *`, /Move 1\. "<script>alert" is not/],
    ["x".repeat(MAX_PGN_LENGTH + 1), /longer than two million/],
  ];
  for (const [text, complaint] of complaints) assert.match(readPgn(text).error ?? "", complaint, text.slice(0, 40));
});

test("Deep variations, endless comments and odd brackets take no time and no stack", () => {
  const texts = [
    `1. e4 ${"(".repeat(900_000)} e5`,
    `1. e4 ${"(1... c5 ".repeat(100_000)}${")".repeat(100_000)} e5`,
    `1. e4 {${"{".repeat(900_000)}} e5`,
    `1. e4 ${"[".repeat(900_000)}\ne5`,
    `1. e4 ${'[A "'.repeat(200_000)}\ne5`,
    `1. e4 ${"}".repeat(400_000)}${")".repeat(400_000)} e5`,
    `[A "${"\\".repeat(900_000)}"]\n1. e4 e5`,
    `1. e4 ${"$1 ".repeat(300_000)} e5`,
    `1. e4 ${"1. ".repeat(300_000)} e5`,
  ];
  for (const text of texts) {
    const started = process.cpuUsage();
    readPgn(text);
    assert.ok(process.cpuUsage(started).user < 5e6, text.slice(0, 20));
  }
});

test("Tags are cut, cleaned and cannot name what every object has", () => {
  const { tags } = readPgn(`[White "${"x".repeat(1000)}"]\n[__proto__ "a"]\n[constructor "b"]\n[Black "a\u202eb\u0007c"]\n1. e4 *`);
  assert.equal(tags.White.length, 200);
  assert.equal(tags.Black, "a b c");
  assert.equal(Object.getPrototypeOf(tags), null);
  assert.equal({}.polluted, undefined);
  assert.equal(cleanText("  a\r\nb  "), "a  b");
});

test("A thousand moves are read, and written again as they were", () => {
  const { pgn, plies } = longGame(2000);
  const { game, error } = readPgn(pgn);
  assert.equal(error, undefined);
  assert.equal(game.plies.length, plies);
  const again = readPgn(writePgn(game, { white: "a", black: "b" }));
  assert.equal(sans(again.game), sans(game));
});

test("What is written has its tags, short lines and the result", () => {
  const game = new Game();
  for (const move of ["f3", "e5", "g4", "Qh4#"]) game.play(move);
  const text = writePgn(game, { white: 'The "Player"\n[X "y"]', black: "Mirvo", date: "2026.01.02" });
  assert.match(text, /^\[Event "Casual game"\]\n/);
  assert.match(text, /\[White "The \\"Player\\" \[X \\"y\\"\]"\]/);
  assert.match(text, /\[Result "0-1"\]\n\n1\. f3 e5 2\. g4 Qh4# 0-1\n$/);
  const long = writePgn(readPgn(longGame(300).pgn).game, { white: "a", black: "b" });
  assert.ok(long.split("\n").every((line) => line.length <= 80));
});

test("A game from a set-up position says so", () => {
  const fen = "4k3/8/8/8/8/8/4p3/4K3 b - - 0 7";
  const game = new Game(fen);
  game.play("Kd7");
  const text = writePgn(game, { white: "a", black: "b" });
  assert.match(text, new RegExp(`\\[FEN "${fen}"\\]`));
  assert.match(text, /\n7\.\.\. Kd7 \*\n$/);
  assert.equal(readPgn(text).game.fen, game.fen);
  assert.notEqual(game.startFen, START_FEN);
});
