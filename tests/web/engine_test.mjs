// The engine object in Node, with shared memory and without.
import assert from "node:assert/strict";
import test from "node:test";

import { importFromPackage } from "./kit.mjs";

const { createEngine } = await importFromPackage("node.js");

const withoutBook = { "book.bk": null };

/** Lines of an engine as they come, and a wait for one. */
class Lines {
  all = [];
  #seen = 0;
  #wake = () => {};

  constructor(engine) {
    this.engine = engine;
    engine.addEventListener("line", (event) => {
      this.all.push(event.line);
      this.#wake();
    });
  }

  /** The next line that matches. */
  async next(pattern) {
    for (;;) {
      while (this.#seen < this.all.length) {
        const line = this.all[this.#seen++];
        if (pattern.test(line)) return line;
      }
      await new Promise((resolve) => {
        this.#wake = resolve;
      });
    }
  }

  ask(line, pattern) {
    this.engine.send(line);
    return this.next(pattern);
  }
}

async function start(options) {
  const engine = await createEngine(options);
  const exit = new Promise((resolve) => {
    engine.addEventListener("exit", resolve);
  });
  return { engine, exit, lines: new Lines(engine) };
}

test("a game's commands, from the first line of output to the last", async () => {
  const { engine, exit, lines } = await start();
  assert.equal(engine.interruptible, true);
  await lines.ask("uci", /^uciok$/);
  assert.match(lines.all[0], /^Welcome to Mirvo/);
  assert.match(lines.all[1], /^Setup\.+Done\.$/);
  assert.ok(lines.all.includes("    TTHashSize=16"));
  await lines.ask("isready", /^readyok$/);
  engine.send("setoption name Use Opening Book value false");
  engine.send("position startpos moves e2e4\ngo depth 6");
  assert.match(await lines.next(/^bestmove/), /^bestmove [a-h][1-8][a-h][1-8]/);
  assert.equal(await engine.quit(), 0);
  const event = await exit;
  assert.equal(event.status, 0);
  const log = new TextDecoder().decode(event.files["mirvo_0.2.7_d_log.txt"]);
  assert.ok(log.includes("\nreadyok\n"));
  engine.send("uci");
  assert.equal(await engine.quit(), 0);
});

test("the book answers where there is one", async () => {
  for (const [files, fromBook] of [[{}, true], [withoutBook, false]]) {
    const { engine, lines } = await start({ files });
    await lines.ask("uci", /^uciok$/);
    engine.send("position startpos");
    await lines.ask("go depth 2", /^bestmove/);
    assert.equal(lines.all.some((line) => /^ e2e4 .*%/.test(line)), fromBook);
    await engine.quit();
  }
});

test("stop, isready and ponderhit are answered in a search", async () => {
  const { engine, lines } = await start({ files: withoutBook });
  await lines.ask("uci", /^uciok$/);
  const times = [];
  const timed = async (line, pattern) => {
    const begin = performance.now();
    await lines.ask(line, pattern);
    times.push(performance.now() - begin);
  };
  for (let i = 0; i < 5; ++i) {
    engine.send("position startpos moves e2e4 e7e5");
    await lines.ask("go infinite", / depth 6 .* pv /);
    await timed("isready", /^readyok$/);
    await timed("stop", /^bestmove/);
  }
  engine.send("position startpos moves d2d4");
  engine.send("go ponder wtime 100 btime 100");
  await lines.next(/ depth 6 .* pv /);
  await timed("ponderhit", /^bestmove/);
  times.sort((a, b) => a - b);
  assert.ok(times[Math.floor(times.length / 2)] < 50, `answers took ${times.join(", ")} ms`);
  await engine.quit();
});

test("without shared memory lines wait for the end of the search", async () => {
  const { engine, lines } = await start({ files: withoutBook, interruptible: false });
  assert.equal(engine.interruptible, false);
  await lines.ask("uci", /^uciok$/);
  engine.send("position startpos");
  engine.send("go depth 8");
  engine.send("isready");
  await lines.next(/^readyok$/);
  const answer = lines.all.findIndex((line) => line.startsWith("bestmove"));
  assert.ok(answer >= 0 && answer < lines.all.indexOf("readyok"));
  // A search that is over and would wait for "stop" gives its move.
  engine.send("position fen 7k/5Q2/6K1/8/8/8/8/8 w - - 0 1");
  await lines.ask("go infinite depth 2", /^bestmove/);
  // However often the program is left and entered anew, nothing of it piles up.
  for (let i = 0; i < 3000; ++i) engine.send("eval");
  await lines.ask("isready", /^readyok$/);
  assert.equal(await engine.quit(), 0);
});

test("terminate ends an endless search", async () => {
  for (const interruptible of [true, false]) {
    const { engine, exit, lines } = await start({ files: withoutBook, interruptible });
    engine.send("uci");
    engine.send("position startpos");
    await lines.ask("go infinite", / depth 5 .* pv /);
    const quit = interruptible ? Promise.resolve(null) : engine.quit();
    engine.terminate();
    assert.equal((await exit).status, null);
    assert.equal(await quit, null);
    engine.terminate();
  }
});

test("a command's output is whole and its status told", async () => {
  const { lines, exit } = await start({
    args: ["-eval", "r1bqkbnr/pppp1ppp/2n5/4p3/4P3/5N2/PPPP1PPP/RNBQKB1R", "w", "KQkq"],
  });
  assert.equal((await exit).status, 0);
  assert.match(lines.all[0], /^Welcome/);
  assert.equal(lines.all.at(-1), "Full eval: -4");
});

test("files that a command writes come with its end", async () => {
  const { exit } = await start({
    args: ["-createbook", "games.pgn", "10", "1", "out.bk"],
    files: { "games.pgn": '[Result "1-0"]\n\n1. e4 e5 2. Nf3 1-0\n' },
  });
  const { files } = await exit;
  assert.ok(files["out.bk"].length > 0);
});

test("junk and lines of any length do no harm", async () => {
  for (const interruptible of [true, false]) {
    const { engine, lines } = await start({ files: withoutBook, interruptible });
    await lines.ask("uci", /^uciok$/);
    engine.send("");
    engine.send("\0\x01\xff\u{1F600} nonsense");
    for (const length of [4094, 4095, 4096, 4097, 200000]) engine.send("x".repeat(length));
    engine.send(`position startpos moves ${"g1f3 g8f6 f3g1 f6g8 ".repeat(100)}`);
    engine.send("position fen 8/8/8/8/8/8/8/8 w");
    engine.send("position startpos");
    await lines.ask("go depth 3", /^bestmove [a-h][1-8][a-h][1-8]/);
    await lines.ask("isready", /^readyok$/);
    assert.equal(await engine.quit(), 0);
  }
});

test("the deepest search has stack enough", async () => {
  const config = "StartIDDepth=400\nMaxNumExtPerDepth=1000\n";
  const { engine, lines } = await start({ files: { ...withoutBook, "config.txt": config } });
  await lines.ask("uci", /^uciok$/);
  for (const fen of ["4k3/1p1p1p1p/1P1P1P1P/p1p1p1p1/P1P1P1P1/8/8/4K3 w - - 0 1",
    "q3k2q/8/8/8/8/8/8/Q3K2Q w - - 0 1"]) {
    engine.send(`position fen ${fen}`);
    await lines.ask("go depth 400", /^info currmove/);
    await new Promise((resolve) => setTimeout(resolve, 300));
    await lines.ask("stop", /^bestmove/);
  }
  assert.equal(await engine.quit(), 0);
});

test("tables that no memory could hold are made smaller", async () => {
  const { engine, lines } = await start({
    files: { ...withoutBook, "config.txt": "TTHashSize=4095\nEvalHashSize=1\nPawnHashSize=1\n" },
  });
  await lines.ask("uci", /^uciok$/);
  engine.send("position startpos");
  await lines.ask("go depth 6", /^bestmove/);
  assert.equal(await engine.quit(), 0);
});

test("two engines at a time have nothing in common", async () => {
  const both = await Promise.all([start({ files: withoutBook }), start({ files: withoutBook })]);
  await Promise.all(both.map(({ lines }) => lines.ask("uci", /^uciok$/)));
  both[0].engine.send("position fen 4k3/8/8/8/8/8/8/4K2R w K - 0 1");
  both[1].engine.send("position startpos");
  const [first, second] = await Promise.all(both.map(({ lines }) => lines.ask("eval", /^Full eval/)));
  assert.notEqual(first, second);
  await Promise.all(both.map(({ lines }) => lines.ask("go depth 6", /^bestmove/)));
  assert.deepEqual(await Promise.all(both.map(({ engine }) => engine.quit())), [0, 0]);
});

test("a package that is not whole is told of", async () => {
  await assert.rejects(createEngine({ folder: "nowhere/" }));
});
