// Reads what the engine prints while it thinks.

/** Scores from here on are a mate. */
export const MATE_SCORE = 31000;

/**
 * @typedef {object} ThinkingLine
 * @property {number} depth
 * @property {number} seldepth
 * @property {number} time milliseconds
 * @property {number} score centipawns, in the view of the side to move
 * @property {number} nodes
 * @property {string[]} pv moves in coordinates
 */

/**
 * Reads an "info" line that has a score and a line of moves.
 * @returns {ThinkingLine|null} null for any other line
 */
export function readThinkingLine(line) {
  if (!line.startsWith("info ")) return null;
  const found = / pv ((?:[a-h][1-8][a-h][1-8][qrbn]? ?)+)/.exec(line);
  const number = (name) => Number(new RegExp(`\\b${name} (-?\\d+)`).exec(line)?.[1] ?? Number.NaN);
  const score = number("score cp");
  if (found === null || Number.isNaN(score)) return null;
  return {
    depth: number("depth") || 0,
    seldepth: number("seldepth") || 0,
    time: Math.max(number("time") || 0, 0),
    score,
    // The engine counts in 32 bits and prints the count with a sign.
    nodes: (number("nodes") || 0) >>> 0,
    pv: found[1].trim().split(" "),
  };
}

/**
 * Reads a "bestmove" line.
 * @returns {{move: string|null}|null} the move is null if there is none; null for any other line
 */
export function readBestMove(line) {
  const found = /^bestmove (\S+)/.exec(line);
  if (found === null) return null;
  return { move: /^[a-h][1-8][a-h][1-8][qrbn]?$/.test(found[1]) ? found[1] : null };
}

/**
 * A score in White's view: centipawns, or a mate.
 * @param {number} score in the view of `side`
 * @param {"w"|"b"} side
 * @returns {number}
 */
export function whitesScore(score, side) {
  return side === "w" ? score : -score || 0;
}

/** "+0.34", or "#" and "-#" for a mate that White gives or suffers. */
export function scoreText(score) {
  if (score >= MATE_SCORE) return "#";
  if (score <= -MATE_SCORE) return "-#";
  const pawns = (Math.abs(score) / 100).toFixed(2);
  if (Number(pawns) === 0) return "0.00";
  return (score > 0 ? "+" : "\u2212") + pawns;
}

/** A score in words, for screen readers. */
export function scoreInWords(score) {
  if (score >= MATE_SCORE) return "White mates";
  if (score <= -MATE_SCORE) return "Black mates";
  const pawns = (Math.abs(score) / 100).toFixed(2);
  if (Number(pawns) === 0) return "equal";
  return `${score > 0 ? "White" : "Black"} is ahead by ${pawns} pawns`;
}

/**
 * White's share of the evaluation bar, 0 to 1: a smooth curve on which one pawn
 * is well visible and ten pawns are almost everything.
 */
export function whitesShare(score) {
  if (score >= MATE_SCORE) return 1;
  if (score <= -MATE_SCORE) return 0;
  return 1 / (1 + Math.exp(-score / 250));
}
