import assert from "node:assert/strict";
import { test } from "node:test";

import { EngineFailure, EngineSession, runJob } from "../../../web/page/src/engine_session.js";
import { scriptedEngines, settled } from "../support/scripted_engine.mjs";

function sessionWith(script) {
  const { createEngine, made } = scriptedEngines(script);
  return { session: new EngineSession(createEngine, {}), made };
}

test("A question is a position and a go, its answer the move and the newest line", async () => {
  const { session, made } = sessionWith();
  const depths = [];
  const answer = session.ask("position startpos", "go depth 3", (line) => depths.push(line.depth));
  await settled();
  made[0].answer("e2e4", { score: 33, pv: "e2e4 e7e5" });
  const { move, thinking } = await answer;
  assert.deepEqual(made[0].sent, ["uci", "position startpos", "go depth 3"]);
  assert.equal(move, "e2e4");
  assert.deepEqual(thinking.pv, ["e2e4", "e7e5"]);
  assert.deepEqual(depths, [3]);
});

test("A question that is given up is stopped, and its answer is nobody's", async () => {
  const { session, made } = sessionWith();
  const first = session.ask("position startpos", "go depth 3");
  await settled();
  const second = session.ask("position startpos moves e2e4", "go depth 3");
  assert.equal(await first, null);
  await settled();
  assert.deepEqual(made[0].sent.slice(3), ["stop", "position startpos moves e2e4", "go depth 3"]);
  made[0].answer("e7e5");
  assert.equal((await second).move, "e7e5");
  assert.equal(made.length, 1);
});

test("A question that was given up before the engine ran is never sent", async () => {
  const { session, made } = sessionWith();
  const first = session.ask("position startpos", "go depth 3");
  session.giveUp();
  assert.equal(await first, null);
  await settled();
  assert.deepEqual(made[0].sent, ["uci"]);
});

test("An engine that cannot be interrupted is replaced", async () => {
  const { session, made } = sessionWith({ interruptible: false });
  const first = session.ask("position startpos", "go depth 30");
  await settled();
  const second = session.ask("position startpos moves e2e4", "go depth 3");
  assert.equal(await first, null);
  await settled();
  assert.equal(made.length, 2);
  assert.equal(made[0].ended, true);
  made[0].answer("a7a5");
  made[1].answer("e7e5");
  assert.equal((await second).move, "e7e5");
});

test("Move now stops the engine where it hears it", async () => {
  const { session, made } = sessionWith();
  const answer = session.ask("position startpos", "go depth 30");
  await settled();
  assert.equal(session.answerNow(), true);
  assert.equal((await answer).move, "a7a6");
  assert.equal(made[0].ended, false);
  assert.equal(session.answerNow(), false);
});

test("Elsewhere move now takes the first move of the newest line", async () => {
  const { session, made } = sessionWith({ interruptible: false });
  const answer = session.ask("position startpos", "go depth 30");
  await settled();
  assert.equal(session.answerNow(), false);
  made[0].think("d2d4 d7d5");
  assert.equal(session.answerNow(), true);
  assert.equal((await answer).move, "d2d4");
  await settled();
  assert.equal(made[0].ended, true);
  assert.equal(made.length, 2);
});

test("An engine that ends while it thinks is replaced and asked again", async () => {
  const { session, made } = sessionWith();
  const answer = session.ask("position startpos", "go depth 3");
  await settled();
  made[0].end();
  await settled();
  assert.deepEqual(made[1].sent, ["uci", "position startpos", "go depth 3"]);
  made[1].answer("e2e4");
  assert.equal((await answer).move, "e2e4");
});

test("An engine that always ends is given up", async () => {
  const { session, made } = sessionWith();
  const answer = session.ask("position startpos", "go depth 3");
  const refused = assert.rejects(answer, EngineFailure);
  for (let i = 0; i < 3; ++i) {
    await settled();
    made[i].end();
  }
  await refused;
  assert.equal(made.length, 3);
});

test("An engine that cannot be made is told, and tried again when asked", async () => {
  let works = false;
  const { createEngine, made } = scriptedEngines();
  const session = new EngineSession(async () => {
    if (!works) throw new Error("no WebAssembly");
    return createEngine();
  }, {});
  await assert.rejects(session.ask("position startpos", "go depth 3"), /no WebAssembly/);
  works = true;
  const answer = session.ask("position startpos", "go depth 3");
  await settled();
  made[0].answer("e2e4");
  assert.equal((await answer).move, "e2e4");
});

test("A closed session leaves no engine behind", async () => {
  const { session, made } = sessionWith();
  const answer = session.ask("position startpos", "go depth 30");
  await settled();
  session.close();
  assert.equal(await answer, null);
  assert.equal(made[0].ended, true);
  assert.equal(made.length, 1);
});

test("A job gives what it prints until its end", async () => {
  const { createEngine, made } = scriptedEngines();
  const lines = runJob(createEngine, ["-eval"], {});
  await settled();
  made[0].print("one");
  made[0].print("two");
  made[0].end();
  assert.deepEqual(await lines, ["one", "two"]);
});

test("A job that does not end is ended", async () => {
  const { createEngine, made } = scriptedEngines();
  await assert.rejects(runJob(createEngine, [], {}, 1), EngineFailure);
  assert.equal(made[0].ended, true);
});
