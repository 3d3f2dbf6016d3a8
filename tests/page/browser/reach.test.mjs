// The page for everybody: keyboard, screen reader, phone, colours, without a network.
import assert from "node:assert/strict";
import fs from "node:fs";
import os from "node:os";
import path from "node:path";
import { after, before, test } from "node:test";

import { PATIENCE, launch, pageFolder, visit } from "../support/browser.mjs";
import { savedGame } from "../support/saved_game.mjs";

let browser;
before(async () => { browser = await launch(); });
after(async () => { await browser?.close(); });

/** A test that visits the page. */
function visiting(name, options, walk) {
  test(name, { timeout: 4 * PATIENCE }, () => visit(browser, options, walk));
}

visiting("A game is played with the keyboard alone", {}, async (visitor, page) => {
  const { keyboard } = page;
  await keyboard.press("n");
  await page.waitForSelector("#new-game-dialog[open]");
  await keyboard.press("Enter");
  await page.waitForSelector("#new-game-dialog:not([open])", { state: "attached" });

  // To the board, e2 to e4.
  for (let i = 0; i < 20 && !(await page.evaluate(() => document.activeElement.dataset.cell !== undefined)); ++i) await keyboard.press("Tab");
  assert.equal(await page.evaluate(() => document.activeElement.getAttribute("aria-label")), "e2, white pawn");
  const outline = await page.evaluate(() => getComputedStyle(document.activeElement).outlineWidth);
  assert.ok(Number.parseFloat(outline) >= 3, outline);
  await keyboard.press("Enter");
  assert.deepEqual(await visitor.marked("target"), ["e3", "e4"]);
  await page.waitForFunction(() => document.getElementById("announcer").textContent.includes("may go to e3, e4"));
  await keyboard.press("ArrowUp");
  await keyboard.press("ArrowUp");
  await keyboard.press("Enter");
  await visitor.movesAre(2);
  await page.waitForFunction(() => /^Black: /.test(document.getElementById("announcer").textContent));

  // A move by its name, and letters as keys.
  await keyboard.press("/");
  await keyboard.type("nf3");
  await keyboard.press("Enter");
  const moves = await visitor.movesAre(4);
  assert.equal(moves[2], "Nf3");
  await keyboard.type("u");
  assert.equal(await page.inputValue("#entry-text"), "u");
  await keyboard.press("Backspace");
  await page.focus("#flip");
  await keyboard.press("u");
  await visitor.movesAre(2);
  await keyboard.press("s");
  await page.waitForFunction(() => /Your move, you play White/.test(document.getElementById("announcer").textContent));
  await keyboard.press("?");
  await page.waitForSelector("#help-dialog[open]");
  await keyboard.press("Escape");

  // The focus never leaves the page's own elements for nothing.
  await page.focus("#new-game");
  const seen = new Set();
  for (let i = 0; i < 40; ++i) {
    await keyboard.press("Tab");
    seen.add(await page.evaluate(() => document.activeElement.id || document.activeElement.dataset.cell || document.activeElement.tagName));
  }
  for (const id of ["theme", "help", "take-back", "hint", "move-now", "flip", "entry-text", "first", "SUMMARY"]) assert.ok(seen.has(id), id);
});

visiting("Everything has a name for screen readers", {}, async (visitor, page) => {
  await visitor.openTexts();
  const nameless = await page.evaluate(() => [...document.querySelectorAll("button, input, textarea, select, [role=img], [role=grid]")]
    .filter((node) => !node.closest("[aria-hidden=true]"))
    .filter((node) => (node.getAttribute("aria-label") || node.labels?.[0]?.textContent || node.textContent).trim() === "")
    .map((node) => node.outerHTML));
  assert.deepEqual(nameless, []);
  assert.equal(await page.locator("[role=gridcell]").count(), 64);
  assert.equal(await page.locator('[data-cell="g1"]').getAttribute("aria-label"), "g1, white knight");
});

visiting("A phone needs no scrolling sideways", { context: { viewport: { width: 360, height: 740 }, hasTouch: true, isMobile: true } }, async (visitor, page) => {
  await visitor.begin({ kind: "clock", minutes: 180, increment: 1 });
  for (const square of ["e2", "e4"]) await page.touchscreen.tap(...await visitor.middleOf(square));
  await visitor.movesAre(2);
  await page.evaluate(() => document.querySelectorAll("details").forEach((details) => { details.open = true; }));
  await page.waitForSelector("#report table");
  const width = () => page.evaluate(() => Math.max(document.documentElement.scrollWidth, document.body.scrollWidth));
  assert.equal(await width(), 360);
  for (const id of ["new-game", "help"]) {
    await visitor.press(id);
    assert.ok(await page.evaluate((name) => {
      const dialog = document.getElementById(`${name}-dialog`);
      return dialog.scrollWidth <= dialog.clientWidth;
    }, id), id);
    await page.keyboard.press("Escape");
  }
  const board = await page.locator("#board").boundingBox();
  assert.ok(board.width >= 320, `the board is ${board.width} wide`);
});

visiting("The evaluation is explained term by term", { saved: savedGame({ moves: "e4 e5 Nf3 Nc6", player: "both" }) }, async (visitor, page) => {
  await page.click("#report summary");
  await page.waitForSelector("#report table");
  const rows = await page.locator("#report tbody th").allTextContents();
  assert.equal(rows.length, 9);
  assert.match(rows[0], /^MaterialThe pieces/);
  const balance = (await page.locator("#report tbody .balance").allTextContents()).map((text) => Number(text.replace("\u2212", "-")));
  const total = Number((await page.locator("#report tfoot .balance").textContent()).replace("\u2212", "-"));
  assert.ok(Math.abs(balance.reduce((sum, part) => sum + part, 0) - total) < 0.02);
  await visitor.setUp("8/8/4k3/8/8/4K3/8/8 w - - 0 1");
  await page.waitForFunction(() => /enough pieces/.test(document.getElementById("report-body").textContent));
});

visiting("All moves of a game are scored, and the graph follows", { saved: savedGame({ moves: "f3 e5 g4", player: "both" }) }, async (visitor, page) => {
  await visitor.press("score-game");
  await page.waitForFunction(() => /4 of 4 positions/.test(document.querySelector("#graph svg").getAttribute("aria-label")));
  assert.match(await page.getAttribute("#bar", "aria-label"), /Black mates/);
  const box = await page.locator("#graph svg").boundingBox();
  await page.mouse.click(box.x + 2, box.y + 20);
  await visitor.statusSays("earlier position");
});

visiting("The colours are chosen and kept", {}, async (visitor, page) => {
  const paper = () => page.evaluate(() => getComputedStyle(document.body).backgroundColor);
  const light = await paper();
  await page.emulateMedia({ colorScheme: "dark" });
  const dark = await paper();
  assert.notEqual(dark, light);
  await visitor.press("theme");
  assert.equal(await paper(), light);
  await page.reload();
  assert.equal(await paper(), light);
});

async function offlineCopyIsThere(page) {
  await page.waitForFunction(() => navigator.serviceWorker.controller !== null);
}

visiting("Once loaded the page needs no network, and hears the engine better", { isolated: false }, async (visitor, page) => {
  await offlineCopyIsThere(page);
  await visitor.type("e4");
  await visitor.movesAre(2);
  await visitor.stopServer();
  await page.reload();
  await visitor.engineRuns();
  // The offline copy comes with the headers that the host did not send.
  assert.equal(await page.evaluate(() => document.documentElement.dataset.engine), "interruptible");
  await visitor.movesAre(2);
  await visitor.type("d4");
  await visitor.movesAre(4);
  await page.click("#report summary");
  await page.waitForSelector("#report table");
  await visitor.page.context().setOffline(false);
  // The browser asks for a newer version and finds no host: that is not the page's mistake.
  visitor.complaints.splice(0, Infinity, ...visitor.complaints.filter((text) => !/ERR_CONNECTION_REFUSED|service worker script/i.test(text)));
});

// The page with one file changed, as a later version would be.
function laterVersion(folder) {
  const copy = fs.mkdtempSync(path.join(os.tmpdir(), "mirvo-page-"));
  fs.cpSync(folder, copy, { recursive: true });
  const change = (name, from, to) => {
    const file = path.join(copy, name);
    fs.writeFileSync(file, fs.readFileSync(file, "utf8").replace(from, to));
  };
  change("index.html", "<title>", "<title>Later: ");
  change("service_worker.js", /VERSION = "\w+"/, 'VERSION = "later"');
  return copy;
}

for (const [how, accept] of [["when it is accepted", (page) => page.click("#notice button")],
  ["at the next visit", async (page) => {
    await page.waitForSelector("#notice button");
    await page.reload();
  }]]) {
  test(`A newer version is offered and taken ${how}, and the old one forgotten`, { timeout: 4 * PATIENCE }, async () => {
    const folder = fs.mkdtempSync(path.join(os.tmpdir(), "mirvo-page-"));
    fs.cpSync(pageFolder, folder, { recursive: true });
    const later = laterVersion(pageFolder);
    await visit(browser, { folder }, async (visitor, page) => {
      await offlineCopyIsThere(page);
      await visitor.type("e4");
      await visitor.movesAre(2);
      fs.cpSync(later, folder, { recursive: true });
      await page.reload();
      await accept(page);
      await page.waitForFunction(() => document.title.startsWith("Later"));
      await visitor.movesAre(2);
      assert.deepEqual(await page.evaluate(() => caches.keys()), ["mirvo-later"]);
    });
    for (const name of [folder, later]) fs.rmSync(name, { recursive: true });
  });
}
