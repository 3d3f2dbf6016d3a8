// Playing on the page, in a browser and with the engine itself.
import assert from "node:assert/strict";
import { after, before, test } from "node:test";

import { Game } from "../../../web/page/src/game.js";
import { PATIENCE, launch, visit } from "../support/browser.mjs";
import { savedGame } from "../support/saved_game.mjs";

let browser;
before(async () => { browser = await launch(); });
after(async () => { await browser?.close(); });

/** A test that visits the page. */
function visiting(name, options, walk) {
  test(name, { timeout: 4 * PATIENCE }, () => visit(browser, options, walk));
}

visiting("A whole game is played to its end", {}, async (visitor) => {
  await visitor.begin({ depth: 2 });
  const game = new Game();
  let seed = 3;
  while (game.outcome() === null) {
    const choices = game.legalMoves();
    seed = (seed * 1103515245 + 12345) % 2147483648;
    const { from, to, promotion = "" } = choices[Math.floor((seed / 2147483648) * choices.length)];
    game.play(from + to + promotion);
    await visitor.type(from + to + promotion);
    if (game.outcome() !== null) break;
    const moves = await visitor.movesAre(game.plies.length + 1);
    assert.ok(game.play(moves.at(-1)), `the engine's move ${moves.at(-1)}`);
  }
  await visitor.statusSays(game.outcome().reason);
});

visiting("Pieces are moved by two clicks and by dragging; marks show where and what", {}, async (visitor) => {
  await visitor.begin();
  await visitor.clickSquare("e2");
  assert.deepEqual(await visitor.marked("target"), ["e3", "e4"]);
  assert.deepEqual(await visitor.marked("selected"), ["e2"]);
  await visitor.clickSquare("e5");
  assert.deepEqual(await visitor.marked("target"), []);
  await visitor.clickSquare("e2");
  await visitor.clickSquare("e4");
  await visitor.movesAre(2);
  await visitor.drag("g1", "f3");
  const moves = await visitor.movesAre(4);
  assert.deepEqual([moves[0], moves[2]], ["e4", "Nf3"]);
  await visitor.shows("f3", "wn");
  assert.equal((await visitor.marked("last")).length, 2);
});

visiting("A pawn becomes the piece that is chosen, or stays", { saved: savedGame({ fen: "8/P6k/8/8/8/8/7K/8 w - - 0 1", player: "both" }) },
  async (visitor, page) => {
    await visitor.drag("a7", "a8");
    await page.waitForSelector("#promotion-dialog[open]");
    await page.keyboard.press("Escape");
    await visitor.shows("a7", "wp");
    assert.deepEqual(await visitor.moves(), []);
    await visitor.clickSquare("a7");
    await visitor.clickSquare("a8");
    await page.click("#promotion-choices [data-piece=n]");
    assert.deepEqual(await visitor.movesAre(1), ["a8=N"]);
    await visitor.shows("a8", "wn");
  });

visiting("Moves are taken back, hinted at and looked at; the board turns", {}, async (visitor, page) => {
  await visitor.begin();
  await visitor.type("e4");
  await visitor.movesAre(2);
  await visitor.press("take-back");
  await visitor.movesAre(0);
  await visitor.shows("e2", "wp");
  await visitor.press("hint");
  await page.waitForSelector(".square.hinted");
  const hint = await visitor.marked("hinted");
  assert.equal(hint.length, 2);
  await visitor.type("e4");
  await visitor.movesAre(2);
  assert.deepEqual(await visitor.marked("hinted"), []);

  assert.equal(await page.locator("[data-cell]").first().getAttribute("data-cell"), "a8");
  for (let i = 0; i < 3; ++i) await visitor.press("flip");
  await page.waitForFunction(() => document.querySelector("[data-cell]").dataset.cell === "h1");
  await visitor.clickSquare("d2");
  await visitor.clickSquare("d4");
  await visitor.movesAre(4);

  await page.click("#moves button >> nth=0");
  await visitor.statusSays("earlier position");
  assert.deepEqual(await visitor.marked("last"), ["e2", "e4"]);
  await page.keyboard.press("ArrowLeft");
  await page.waitForFunction(() => document.getElementById("earlier").getAttribute("aria-disabled") === "true");
  await page.keyboard.press("End");
  await visitor.statusSays("Your move");
  await page.click("#moves button >> nth=1");
  await visitor.press("play-on");
  await visitor.movesAre(2);
});

visiting("A reload keeps the game, the side and the limit", {}, async (visitor, page) => {
  await visitor.begin({ player: "b", kind: "time", seconds: 0.1 });
  await visitor.movesAre(1);
  await visitor.type("a6");
  const moves = await visitor.movesAre(3);
  await page.reload();
  await visitor.engineRuns();
  assert.deepEqual(await visitor.movesAre(3), moves);
  await visitor.statusSays("Your move, you play Black");
  assert.match(await visitor.text("engine-state"), /0\.1 seconds a move/);
});

visiting("A fallen flag ends the game", {
  saved: savedGame({ moves: "e4 e5", limit: { kind: "clock", minutes: 1, increment: 0 }, clock: { w: 400, b: 30000 } }),
}, async (visitor) => {
  await visitor.statusSays("Time is over: Black wins.");
  assert.equal(await visitor.text("clock-bottom"), "0:00.0");
  await visitor.type("Nf3");
  assert.equal((await visitor.moves()).length, 2);
});

visiting("A game with clocks is played within them", {}, async (visitor) => {
  await visitor.begin({ kind: "clock", minutes: 0.5, increment: 0 });
  for (const move of ["a3", "h3"]) {
    const count = (await visitor.moves()).length;
    await visitor.type(move);
    await visitor.movesAre(count + 2);
  }
  assert.match(await visitor.text("clock-top"), /^0:[12]\d/);
});

for (const isolated of [true, false]) {
  const how = isolated ? "with" : "without";
  visiting(`A long search is ended ${how} the isolation headers`, { isolated }, async (visitor, page) => {
    assert.equal(await page.evaluate(() => document.documentElement.dataset.engine), isolated ? "interruptible" : "plain");
    assert.equal(await visitor.setUp("r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1"), "The position is set up.");
    await visitor.begin({ kind: "time", seconds: 60 });
    await visitor.setUp("r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1");
    await visitor.type("a3");
    await page.waitForFunction(() => /depth/.test(document.getElementById("thinking-facts").textContent));
    await visitor.press("move-now");
    await visitor.movesAre(2);
    await visitor.type("h1g1");
    await visitor.movesAre(3);
    await visitor.statusSays("thinking");
    await visitor.press("take-back");
    await visitor.movesAre(2);
    await visitor.statusSays("Your move");
    await visitor.begin({ depth: 1 });
    await visitor.type("e4");
    await visitor.movesAre(2);
  });
}
