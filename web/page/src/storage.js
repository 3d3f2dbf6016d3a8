// The game and the reader's choices, kept in the browser from visit to visit.
// What comes back may be damaged or made by somebody else, so it is checked like
// any text from outside.
import { Game, MAX_PLIES } from "./game.js";
import { readLimit } from "./limits.js";
import { START_FEN, readFen } from "./rules.js";

const GAME_KEY = "mirvo.game";
const CHOICES_KEY = "mirvo.choices";
const FORMAT = 1;
const MAX_CLOCK = 24 * 3600 * 1000;

/**
 * @typedef {object} SavedGame
 * @property {Game} game
 * @property {"w"|"b"|"both"} player the side, or sides, of the person
 * @property {import("./limits.js").Limit} limit
 * @property {({w: number, b: number}|null)[]} clocks after each number of half-moves
 * @property {(number|null)[]} scores of each position, in White's view
 * @property {boolean} flipped
 */

const isScore = (value) => Number.isInteger(value) && Math.abs(value) < 100000;

function readClock(value) {
  const isTime = (time) => Number.isFinite(time) && time >= 0 && time <= MAX_CLOCK;
  return isTime(value?.w) && isTime(value?.b) ? { w: value.w, b: value.b } : null;
}

function readList(value, length, read) {
  const list = Array.isArray(value) ? value.slice(0, length) : [];
  return Array.from({ length }, (_, index) => read(list[index]));
}

function readOutcome(value) {
  const known = ["1-0", "0-1", "1/2-1/2"].includes(value?.result);
  return known && typeof value.reason === "string"
    ? { result: value.result, reason: value.reason.slice(0, 200) } : null;
}

/** The saved form of a game. */
export function gameToText({ game, player, limit, clocks, scores, flipped }) {
  return JSON.stringify({
    format: FORMAT,
    start: game.startFen,
    moves: game.plies.map((ply) => ply.uci).join(" "),
    declared: game.declared,
    player, limit, clocks, scores, flipped,
  });
}

/**
 * @param {string} text
 * @returns {SavedGame|null} null if the text is no saved game
 */
export function gameFromText(text) {
  let saved;
  try {
    saved = JSON.parse(text);
  } catch {
    return null;
  }
  if (saved === null || typeof saved !== "object" || saved.format !== FORMAT) return null;
  if (typeof saved.moves !== "string" || saved.moves.length > MAX_PLIES * 6) return null;
  const start = saved.start === START_FEN ? { fen: START_FEN } : readFen(saved.start);
  if (start.error !== undefined) return null;
  const game = new Game(start.fen);
  for (const move of saved.moves.split(" ").filter((word) => word !== "")) {
    if (!/^[a-h][1-8][a-h][1-8][qrbn]?$/.test(move) || game.play(move) === null) return null;
  }
  const declared = readOutcome(saved.declared);
  if (declared !== null) game.declare(declared.result, declared.reason);
  const positions = game.plies.length + 1;
  return {
    game,
    player: ["w", "b", "both"].includes(saved.player) ? saved.player : "w",
    limit: readLimit(saved.limit),
    clocks: readList(saved.clocks, positions, readClock),
    scores: readList(saved.scores, positions, (value) => (isScore(value) ? value : null)),
    flipped: saved.flipped === true,
  };
}

// Storage may be switched off or full; the page works without it.
function attempt(action) {
  try {
    return action();
  } catch {
    return null;
  }
}

export function saveGame(state, storage = globalThis.localStorage) {
  return attempt(() => storage.setItem(GAME_KEY, gameToText(state)));
}

/** @returns {{saved: SavedGame|null, damaged: boolean}} */
export function loadGame(storage = globalThis.localStorage) {
  const text = attempt(() => storage.getItem(GAME_KEY));
  if (text === null || text === undefined) return { saved: null, damaged: false };
  const saved = gameFromText(text);
  return { saved, damaged: saved === null };
}

/** Choices that outlive a game. */
export const DEFAULT_CHOICES = { theme: "auto", singleKeys: true };

export function saveChoices(choices, storage = globalThis.localStorage) {
  attempt(() => storage.setItem(CHOICES_KEY, JSON.stringify(choices)));
}

export function loadChoices(storage = globalThis.localStorage) {
  const saved = attempt(() => JSON.parse(storage.getItem(CHOICES_KEY) ?? "{}"));
  return {
    theme: ["auto", "light", "dark"].includes(saved?.theme) ? saved.theme : DEFAULT_CHOICES.theme,
    singleKeys: typeof saved?.singleKeys === "boolean" ? saved.singleKeys : DEFAULT_CHOICES.singleKeys,
  };
}
