// A browser without a screen, and pages in it that may do nothing wrong: no message
// of an error, no request to another host.
import assert from "node:assert/strict";
import fs from "node:fs";
import { createRequire } from "node:module";
import path from "node:path";
import { fileURLToPath } from "node:url";

import { serve } from "../../../web/page/serve.mjs";

const source = path.resolve(path.dirname(fileURLToPath(import.meta.url)), "../../..");
const { chromium } = createRequire(path.join(source, "web/page/package.json"))("playwright-core");

/** The built page. */
export const pageFolder = process.env.MIRVO_PAGE ?? path.join(source, "build/web/page");

const BROWSERS = [process.env.MIRVO_CHROMIUM, "/usr/bin/chromium", "/usr/bin/chromium-browser", "/usr/bin/google-chrome"];

/** Milliseconds that anything may take on a busy machine. */
export const PATIENCE = Number(process.env.MIRVO_PATIENCE ?? 60000);

// What the browser would do by itself, and what a container lacks.
const ARGUMENTS = [
  "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run", "--disable-background-networking",
  "--disable-component-update", "--disable-sync", "--disable-domain-reliability", "--disable-breakpad",
  "--disable-dev-shm-usage", "--no-pings", "--disable-features=OptimizationHints,MediaRouter,Translate,DialMediaRouteProvider",
  "--host-resolver-rules=MAP * ~NOTFOUND, EXCLUDE 127.0.0.1",
];

/** Starts the browser, in a folder of its own that is removed at its end. */
export function launch() {
  const executablePath = BROWSERS.find((name) => name !== undefined && fs.existsSync(name));
  assert.ok(executablePath, "no Chromium is installed");
  return chromium.launch({ executablePath, args: ARGUMENTS });
}

/**
 * A visit to the page: its own storage, no animation. At its end nothing may have
 * gone wrong.
 * @param {(visitor: Visitor, page: object) => Promise<void>} walk what is done in it
 * @param {import("playwright-core").Browser} browser
 * @param {object} options
 * @param {boolean} [options.isolated] whether the host sends the isolation headers
 * @param {string} [options.folder] what is served
 * @param {object} [options.saved] text of the storage, by name
 * @param {() => void} [options.init] what runs in the page before it is loaded
 * @param {object} [options.context] more options of the browser's context
 */
export async function visit(browser, { isolated = true, folder = pageFolder, saved = {}, init, context = {} }, walk) {
  const server = await serve(folder, { isolated });
  const tab = await browser.newContext({ viewport: { width: 1280, height: 900 }, reducedMotion: "reduce", ...context });
  tab.setDefaultTimeout(PATIENCE);
  const page = await tab.newPage();
  const complaints = [];
  page.on("console", (message) => {
    if (["error", "warning", "assert"].includes(message.type())) complaints.push(message.text());
  });
  page.on("pageerror", (error) => complaints.push(error.stack));
  tab.on("request", (request) => {
    if (!request.url().startsWith(server.url)) complaints.push(`request to ${request.url()}`);
  });
  await page.addInitScript((texts) => {
    for (const [name, text] of Object.entries(texts)) {
      if (localStorage.getItem(name) === null) localStorage.setItem(name, text);
    }
  }, saved);
  const visitor = new Visitor(page, server, complaints);
  if (init !== undefined) await page.addInitScript(init);
  try {
    await visitor.load();
    await walk(visitor, page);
    assert.deepEqual(complaints, []);
  } finally {
    await visitor.leave();
  }
}

/** What a person does on the page. */
export class Visitor {
  constructor(page, server, complaints) {
    Object.assign(this, { page, server, complaints });
  }

  async load() {
    await this.page.goto(this.server.url);
    await this.engineRuns();
  }

  engineRuns() {
    return this.page.waitForFunction(() => document.documentElement.dataset.engine !== undefined);
  }

  /** Ends the visit. */
  async leave() {
    await this.page.context().close();
    await this.stopServer();
  }

  stopServer() {
    const closed = new Promise((resolve) => { this.server.close(resolve); });
    this.server.closeAllConnections();
    return closed;
  }

  press(id) {
    return this.page.click(`#${id}`);
  }

  text(id) {
    return this.page.locator(`#${id}`).textContent();
  }

  moves() {
    return this.page.locator("#moves button").allTextContents();
  }

  /** Waits until the game has so many half-moves, and gives them. */
  async movesAre(count) {
    await this.page.waitForFunction((wanted) => document.querySelectorAll("#moves button").length === wanted, count);
    return this.moves();
  }

  statusSays(part) {
    return this.page.waitForFunction((text) => document.getElementById("status").textContent.includes(text), part);
  }

  async type(move) {
    await this.page.fill("#entry-text", move);
    await this.page.press("#entry-text", "Enter");
  }

  /** A square's middle, when the pieces' layer has turned as well. */
  async middleOf(square) {
    const box = await this.page.locator(`[data-cell="${square}"]`).boundingBox();
    const middle = [box.x + box.width / 2, box.y + box.height / 2];
    await this.page.waitForFunction(([name, x, y]) => document.elementFromPoint(x, y)?.dataset.square === name, [square, ...middle]);
    return middle;
  }

  async clickSquare(square) {
    await this.page.mouse.click(...await this.middleOf(square));
  }

  async drag(from, to) {
    await this.page.mouse.move(...await this.middleOf(from));
    await this.page.mouse.down();
    await this.page.mouse.move(...await this.middleOf(to), { steps: 4 });
    await this.page.mouse.up();
  }

  /** Squares with a mark: "target", "last", "hinted", "selected" or "check". */
  marked(mark) {
    return this.page.locator(`.square.${mark}[data-cell]`).evaluateAll((cells) => cells.map((cell) => cell.dataset.cell).sort());
  }

  /** Waits until a piece is drawn on a square, as "wn"; "" for none. */
  shows(square, piece) {
    return this.page.waitForFunction(([name, wanted]) => wanted
      === (document.querySelector(`.pieces g[data-piece][data-square="${name}"]`)?.dataset.piece ?? ""), [square, piece]);
  }

  /** Begins a game from the dialog. */
  async begin({ player = "w", depth = 1, kind = "depth", ...numbers } = {}) {
    const { page } = this;
    await this.press("new-game");
    await page.check(`input[name=player][value=${player}]`, { force: true });
    await page.check(`input[name=kind][value=${kind}]`, { force: true });
    if (kind === "depth") await page.fill("#depth", String(depth));
    for (const [name, number] of Object.entries(numbers)) await page.fill(`#${name}`, String(number));
    await page.click("#new-game-form button[type=submit]");
  }

  async openTexts() {
    await this.page.locator("#exchange").evaluate((details) => { details.open = true; });
    await this.page.waitForFunction(() => document.getElementById("fen").value !== "");
  }

  async setUp(fen) {
    await this.openTexts();
    await this.page.fill("#fen", fen);
    await this.page.click("#fen-form button[type=submit]");
    return this.text("exchange-message");
  }

  async loadPgn(pgn) {
    await this.openTexts();
    await this.page.evaluate((text) => { document.getElementById("pgn").value = text; }, pgn);
    await this.page.click("#pgn-form button[type=submit]");
    await this.page.waitForFunction(() => document.getElementById("exchange-message").textContent !== "");
    return this.text("exchange-message");
  }
}
