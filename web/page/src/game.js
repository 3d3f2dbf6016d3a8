// One game: where it began, its moves, how it stands. Nothing here knows of the
// page, the engine or the clocks.
import { Chess } from "chess.js";
import { SIDE_NAMES, START_FEN, opponent, readCoordinates } from "./rules.js";

/** Half-moves that a game may have; the longest possible one has fewer than 12,000. */
export const MAX_PLIES = 12000;

// Moves in short or long algebraic notation. chess.js is content with less, and
// reads "--" as a move that passes.
const NOTATION = /^(?:[KQRBN]?[a-h]?[1-8]?[x-]?[a-h][1-8](?:=?[QRBN])?|[O0]-[O0](?:-[O0])?)[+#]*$/;

/**
 * @typedef {object} Ply one move that was played
 * @property {string} san
 * @property {string} uci coordinates, as e7e8q
 * @property {string} from
 * @property {string} to
 * @property {string} fen the position behind the move
 * @property {boolean} check whether the other side is in check now
 */

/**
 * @typedef {object} Outcome how a game ended
 * @property {"1-0"|"0-1"|"1/2-1/2"|"*"} result
 * @property {string} reason a sentence for the reader
 */

export class Game {
  #chess;
  /** Flag fall, resignation and the like, which the board does not show. */
  #declared = null;

  /** @param {string} startFen as `readFen` gives it */
  constructor(startFen = START_FEN) {
    this.#chess = new Chess(startFen);
    this.startFen = startFen;
    /** @type {Ply[]} */
    this.plies = [];
  }

  /** The newest position. */
  get fen() {
    return this.fenAt(this.plies.length);
  }

  get turn() {
    return this.#chess.turn();
  }

  /** The position after so many half-moves. */
  fenAt(count) {
    return count === 0 ? this.startFen : this.plies[count - 1].fen;
  }

  /**
   * Plays a move: coordinates ("e7e8q"), their record, or algebraic notation.
   * @returns {Ply|null} null, and nothing played, if the move is not possible
   */
  play(move) {
    if (this.plies.length >= MAX_PLIES) return null;
    const asked = typeof move === "string" ? (readCoordinates(move) ?? move) : move;
    if (typeof asked === "string" && !NOTATION.test(asked)) return null;
    let made;
    try {
      made = this.#chess.move(asked);
    } catch {
      return null;
    }
    const ply = {
      san: made.san,
      uci: made.from + made.to + (made.promotion ?? ""),
      from: made.from,
      to: made.to,
      fen: made.after,
      check: /[+#]$/.test(made.san),
    };
    this.plies.push(ply);
    this.#declared = null;
    return ply;
  }

  /** Takes so many half-moves back. */
  takeBack(count) {
    for (let i = 0; i < count && this.plies.length > 0; ++i) {
      this.#chess.undo();
      this.plies.pop();
    }
    this.#declared = null;
  }

  /** @returns {{from: string, to: string, promotion?: string}[]} the legal moves, of one square if it is given */
  legalMoves(square) {
    return this.#chess.moves({ verbose: true, square })
      .map(({ from, to, promotion }) => ({ from, to, promotion }));
  }

  inCheck() {
    return this.#chess.isCheck();
  }

  /** Ends the game for a reason that is not on the board. */
  declare(result, reason) {
    this.#declared = { result, reason };
  }

  /** What `declare` said, if it still holds. */
  get declared() {
    return this.#declared;
  }

  /** The side that has so little left that it cannot win by the clock: a bare king. */
  hasBareKing(side) {
    return this.#chess.board().flat().filter((piece) => piece?.color === side).length === 1;
  }

  /** @returns {Outcome|null} null while the game goes on */
  outcome() {
    const chess = this.#chess;
    if (chess.isCheckmate()) {
      const winner = opponent(chess.turn());
      return {
        result: winner === "w" ? "1-0" : "0-1",
        reason: `Checkmate: ${SIDE_NAMES[winner]} wins.`,
      };
    }
    const draws = [
      [() => chess.isStalemate(), "stalemate"],
      [() => chess.isInsufficientMaterial(), "neither side has enough pieces to mate"],
      [() => chess.isThreefoldRepetition(), "the position has occurred three times"],
      [() => chess.isDrawByFiftyMoves(), "fifty moves without a capture or a pawn move"],
    ];
    const draw = draws.find(([holds]) => holds());
    if (draw !== undefined) return { result: "1/2-1/2", reason: `Draw: ${draw[1]}.` };
    return this.#declared;
  }
}
