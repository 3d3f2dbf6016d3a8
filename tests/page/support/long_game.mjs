// A legal game of any length for tests: knights go to and fro, and now and then each
// side steps with a pawn. Its last moves are new, so it is no draw by repetition.
import { Game } from "../../../web/page/src/game.js";

const ROUND = ["Nf3", "Nf6", "Ng1", "Ng8"];
const STEPS = ["a3 a6", "b3 b6", "c3 c6", "d3 d6", "e3 e6", "h3 h6"];
const ROUNDS_BETWEEN = 20;

function sanMoves(length) {
  const moves = [];
  for (let round = 0; moves.length < length - 2; ++round) {
    const step = STEPS[round / ROUNDS_BETWEEN];
    if (step !== undefined) moves.push(...step.split(" "));
    moves.push(...ROUND);
  }
  return [...moves.slice(0, length - 2), "g3", "g6"];
}

/**
 * @param {number} length half-moves, an even number
 * @returns {{pgn: string, moves: string[], plies: number}} the moves as coordinates
 */
export function longGame(length) {
  const game = new Game();
  for (const move of sanMoves(length)) {
    if (game.play(move) === null) throw new Error(`${move} is not possible`);
  }
  const words = game.plies.map((ply, index) => (index % 2 === 0 ? `${index / 2 + 1}. ${ply.san}` : ply.san));
  return {
    pgn: `[Event "A long game"]\n[White "One"]\n[Black "Two"]\n\n${words.join(" ")} *\n`,
    moves: game.plies.map((ply) => ply.uci),
    plies: game.plies.length,
  };
}
