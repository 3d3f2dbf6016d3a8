// What comes to the page as text: games, positions, what the browser has kept; from
// friends and from others.
import assert from "node:assert/strict";
import { after, before, test } from "node:test";

import { PATIENCE, launch, visit } from "../support/browser.mjs";
import { longGame } from "../support/long_game.mjs";

let browser;
before(async () => { browser = await launch(); });
after(async () => { await browser?.close(); });

/** A test that visits the page. */
function visiting(name, options, walk) {
  test(name, { timeout: 4 * PATIENCE }, () => visit(browser, options, walk));
}

visiting("PGN and FEN are copied and read again", { context: { permissions: ["clipboard-read", "clipboard-write"] } }, async (visitor, page) => {
  const clipboard = () => page.evaluate(() => navigator.clipboard.readText());
  await visitor.begin();
  await visitor.type("d4");
  const moves = await visitor.movesAre(2);
  await visitor.openTexts();
  await visitor.press("pgn-copy");
  await page.waitForFunction(() => document.getElementById("exchange-message").textContent === "PGN copied.");
  const pgn = await clipboard();
  assert.match(pgn, /\[White "Player"\]\n\[Black "Mirvo"\]/);
  assert.match(pgn, new RegExp(`1\\. d4 ${moves[1]} \\*`));
  await visitor.press("fen-copy");
  await page.waitForFunction(() => document.getElementById("exchange-message").textContent === "FEN copied.");
  assert.match(await clipboard(), / w KQkq /);

  await visitor.begin();
  await visitor.movesAre(0);
  assert.equal(await visitor.loadPgn(pgn), "2 half-moves loaded.");
  assert.deepEqual(await visitor.movesAre(2), moves);
  await page.setInputFiles("#pgn-file", { name: "game.pgn", mimeType: "text/plain", buffer: Buffer.from("1. c4 c5 2. g3 *") });
  await visitor.movesAre(3);

  const fen = "4k3/8/8/8/8/8/4P3/4K3 b - - 0 1";
  assert.equal(await visitor.setUp(fen), "The position is set up.");
  await visitor.movesAre(0);
  assert.equal(await page.inputValue("#fen"), fen);
});

visiting("A game of a thousand moves is loaded and gone on with", {}, async (visitor, page) => {
  const { pgn } = longGame(2000);
  await visitor.begin();
  assert.equal(await visitor.loadPgn(pgn), "2000 half-moves loaded.");
  await visitor.movesAre(2000);
  await visitor.press("hint");
  await page.waitForSelector(".square.hinted");
  await visitor.press("move-now"); // the engine takes White
  const moves = await visitor.movesAre(2001);
  await page.reload();
  assert.equal((await visitor.movesAre(2001)).at(-1), moves.at(-1));
  await visitor.press("first");
  await page.waitForFunction(() => document.getElementById("earlier").getAttribute("aria-disabled") === "true");
  await visitor.press("last");
  await visitor.statusSays("you play Black");
});

// Each tries to become a script, an element or a request.
const MARKUP = [
  "<img src=x onerror=window.hacked=1>",
  "<script>window.hacked=1</script>",
  "\"><svg onload=window.hacked=1>",
  "javascript:window.hacked=1",
  "<iframe src=http://example.com></iframe>",
  "${window.hacked=1}",
];

async function nothingHappened(page) {
  assert.equal(await page.evaluate(() => window.hacked), undefined);
  assert.equal(await page.locator("img, iframe, object, embed, svg[onload], script:not([type=module])").count(), 0);
}

visiting("Hostile FEN and PGN are text and nothing more", {}, async (visitor, page) => {
  await visitor.begin({ player: "both" });
  for (const text of MARKUP) {
    assert.match(await visitor.setUp(text), /FEN/);
    assert.match(await visitor.setUp(`4k3/8/8/8/8/8/8/4K3 w ${text}`), /./);
    await visitor.loadPgn(`1. ${text} *`);
    await visitor.loadPgn(`[White "${text.replaceAll('"', '\\"')}"]\n[Event "${text.replaceAll('"', '\\"')}"]\n\n1. e4 {${text}} e5 ; ${text}\n *`);
    await visitor.movesAre(2);
    assert.ok((await visitor.text("name-bottom")).includes(text));
    assert.ok((await visitor.text("tags")).includes(text));
    await visitor.press("new-game");
    await page.keyboard.press("Escape");
    await nothingHappened(page);
  }
  const [text] = MARKUP;
  await visitor.type(text);
  await visitor.statusSays("is not possible here");
  assert.match(await visitor.loadPgn("x".repeat(2_000_001)), /longer than/);
  assert.match(await visitor.loadPgn(`1. e4 ${"(".repeat(500_000)} e5`), /1 half-moves loaded/);
  await nothingHappened(page);
});

visiting("The page's policy lets no inline script and no other host in", {}, async (visitor, page) => {
  await page.evaluate(() => {
    const script = document.createElement("script");
    script.textContent = "window.hacked = 1";
    document.body.append(script);
    const image = document.createElement("div");
    image.innerHTML = "<img src=x onerror='window.hacked = 1'>";
    document.body.append(image);
    return fetch("http://example.com/").catch(() => {});
  });
  await page.waitForTimeout(100);
  assert.equal(await page.evaluate(() => window.hacked), undefined);
  assert.ok(visitor.complaints.length >= 3 && visitor.complaints.every((text) => /Content Security Policy|Fetch API cannot load|404/.test(text)),
    visitor.complaints.join("\n"));
  visitor.complaints.length = 0;
});

for (const [name, text] of [["garbage", "{{{"], ["markup", JSON.stringify({ format: 1, start: MARKUP[0], moves: MARKUP[1] })],
  ["a game that cannot be", JSON.stringify({ format: 1, start: "8/8/8/8/8/8/8/8 w - - 0 1", moves: "" })]]) {
  visiting(`Storage with ${name} is no obstacle`, { saved: { "mirvo.game": text, "mirvo.choices": text } }, async (visitor, page) => {
    await visitor.type("e4");
    await visitor.movesAre(2);
    await nothingHappened(page);
  });
}
