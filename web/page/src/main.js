// Starts the page: the engine, the kept game, the offline copy.
import { EngineSession } from "./engine_session.js";
import { keepOffline } from "./offline.js";
import { Page, announce } from "./page.js";
import { Play } from "./play.js";
import { loadGame } from "./storage.js";

// The engine's package lies beside the page, under a name that changes with its
// contents (build.mjs fills it in).
const ENGINE = new URL(globalThis.MIRVO_ENGINE, document.baseURI);

async function createEngine(options) {
  const { createEngine: create } = await import(ENGINE.href);
  return create(options);
}

const settings = [
  "UseOpeningBook=1", "Book=book.bk", "Ponder=0", "PawnHashSize=4", "EvalHashSize=16",
  "TTHashSize=32", "MoveOverhead=50", "",
];

const session = new EngineSession(createEngine, { files: { "config.txt": settings.join("\n") } });
let page = null;
const play = new Play(session, { onChange: () => page?.changed(), onSay: announce });
page = new Page(play, createEngine);

const { saved, damaged } = loadGame();
if (saved !== null) play.resume(saved);
else play.begin({ player: "w", limit: play.limit });
if (damaged) announce("The saved game could not be read. A new one begins.");
page.render();

session.start().then(() => {
  page.ready = true;
  document.documentElement.dataset.engine = session.interruptible ? "interruptible" : "plain";
  page.changed();
}, () => {}); // play tells of failures

keepOffline((useIt) => {
  page.update = useIt;
  page.changed();
});
