// A game as the browser keeps it from visit to visit.
import { Game } from "../../../web/page/src/game.js";
import { gameToText } from "../../../web/page/src/storage.js";

/**
 * @param {object} state
 * @param {string} [state.fen] where the game began
 * @param {string} [state.moves] in short notation
 * @param {string} [state.player] "w", "b" or "both"
 * @param {object} [state.limit]
 * @param {{w: number, b: number}} [state.clock] milliseconds left
 * @returns {Object<string, string>} what the storage holds
 */
export function savedGame({ fen, moves = "", player = "w", limit = { kind: "depth", depth: 1 }, clock = null }) {
  const game = new Game(fen);
  for (const move of moves.split(" ").filter(Boolean)) {
    if (game.play(move) === null) throw new Error(`${move} is not possible`);
  }
  const clocks = new Array(game.plies.length + 1).fill(clock);
  return { "mirvo.game": gameToText({ game, player, limit, clocks, scores: [], flipped: false }) };
}
