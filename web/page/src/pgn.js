// Games as text. What is read may come from anywhere, so every loop runs forward
// through the text once, nothing is nested, and what is kept is short.
import { Game, MAX_PLIES } from "./game.js";
import { START_FEN, readFen, sideToMove } from "./rules.js";

/** Characters of a PGN that is read; the longest games with comments fit ten times. */
export const MAX_PGN_LENGTH = 2_000_000;

const MAX_TAGS = 100;
const MAX_TAG_VALUE = 200;
const LINE_LENGTH = 80;

const RESULTS = new Set(["1-0", "0-1", "1/2-1/2", "*"]);
const TAG = /\[\s*([A-Za-z0-9_]{1,60})\s+"((?:[^"\\\r\n]|\\.)*)"\s*\]/y;
const WORD = /[^\s(){};[\]]+/y;

/** What is worth keeping of a text from outside: no control characters, not too long. */
export function cleanText(text, most = MAX_TAG_VALUE) {
  return String(text).replace(/[\u0000-\u001f\u007f-\u009f\u2028\u2029\u202a-\u202e\u2066-\u2069]/g, " ").trim()
    .slice(0, most);
}

// Splits a text into tags and words; comments and variations are left out.
class Scanner {
  constructor(text) {
    this.text = text;
    this.at = 0;
  }

  skipTo(mark) {
    const found = this.text.indexOf(mark, this.at);
    this.at = found < 0 ? this.text.length : found + mark.length;
  }

  match(pattern) {
    pattern.lastIndex = this.at;
    const found = pattern.exec(this.text);
    if (found !== null) this.at = pattern.lastIndex;
    return found;
  }

  // Variations may lie in each other as deep as they like: only the depth is counted.
  skipVariation() {
    let depth = 0;
    while (this.at < this.text.length) {
      const letter = this.text[this.at++];
      if (letter === "(") depth += 1;
      else if (letter === ")") depth -= 1;
      else if (letter === "{") this.skipTo("}");
      else if (letter === ";") this.skipTo("\n");
      if (depth === 0) return;
    }
  }

  /** @returns {{tag?: [string, string], word?: string}|null} null at the end */
  next() {
    while (this.at < this.text.length) {
      const letter = this.text[this.at];
      const lineBegins = this.at === 0 || this.text[this.at - 1] === "\n";
      if (letter === "{") this.skipTo("}");
      else if (letter === ";" || (letter === "%" && lineBegins)) this.skipTo("\n");
      else if (letter === "(") this.skipVariation();
      else if (letter === "[") {
        const tag = this.match(TAG);
        if (tag !== null) return { tag: [tag[1], tag[2].replace(/\\(.)/g, "$1")] };
        this.skipTo("\n");
      } else {
        const word = this.match(WORD);
        if (word !== null) return { word: word[0] };
        this.at += 1;
      }
    }
    return null;
  }
}

// A word of the movetext without its number and its remarks; empty if nothing is left.
function moveOf(word) {
  if (word.startsWith("$")) return "";
  return word.replace(/^\d+\.+/, "").replace(/^\.+/, "").replace(/[!?]+$/, "");
}

function startOf(tags) {
  if (tags.FEN === undefined) return { fen: START_FEN };
  return readFen(tags.FEN);
}

/**
 * Reads the first game of a PGN text.
 * @param {string} text
 * @returns {{game?: Game, tags?: Object<string, string>, result?: string, note?: string, error?: string}}
 */
export function readPgn(text) {
  if (text.length > MAX_PGN_LENGTH) return { error: "The PGN is longer than two million characters." };
  const scanner = new Scanner(text.replace(/^\ufeff/, ""));
  const tags = Object.create(null);
  let game = null;
  let result = "*";
  let note = "";
  for (let token = scanner.next(); token !== null; token = scanner.next()) {
    if (token.tag !== undefined) {
      if (game !== null) {
        note = "Only the first game of the text was read.";
        break;
      }
      const [name, value] = token.tag;
      if (Object.keys(tags).length < MAX_TAGS) tags[name] = cleanText(value);
      continue;
    }
    const move = RESULTS.has(token.word) ? "" : moveOf(token.word);
    if (move === "" && !RESULTS.has(token.word)) continue;
    if (game === null) {
      const start = startOf(tags);
      if (start.error !== undefined) return { error: `The game's position: ${start.error}` };
      game = new Game(start.fen);
    }
    if (RESULTS.has(token.word)) {
      result = token.word;
      if (/\[\s*[A-Za-z0-9_]{1,60}\s+"/.test(text.slice(scanner.at, scanner.at + 100_000))) {
        note = "Only the first game of the text was read.";
      }
      break;
    }
    if (game.plies.length >= MAX_PLIES) return { error: "The game has too many moves." };
    if (game.play(move) === null) {
      const number = Number(game.fen.split(" ")[5]);
      const dots = sideToMove(game.fen) === "w" ? "." : "...";
      return { error: `Move ${number}${dots} "${cleanText(move, 20)}" is not possible.` };
    }
  }
  if (game === null) {
    const start = startOf(tags);
    if (tags.FEN === undefined || start.error !== undefined) {
      return { error: start.error ?? "There is no game in the text." };
    }
    game = new Game(start.fen);
  }
  return { game, tags, result, note };
}

function tagLine(name, value) {
  return `[${name} "${cleanText(value).replace(/[\\"]/g, "\\$&")}"]`;
}

function movetext(game, result) {
  const words = [];
  let number = Number(game.startFen.split(" ")[5]);
  let side = sideToMove(game.startFen);
  for (const [index, ply] of game.plies.entries()) {
    if (side === "w") words.push(`${number}.`);
    else if (index === 0) words.push(`${number}...`);
    words.push(ply.san);
    if (side === "b") number += 1;
    side = side === "w" ? "b" : "w";
  }
  words.push(result);
  const lines = [""];
  for (const word of words) {
    const line = lines[lines.length - 1];
    if (line === "") lines[lines.length - 1] = word;
    else if (line.length + 1 + word.length > LINE_LENGTH) lines.push(word);
    else lines[lines.length - 1] = `${line} ${word}`;
  }
  return lines.join("\n");
}

/**
 * Writes a game with its seven tags.
 * @param {Game} game
 * @param {{white: string, black: string, date?: string, event?: string}} tags
 */
export function writePgn(game, { white, black, date = "????.??.??", event = "Casual game" }) {
  const result = game.outcome()?.result ?? "*";
  const lines = [
    tagLine("Event", event),
    tagLine("Site", "?"),
    tagLine("Date", date),
    tagLine("Round", "-"),
    tagLine("White", white),
    tagLine("Black", black),
    tagLine("Result", result),
  ];
  if (game.startFen !== START_FEN) {
    lines.push(tagLine("SetUp", "1"), tagLine("FEN", game.startFen));
  }
  return `${lines.join("\n")}\n\n${movetext(game, result)}\n`;
}
