// Makes the pictures of the page for the documentation: node pictures.mjs
//
// They are taken in Debian's Chromium, of the page in build/web/page.
import path from "node:path";
import { fileURLToPath } from "node:url";

import { launch, visit } from "../../tests/page/support/browser.mjs";
import { savedGame } from "../../tests/page/support/saved_game.mjs";

const documents = path.resolve(path.dirname(fileURLToPath(import.meta.url)), "../../docs/page");
const GAME = "e4 e5 Nf3 Nc6 Bb5 a6 Ba4 Nf6 O-O Nxe4 d4 b5 Bb3 d5 dxe5 Be6 c3 Bc5 Nbd2 O-O Bc2 Nxf2 Rxf2 f6 exf6 Bxf2+ Kxf2 Qxf6";
const CLOCKS = { kind: "clock", minutes: 10, increment: 5 };

const pictures = [
  {
    name: "light.png",
    saved: savedGame({ moves: GAME, limit: CLOCKS, clock: { w: 312000, b: 268000 } }),
    context: { viewport: { width: 1080, height: 790 } },
    async prepare(visitor, page) {
      await scored(visitor, page);
      await visitor.clickSquare("d2");
      await thought(visitor, page, "Nf1");
    },
  },
  {
    name: "dark.png",
    saved: savedGame({ moves: GAME, player: "both" }),
    context: { viewport: { width: 1080, height: 760 }, colorScheme: "dark" },
    async prepare(visitor, page) {
      await scored(visitor, page);
      await page.click("#report summary");
      await page.waitForSelector("#report table");
      await page.locator("#report").evaluate((report) => {
        const panel = document.querySelector(".panel");
        panel.prepend(report);
        scrollTo(0, 0);
      });
    },
  },
  {
    name: "phone.png",
    saved: savedGame({ moves: GAME, limit: CLOCKS, clock: { w: 312000, b: 268000 } }),
    context: { viewport: { width: 360, height: 780 }, deviceScaleFactor: 1.5, isMobile: true, hasTouch: true },
    async prepare(visitor, page) {
      await scored(visitor, page);
      await page.evaluate(() => scrollTo(0, 0));
    },
  },
];

async function scored(visitor, page) {
  await visitor.press("score-game");
  await page.waitForFunction(() => / (\d+) of \1 positions/.test(document.querySelector("#graph svg").getAttribute("aria-label")));
  await page.waitForFunction(() => document.getElementById("score-game").textContent === "Score all moves");
}

// Shows what the engine thinks about after a move of the person.
async function thought(visitor, page, move) {
  await visitor.type(move);
  await page.waitForFunction(() => /depth (?:[89]|1\d)/.test(document.getElementById("thinking-facts").textContent));
}

const browser = await launch();
for (const { name, prepare, ...options } of pictures) {
  await visit(browser, options, async (visitor, page) => {
    await prepare(visitor, page);
    await page.evaluate(() => document.activeElement.blur());
    await page.screenshot({ path: path.join(documents, name) });
  });
}
await browser.close();
