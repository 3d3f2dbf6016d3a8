import assert from "node:assert/strict";
import { test } from "node:test";

import { Game } from "../../../web/page/src/game.js";
import {
  MAX_FEN_LENGTH, START_FEN, kingSquare, lineInSan, numberedLine, piecesOf, readCoordinates, readFen, spellings,
} from "../../../web/page/src/rules.js";

test("A FEN comes back in its usual form", () => {
  assert.deepEqual(readFen(START_FEN), { fen: START_FEN });
  assert.deepEqual(readFen(`  ${START_FEN}\n`), { fen: START_FEN });
});

test("Missing fields are filled in", () => {
  assert.equal(readFen("8/8/4k3/8/8/4K3/4P3/8").fen, "8/8/4k3/8/8/4K3/4P3/8 w - - 0 1");
  assert.equal(readFen("8/8/4k3/8/8/4K3/4P3/8 b").fen, "8/8/4k3/8/8/4K3/4P3/8 b - - 0 1");
});

test("Castling rights without king and rook at home are dropped", () => {
  assert.equal(readFen("4k2r/8/8/8/8/8/8/R3K3 w KQkq - 0 1").fen, "4k2r/8/8/8/8/8/8/R3K3 w Qk - 0 1");
  assert.equal(readFen("4k3/8/8/8/8/8/8/4K3 w KQkq - 0 1").fen, "4k3/8/8/8/8/8/8/4K3 w - - 0 1");
});

test("An en-passant square counts only behind a pawn that came past it", () => {
  const possible = "rnbqkbnr/ppp1pppp/8/8/3pP3/8/PPPP1PPP/RNBQKBNR b KQkq e3 0 3";
  assert.equal(readFen(possible).fen, possible);
  assert.match(readFen("rnbqkbnr/ppp1pppp/8/8/3p4/8/PPPPPPPP/RNBQKBNR b KQkq e3 0 3").fen, / b KQkq - /);
  assert.match(readFen("4k3/8/8/8/3pP3/8/4P3/4K3 b - e3 0 3").fen, / b - - /);
});

test("What is no position is told", () => {
  const complaints = [
    ["", /empty/],
    ["   \n", /empty/],
    ["hello", /Not a FEN/],
    ["8/8/8/8/8/8/8/8 w - - 0 1", /missing white king/],
    ["4k3/8/8/8/8/8/8/4K2K w - - 0 1", /too many white kings/],
    ["4k3/8/8/8/8/8/8/4K2P w - - 0 1", /pawns are on the edge/],
    ["4k3/8/8/8/8/8/4r3/4K3 b - - 0 1", /White is in check/],
    ["4k3/pppppppp/p7/8/8/8/8/4K3 w - - 0 1", /Black has more than 8 pawns/],
    ["qqqqkqqq/qqqqqqqq/q7/8/8/8/8/K7 w - - 0 1", /Black has more than 16 pieces/],
    ["4k3/8/8/8/8/8/8/4K3 w - - 0 1 extra", /more than six fields/],
    [`4k3/8/8/8/8/8/8/4K3 w - - 0 ${"1".repeat(MAX_FEN_LENGTH)}`, /too long/],
    ["<img src=x onerror=alert(1)>", /Not a FEN/],
  ];
  for (const [text, complaint] of complaints) assert.match(readFen(text).error, complaint, text);
});

test("Counters are kept within bounds", () => {
  assert.equal(readFen("4k3/8/8/8/8/8/4P3/4K3 w - - 99999999 99999999").fen, "4k3/8/8/8/8/8/4P3/4K3 w - - 9999 9999");
  assert.equal(readFen("4k3/8/8/8/8/8/4P3/4K3 w - - -3 -3").fen, "4k3/8/8/8/8/8/4P3/4K3 w - - 0 1");
});

test("Any text is answered, quickly", () => {
  const letters = "rnbqkpRNBQKP12345678/ wb-KQkqabcdefgh<>\"'&\u0000\u202e";
  let seed = 1;
  for (let round = 0; round < 500; ++round) {
    let text = "";
    for (let i = 0; i < 60; ++i) {
      seed = (seed * 1103515245 + 12345) % 2147483648;
      text += letters[seed % letters.length];
    }
    const { fen, error } = readFen(text);
    assert.ok((fen === undefined) !== (error === undefined));
  }
  assert.match(readFen("k".repeat(1_000_000)).error, /too long/);
});

test("Pieces and kings are found", () => {
  assert.deepEqual(piecesOf("4k3/8/8/8/8/8/P7/4K3 w - - 0 1"), { e8: "k", a2: "P", e1: "K" });
  assert.equal(kingSquare(START_FEN, "b"), "e8");
});

test("Coordinates are squares and a promotion", () => {
  assert.deepEqual(readCoordinates("e7e8q"), { from: "e7", to: "e8", promotion: "q" });
  assert.deepEqual(readCoordinates("e2e4"), { from: "e2", to: "e4", promotion: undefined });
  for (const text of ["e2", "e9e4", "e7e8k", "0000", "", null, "e2e4 e7e5"]) assert.equal(readCoordinates(text), null);
});

test("A line ends at the first move that cannot be played", () => {
  assert.deepEqual(lineInSan(START_FEN, ["e2e4", "e7e5", "e1e3", "a7a6"]).san, ["e4", "e5"]);
  assert.equal(lineInSan(START_FEN, ["f2f3", "e7e5", "g2g4", "d8h4"]).endsInMate, true);
});

test("Lines are numbered from the position's number on", () => {
  assert.equal(numberedLine(START_FEN, ["e4", "e5", "Nf3"]), "1. e4 e5 2. Nf3");
  assert.equal(numberedLine("4k3/8/8/8/8/8/8/4K2R b K - 0 7", ["Kd8", "O-O"]), "7... Kd8 8. O-O");
});

test("A typed move is understood in small letters too", () => {
  const meant = [
    [START_FEN, "nf3", "Nf3"], [START_FEN, "E2E4", "e4"], [START_FEN, "e4", "e4"],
    ["4k3/8/8/8/8/8/8/4K2R w K - 0 1", "o-o", "O-O"], ["4k3/8/8/8/8/8/8/4K2R w K - 0 1", "0-0", "O-O"],
    ["4k3/P7/8/8/8/8/8/4K3 w - - 0 1", "a8=q", "a8=Q+"], ["4k3/P7/8/8/8/8/8/4K3 w - - 0 1", "a8n", "a8=N"],
    ["4k3/P7/8/8/8/8/8/4K3 w - - 0 1", "A7A8R", "a8=R+"], ["4k3/8/8/8/8/8/8/4K3 w - - 0 1", "ke2", "Ke2"],
    // A pawn's move as it is written, and the bishop's where there is no such pawn.
    ["4k3/8/8/8/8/2p5/1P6/B3K3 w - - 0 1", "bxc3", "bxc3"], ["4k3/8/8/8/8/2p5/3B4/4K3 w - - 0 1", "bxc3", "Bxc3"],
  ];
  for (const [fen, typed, san] of meant) {
    const game = new Game(fen);
    assert.ok(spellings(typed).some((move) => game.play(move) !== null), typed);
    assert.equal(game.plies[0].san, san);
  }
});
