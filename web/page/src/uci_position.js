// The "position" command for a game. The engine reads lines of up to 4095
// characters, so a long game is told from one of its later positions; and it
// reads no en-passant square, so a position with one is told by the position
// before it and the double step.
import { START_FEN, opponent } from "./rules.js";

/** Characters of a command, below the engine's limit. */
export const MAX_COMMAND = 4000;

const MOVE_LENGTH = 6; // a promotion and its blank

// A FEN without its en-passant square, and the double step that made it, if any.
function baseOf(fen) {
  if (fen === START_FEN) return { words: "startpos", moves: [] };
  const [placement, side, rights, enPassant, halfMoves, number] = fen.split(" ");
  if (enPassant === "-") return { words: `fen ${fen}`, moves: [] };
  const file = enPassant[0];
  const mover = opponent(side);
  const [from, to, pawn] = mover === "w" ? ["2", "4", "P"] : ["7", "5", "p"];
  const rows = placement.split("/").map((row) =>
    row.replace(/\d/g, (digit) => ".".repeat(Number(digit))).split(""));
  const column = file.charCodeAt(0) - "a".charCodeAt(0);
  rows[8 - Number(to)][column] = ".";
  rows[8 - Number(from)][column] = pawn;
  const before = rows
    .map((row) => row.join("").replace(/\.+/g, (gap) => String(gap.length)))
    .join("/");
  const numberBefore = mover === "b" ? Math.max(Number(number) - 1, 1) : number;
  return {
    words: `fen ${before} ${mover} ${rights} - ${halfMoves} ${numberBefore}`,
    moves: [file + from + file + to],
  };
}

function command(fen, moves) {
  const base = baseOf(fen);
  const all = [...base.moves, ...moves];
  return `position ${base.words}${all.length > 0 ? ` moves ${all.join(" ")}` : ""}`;
}

/**
 * @param {import("./game.js").Game} game
 * @param {number} count half-moves of the game that have been played
 * @returns {string} a command of at most `MAX_COMMAND` characters
 */
export function positionCommand(game, count = game.plies.length) {
  const moves = game.plies.slice(0, count).map((ply) => ply.uci);
  const whole = command(game.startFen, moves);
  if (whole.length <= MAX_COMMAND) return whole;
  const reserved = 200; // the words, a FEN and a double step
  const kept = Math.floor((MAX_COMMAND - reserved) / MOVE_LENGTH);
  return command(game.fenAt(count - kept), moves.slice(-kept));
}
