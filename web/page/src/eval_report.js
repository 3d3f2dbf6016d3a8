// The engine's own account of its evaluation: what "mirvo -eval POSITION" prints,
// read into rows, with a word on what each term looks at.

/** What the rows of the report are about, in its order. */
export const TERMS = {
  material: ["Material", "The pieces and pawns themselves. Rooks gain and knights lose as pawns leave the board."],
  pawns: ["Pawns", "The pawn structure: doubled, isolated and backward pawns, pawns that protect each other."],
  knights: ["Knights", "Mobility and centre of the knights, outposts, and what they attack near the enemy king."],
  bishops: ["Bishops", "Mobility of the bishops, the pair, pawns on their colour, bishops that are shut in."],
  rooks: ["Rooks", "Mobility of the rooks, open and half-open files, the second rank, rooks that are shut in."],
  queens: ["Queens", "Mobility and place of the queens, and what they attack near the enemy king."],
  kings: ["Kings", "Pawn shelter, open files and enemy pieces around the king; castling rights; in the end game its place."],
  devel: ["Development", "In the opening: knights and bishops at home, a queen that is out too early, rooks off their corners."],
};

/** The row for what the report has no row of its own for. */
export const OTHER_TERMS = ["Passed pawns, threats and the rest",
  "What the engine adds without a row of its own: passed pawns, attacked pieces, blocked centre pawns and pawns on the wings. Told by difference."];

const ROW = /^\s*(\w+):\s+(-?[\d.]+)\s*\|\s*(-?[\d.]+)\s+(-?[\d.]+)\s*\|\s*(-?[\d.]+)\s+(-?[\d.]+)\s*\|/;

/**
 * @typedef {object} ReportRow one term, in pawns; points for Black are negative
 * @property {string} name
 * @property {string} meaning
 * @property {number} balance at the position's phase
 * @property {[number, number]|null} white middle game, end game
 * @property {[number, number]|null} black
 */

/**
 * Reads what the engine printed.
 * @param {string[]} lines
 * @param {"w"|"b"} side the side to move of the position
 * @returns {{rows: ReportRow[], total: number}|null} total in White's view; null if it is no report
 */
export function readEvalReport(lines, side) {
  const rows = [];
  let total = null;
  for (const line of lines) {
    const found = ROW.exec(line);
    if (found !== null && Object.hasOwn(TERMS, found[1])) {
      const [name, meaning] = TERMS[found[1]];
      const [balance, ...parts] = found.slice(2).map(Number);
      rows.push({ name, meaning, balance, white: parts.slice(0, 2), black: parts.slice(2) });
    }
    const full = /^Full eval: (-?\d+)/.exec(line);
    if (full !== null) total = (side === "w" ? Number(full[1]) : -Number(full[1]) || 0) / 100;
  }
  if (total === null) return null;
  if (rows.length > 0) {
    const told = rows.reduce((sum, row) => sum + row.balance, 0);
    const balance = Math.round((total - told) * 100) / 100 || 0;
    const [name, meaning] = OTHER_TERMS;
    rows.push({ name, meaning, balance, white: null, black: null });
  }
  return { rows, total };
}

/** The engine's arguments for a report on a position. */
export function evalArguments(fen) {
  return ["-eval", ...fen.split(" ").slice(0, 3)];
}

/** "+0.34", "−1.20", "0.00". */
export function pawnsText(pawns) {
  const text = Math.abs(pawns).toFixed(2);
  if (Number(text) === 0) return "0.00";
  return (pawns > 0 ? "+" : "\u2212") + text;
}
