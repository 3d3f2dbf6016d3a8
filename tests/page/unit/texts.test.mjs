import assert from "node:assert/strict";
import { test } from "node:test";

import { ChessClock, clockText } from "../../../web/page/src/clock.js";
import { evalArguments, readEvalReport } from "../../../web/page/src/eval_report.js";
import { goCommand, hintCommand, limitInWords, readLimit } from "../../../web/page/src/limits.js";
import { surplus } from "../../../web/page/src/material.js";
import { START_FEN } from "../../../web/page/src/rules.js";
import { spokenMove, spokenSquare } from "../../../web/page/src/speech.js";
import {
  readBestMove, readThinkingLine, scoreInWords, scoreText, whitesScore, whitesShare,
} from "../../../web/page/src/uci_lines.js";

test("A thinking line is read", () => {
  const line = "info depth 5 seldepth 12 time 11 score cp -20 nodes 10344 nps 940363 pv d7d5 b1c3 a7a8q ";
  assert.deepEqual(readThinkingLine(line), {
    depth: 5, seldepth: 12, time: 11, score: -20, nodes: 10344, pv: ["d7d5", "b1c3", "a7a8q"],
  });
  // A count beyond 31 bits is printed with a sign.
  assert.equal(readThinkingLine("info depth 5 score cp 1 nodes -1 nps 0 pv e2e4").nodes, 4294967295);
});

test("Other lines are no thinking lines", () => {
  const lines = ["", "info depth 5", "info currmove e2e4 currmovenumber 1", "Allowing 100 ms for move (1, 2, 3)",
    "bestmove e2e4 ponder e7e5", "info depth 5 score cp x nodes 1 pv e2e4", "info score cp 10 pv"];
  for (const line of lines) assert.equal(readThinkingLine(line), null, line);
});

test("The best move is read, and that there is none", () => {
  assert.deepEqual(readBestMove("bestmove e2e4 ponder e7e5"), { move: "e2e4" });
  assert.deepEqual(readBestMove("bestmove a7a8q "), { move: "a7a8q" });
  assert.deepEqual(readBestMove("bestmove 0000 "), { move: null });
  assert.equal(readBestMove("info bestmove"), null);
});

test("Scores are White's", () => {
  assert.equal(whitesScore(30, "b"), -30);
  assert.equal(Object.is(whitesScore(0, "b"), 0), true);
  assert.equal(scoreText(34), "+0.34");
  assert.equal(scoreText(-1234), "\u221212.34");
  assert.equal(scoreText(0), "0.00");
  assert.equal(scoreText(32768), "#");
  assert.equal(scoreText(-32766), "-#");
  assert.equal(scoreInWords(-150), "Black is ahead by 1.50 pawns");
  assert.equal(scoreInWords(32768), "White mates");
  assert.equal(whitesShare(0), 0.5);
  assert.ok(whitesShare(100) > 0.55 && whitesShare(1000) < 1);
  assert.equal(whitesShare(-32768), 0);
});

test("The engine is told its limits in the words that it follows", () => {
  assert.equal(goCommand({ kind: "depth", depth: 3 }), "go depth 3");
  // No "movetime": the last move before a time control, 50 ms of which it leaves alone.
  assert.equal(goCommand({ kind: "time", seconds: 0.5 }), "go wtime 550 btime 550 winc 0 binc 0 movestogo 1");
  assert.equal(goCommand({ kind: "clock", minutes: 5, increment: 3 }, 61234.6),
    "go wtime 61235 btime 61235 winc 3000 binc 3000 movestogo 0");
  assert.equal(goCommand({ kind: "clock", minutes: 5, increment: 0 }, 0), "go wtime 1 btime 1 winc 0 binc 0 movestogo 0");
  assert.equal(hintCommand({ kind: "depth", depth: 2 }), "go depth 6");
  assert.match(hintCommand({ kind: "clock", minutes: 1, increment: 0 }), /movestogo 1$/);
});

test("Limits from outside are brought into range", () => {
  assert.deepEqual(readLimit({ kind: "depth", depth: "99" }), { kind: "depth", depth: 20 });
  assert.deepEqual(readLimit({ kind: "time", seconds: "-1" }), { kind: "time", seconds: 0.1 });
  assert.deepEqual(readLimit({ kind: "clock", minutes: "", increment: "x" }), { kind: "clock", minutes: 5, increment: 3 });
  for (const value of [null, undefined, "depth", { kind: "forever" }, []]) assert.equal(readLimit(value).kind, "depth");
});

test("Limits are said in words", () => {
  assert.equal(limitInWords({ kind: "clock", minutes: 1, increment: 0 }), "1 minute");
  assert.equal(limitInWords({ kind: "clock", minutes: 5, increment: 3 }), "5 minutes + 3 seconds a move");
  assert.equal(limitInWords({ kind: "time", seconds: 0.5 }), "0.5 seconds a move");
  assert.equal(limitInWords({ kind: "depth", depth: 4 }), "4 half-moves deep");
});

test("Clocks run one at a time and never below zero", () => {
  let now = 0;
  const clock = new ChessClock({ w: 1000, b: 1000 }, 100, () => now);
  clock.start("w");
  now = 400;
  assert.equal(clock.remaining("w"), 600);
  clock.press("w");
  assert.deepEqual(clock.snapshot(), { w: 700, b: 1000 });
  assert.equal(clock.running, "b");
  assert.equal(clock.fallen(), null);
  now = 5000;
  assert.equal(clock.remaining("b"), 0);
  assert.equal(clock.fallen(), "b");
  clock.set({ w: 1, b: 2 });
  assert.equal(clock.running, null);
  assert.deepEqual(clock.snapshot(), { w: 1, b: 2 });
});

test("Clocks are written shortly", () => {
  assert.equal(clockText(300000), "5:00");
  assert.equal(clockText(299001), "5:00");
  assert.equal(clockText(61000), "1:01");
  assert.equal(clockText(19999), "0:19.9");
  assert.equal(clockText(0), "0:00.0");
  assert.equal(clockText(3723000), "1:02:03");
});

// Printed by the program for 1. e4 e5 2. Nf3 Nc6 without the bishop on c1, Black to move.
const REPORT = `-------------------

  material:\t0.00\t|\t46.62\t47.42\t|\t-46.62\t-47.42\t|
     pawns:\t0.00\t|\t0.50\t0.50\t|\t-0.50\t-0.50\t|
   knights:\t0.02\t|\t0.07\t-0.18\t|\t-0.05\t0.10\t|
     devel:\t-0.30\t|\t-0.45\t0.00\t|\t0.15\t0.00\t|
Total:\t-0.34

Full eval: -34`.split("\n");

test("The evaluation report becomes rows, and what has no row is told by difference", () => {
  const { rows, total } = readEvalReport(REPORT, "w");
  assert.equal(total, -0.34);
  assert.deepEqual(rows.map((row) => row.name), ["Material", "Pawns", "Knights", "Development", "Passed pawns, threats and the rest"]);
  assert.deepEqual(rows[2].white, [0.07, -0.18]);
  assert.deepEqual(rows[2].black, [-0.05, 0.1]);
  assert.equal(rows[4].balance, -0.06);
  assert.equal(readEvalReport(REPORT, "b").total, 0.34);
});

test("A dead draw has no rows, and other text is no report", () => {
  assert.deepEqual(readEvalReport(["Full eval: 0"], "b"), { rows: [], total: 0 });
  assert.equal(readEvalReport(["uciok"], "w"), null);
  assert.equal(readEvalReport(["constructor:\t0.00\t|\t1\t1\t|\t1\t1\t|", "Full eval: 3"], "w").rows.length, 0);
});

test("The engine is asked for the report with three fields", () => {
  assert.deepEqual(evalArguments(START_FEN), ["-eval", "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR", "w", "KQkq"]);
});

test("Moves and squares are said in words", () => {
  const words = {
    e4: "pawn e4", "exd5": "pawn e takes d5", "Nbd7": "knight b d7", "R1xa3+": "rook 1 takes a3, check",
    "O-O": "castles king side", "O-O-O#": "castles queen side, checkmate", "e8=Q+": "pawn e8 becomes a queen, check",
  };
  for (const [san, spoken] of Object.entries(words)) assert.equal(spokenMove(san), spoken);
  assert.equal(spokenSquare("g1", "N"), "g1, white knight");
  assert.equal(spokenSquare("e4", undefined), "e4, empty");
});

test("What a side has more of is found", () => {
  assert.deepEqual(surplus(START_FEN), { w: { pieces: [], lead: 0 }, b: { pieces: [], lead: 0 } });
  assert.deepEqual(surplus("4k3/8/8/8/8/8/PP6/RN2K1n1 w - - 0 1"),
    { w: { pieces: ["r", "p", "p"], lead: 7 }, b: { pieces: [], lead: 0 } });
});
