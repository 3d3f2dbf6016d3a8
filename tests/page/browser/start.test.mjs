// How long a first visitor waits for the engine's first move.
import assert from "node:assert/strict";
import { after, before, test } from "node:test";

import { PATIENCE, launch, visit } from "../support/browser.mjs";

const LIMIT = 2000; // ms from the start of loading
const TRIES = 5;

let browser;
before(async () => { browser = await launch(); });
after(async () => { await browser?.close(); });

// Everything happens in the page: each step as soon as it is possible.
function playAtOnce() {
  const observer = new MutationObserver(() => {
    if (document.querySelectorAll("#moves button").length === 2) window.firstMove ??= performance.now();
  });
  addEventListener("DOMContentLoaded", () => {
    observer.observe(document.body, { childList: true, subtree: true });
    addEventListener("load", () => {
      document.getElementById("entry-text").value = "e4";
      document.getElementById("entry").requestSubmit();
    });
  });
}

test("The engine's first move comes within two seconds of loading", { timeout: 4 * PATIENCE }, async (context) => {
  const times = [];
  for (let i = 0; i < TRIES && !times.some((time) => time < LIMIT); ++i) {
    await visit(browser, { init: playAtOnce }, async (_, page) => {
      times.push(await (await page.waitForFunction(() => window.firstMove)).jsonValue());
    });
  }
  context.diagnostic(`the first move came after ${times.map(Math.round).join(", ")} ms`);
  assert.ok(Math.min(...times) < LIMIT, `${times} ms`);
});
