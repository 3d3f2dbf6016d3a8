// What each side has more of than the other.
import { piecesOf } from "./rules.js";

const VALUES = { q: 9, r: 5, b: 3, n: 3, p: 1 };

/**
 * @param {string} fen
 * @returns {{w: {pieces: string[], lead: number}, b: {pieces: string[], lead: number}}}
 *   the kinds that a side has more of, heaviest first, and its lead in points, at least 0
 */
export function surplus(fen) {
  const difference = { q: 0, r: 0, b: 0, n: 0, p: 0 };
  for (const piece of Object.values(piecesOf(fen))) {
    const kind = piece.toLowerCase();
    if (kind in difference) difference[kind] += piece === kind ? -1 : 1;
  }
  const kinds = Object.keys(difference);
  const lead = kinds.reduce((sum, kind) => sum + difference[kind] * VALUES[kind], 0);
  const more = (sign) => kinds.flatMap((kind) =>
    new Array(Math.max(sign * difference[kind], 0)).fill(kind));
  return {
    w: { pieces: more(1), lead: Math.max(lead, 0) },
    b: { pieces: more(-1), lead: Math.max(-lead, 0) },
  };
}
