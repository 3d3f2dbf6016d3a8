import assert from "node:assert/strict";
import { test } from "node:test";

import { EngineSession } from "../../../web/page/src/engine_session.js";
import { readPgn } from "../../../web/page/src/pgn.js";
import { Play, Task } from "../../../web/page/src/play.js";
import { gameFromText, gameToText } from "../../../web/page/src/storage.js";
import { scriptedEngines, settled } from "../support/scripted_engine.mjs";

const DEPTH = { kind: "depth", depth: 3 };
const CLOCK = { kind: "clock", minutes: 1, increment: 2 };

function playWith(script = {}) {
  const { createEngine, made } = scriptedEngines(script);
  const said = [];
  const time = { now: 0 };
  const play = new Play(new EngineSession(createEngine, {}),
    { onChange: () => {}, onSay: (text) => said.push(text) }, () => time.now);
  return { play, made, said, time };
}

const sans = (play) => play.game.plies.map((ply) => ply.san).join(" ");

async function begun(settings, script) {
  const all = playWith(script);
  all.play.begin({ player: "w", limit: DEPTH, ...settings });
  await settled();
  return all;
}

test("The engine answers the person's move", async () => {
  const { play, made, said } = await begun();
  assert.equal(play.open, true);
  assert.equal(play.move("e2e4"), true);
  assert.equal(play.open, false);
  assert.equal(play.task, Task.move);
  await settled();
  assert.deepEqual(made[0].sent.slice(-2), ["position startpos moves e2e4", "go depth 3"]);
  made[0].answer("e7e5", { score: -25 });
  await settled();
  assert.equal(sans(play), "e4 e5");
  assert.deepEqual(play.scores, [null, 25, 25]);
  assert.equal(play.open, true);
  assert.ok(said.some((text) => text.startsWith("Black: pawn e5.")));
});

test("The engine begins when the person has Black", async () => {
  const { play, made } = await begun({ player: "b" });
  made[0].answer("d2d4");
  await settled();
  assert.equal(sans(play), "d4");
  assert.equal(play.bottom, "b");
  assert.equal(play.canTakeBack, false);
});

test("Moves out of turn and moves that are not legal are refused", async () => {
  const { play } = await begun();
  assert.equal(play.move("e2e5"), false);
  play.move("e2e4");
  assert.equal(play.move("d2d4"), false);
  assert.equal(play.move("e7e5"), false);
});

test("A take-back goes to the person's last decision, even while the engine thinks", async () => {
  const { play, made } = await begun({}, { moves: (position) => (position.endsWith("e2e4") ? "e7e5" : undefined) });
  play.move("e2e4");
  await settled();
  assert.equal(sans(play), "e4 e5");
  play.move("g1f3");
  await settled();
  assert.equal(play.task, Task.move);
  play.takeBack();
  await settled();
  assert.equal(sans(play), "e4 e5");
  assert.equal(play.task, Task.none);
  assert.equal(made[0].sent.at(-1), "stop");
  play.takeBack();
  assert.equal(sans(play), "");
  assert.equal(play.scores.length, 1);
  play.takeBack();
  assert.equal(sans(play), "");
});

test("A take-back reopens a game that has ended", async () => {
  const { play } = await begun({ player: "both" });
  for (const move of ["f3", "e5", "g4", "Qh4#"]) play.move(move);
  assert.match(play.outcome.reason, /Black wins/);
  assert.equal(play.open, false);
  play.takeBack();
  assert.equal(play.outcome, null);
  assert.equal(play.open, true);
});

test("A hint is shown and forgotten with the next move", async () => {
  const { play, made, said } = await begun();
  play.askHint();
  await settled();
  assert.equal(play.task, Task.hint);
  made[0].answer("g1f3", { score: 15 });
  await settled();
  assert.deepEqual([play.hint.from, play.hint.to], ["g1", "f3"]);
  assert.equal(said.at(-1), "Hint: g1 to f3.");
  assert.equal(play.scores[0], 15);
  play.move("e2e4");
  assert.equal(play.hint, null);
});

test("A move from the book comes without a line, and is told", async () => {
  const { play, made } = await begun();
  play.move("e2e4");
  await settled();
  made[0].searches -= 1;
  made[0].print("bestmove c7c5 ");
  await settled();
  assert.equal(sans(play), "e4 c5");
  assert.deepEqual([play.thinking.line, play.thinking.move], [null, "c7c5"]);
  assert.deepEqual(play.scores, [null, null, null]);
});

test("On the person's turn the engine takes over that side", async () => {
  const { play, made } = await begun();
  play.moveNow();
  await settled();
  assert.equal(play.player, "b");
  made[0].answer("e2e4");
  await settled();
  assert.equal(sans(play), "e4");
  assert.equal(play.open, true);
});

test("A move of the person ends a hint's search", async () => {
  const { play, made } = await begun();
  play.askHint();
  await settled();
  play.move("e2e4");
  await settled();
  made[0].answer("e7e5");
  await settled();
  assert.equal(sans(play), "e4 e5");
  assert.equal(play.hint, null);
});

test("Move now is kept until the engine has a line to move by", async () => {
  const { play, made } = await begun({}, { interruptible: false });
  play.move("e2e4");
  await settled();
  play.moveNow();
  assert.equal(sans(play), "e4");
  made[0].think("c7c5 g1f3");
  await settled();
  assert.equal(sans(play), "e4 c5");
});

test("Earlier positions are looked at, and may be gone on from", async () => {
  const { play } = await begun({ player: "both" });
  for (const move of ["e4", "e5", "Nf3", "Nc6"]) play.move(move);
  play.view(2);
  assert.match(play.viewedFen, /^rnbqkbnr\/pppp1ppp/);
  assert.equal(play.open, false);
  assert.equal(play.move("d2d4"), false);
  play.view(-5);
  assert.equal(play.viewed, 0);
  play.view(99);
  assert.equal(play.viewed, 4);
  play.view(2);
  play.playOn();
  assert.equal(sans(play), "e4 e5");
  assert.equal(play.open, true);
});

test("The clocks run from the first move on and gain the increment", async () => {
  const { play, made, time } = await begun({ limit: CLOCK });
  time.now = 5000;
  assert.deepEqual(play.clock.snapshot(), { w: 60000, b: 60000 });
  play.move("e2e4");
  await settled();
  assert.equal(made[0].sent.at(-1), "go wtime 60000 btime 60000 winc 2000 binc 2000 movestogo 0");
  time.now = 8000;
  made[0].answer("e7e5");
  await settled();
  assert.deepEqual(play.clock.snapshot(), { w: 60000, b: 59000 });
  time.now = 18000;
  play.move("g1f3");
  assert.deepEqual(play.clock.snapshot(), { w: 52000, b: 59000 });
  play.takeBack();
  assert.deepEqual(play.clock.snapshot(), { w: 60000, b: 59000 });
});

test("A fallen flag ends the game, for the engine too", async () => {
  const { play, made, time } = await begun({ limit: CLOCK });
  play.move("e2e4");
  await settled();
  time.now = 70000;
  play.tick();
  assert.deepEqual(play.outcome, { result: "1-0", reason: "Time is over: White wins." });
  made[0].answer("e7e5");
  await settled();
  assert.equal(sans(play), "e4");
  assert.equal(play.clock.running, null);
});

test("Against a bare king a fallen flag is a draw", async () => {
  const { play, time } = await begun({ limit: CLOCK, startFen: "7k/8/8/8/8/8/5R2/6K1 w - - 0 1" });
  play.move("f2f3");
  await settled();
  play.clock.start("w");
  time.now = 70000;
  play.tick();
  assert.equal(play.outcome.result, "1/2-1/2");
});

test("What was saved goes on where it was, clocks included", async () => {
  const { play, made, time } = await begun({ limit: CLOCK });
  play.move("e2e4");
  await settled();
  made[0].answer("e7e5");
  await settled();
  time.now = 10000;
  const text = gameToText(play.toSave());
  const again = playWith();
  again.play.resume(gameFromText(text));
  await settled();
  assert.equal(sans(again.play), "e4 e5");
  assert.equal(again.play.clock.running, "w");
  again.time.now = 1000;
  assert.deepEqual(again.play.clock.snapshot(), { w: 49000, b: 62000 });
});

test("A game saved while the engine thought is gone on with by the engine", async () => {
  const { play } = await begun();
  play.move("e2e4");
  const again = playWith();
  again.play.resume(gameFromText(gameToText(play.toSave())));
  await settled();
  again.made[0].answer("c7c5");
  await settled();
  assert.equal(sans(again.play), "e4 c5");
});

test("All positions of a game are scored, White's view, and the end without the engine", async () => {
  const { game } = readPgn("1. f3 e5 2. g4 Qh4# 0-1");
  const { play, made } = await begun({ player: "both", game }, { moves: () => "a2a3" });
  const done = play.scoreGame();
  await done;
  assert.deepEqual(play.scores, [10, -10, 10, -10, -32767]);
  assert.equal(made[0].sent.filter((line) => line.startsWith("go ")).length, 4);
  assert.equal(play.task, Task.none);
});

test("Scoring stops when something else is wanted", async () => {
  const { game } = readPgn("1. e4 e5 2. Nf3 Nc6 *");
  const { play, made } = await begun({ player: "both", game });
  play.scoreGame();
  await settled();
  play.move("f1b5");
  await settled();
  assert.equal(play.task, Task.none);
  assert.equal(made[0].sent.filter((line) => line.startsWith("go ")).length, 1);
});

test("An engine that cannot be started is told, and can be tried again", async () => {
  let works = false;
  const { createEngine, made } = scriptedEngines({ moves: () => "e7e5" });
  const session = new EngineSession(async () => {
    if (!works) throw new Error("out of memory");
    return createEngine();
  }, {});
  const play = new Play(session, { onChange: () => {}, onSay: () => {} });
  play.begin({ player: "w", limit: DEPTH });
  await settled();
  assert.match(play.failure, /could not be started: out of memory/);
  play.move("e2e4");
  await settled();
  works = true;
  play.retry();
  await settled();
  await settled();
  assert.equal(sans(play), "e4 e5");
  assert.equal(made.length, 1);
  assert.equal(play.failure, "");
});

test("An impossible answer is told and not played", async () => {
  const { play } = await begun({}, { moves: () => "e7e4" });
  play.move("e2e4");
  await settled();
  assert.equal(sans(play), "e4");
  assert.match(play.failure, /not possible/);
});
