// The board: squares, marks and coordinates are a grid of our own, which is also
// what a keyboard and a screen reader use; the pieces on it, their moves and the
// pointer are cm-chessboard's, which lies over it with clear squares.
import { Chessboard, INPUT_EVENT_TYPE } from "cm-chessboard/src/Chessboard.js";
import { element } from "./dom.js";
import { piecesOf } from "./rules.js";
import { spokenSquare } from "./speech.js";

const FILES = "abcdefgh";
const ANIMATION = 180; // ms

/**
 * @typedef {object} BoardState what the board shows
 * @property {string} fen
 * @property {"w"|"b"} bottom the side at the lower edge
 * @property {{from: string, to: string}|null} last the move that led here
 * @property {{from: string, to: string}|null} hint
 * @property {string} check square of a king in check, or ""
 * @property {boolean} open whether moves can be made
 */

export class BoardView {
  #cells = new Map();
  #pieces = {};
  #state = null;
  #selected = "";
  #focused = "e2";
  #bottom = "";
  #turning = false;
  #handlers;

  /**
   * @param {HTMLElement} container
   * @param {object} handlers
   * @param {(square: string) => string[]} handlers.targets where a piece may go; none if it may not move
   * @param {(from: string, to: string) => boolean} handlers.move tries a move; false if it is not made at once
   * @param {(text: string) => void} handlers.say for screen readers
   */
  constructor(container, handlers) {
    this.#handlers = handlers;
    this.grid = element("div", {
      class: "squares", role: "grid", "aria-label": "Chessboard, use the arrow keys",
    });
    const layer = element("div", { class: "pieces", "aria-hidden": "true" });
    container.append(this.grid, layer);
    const still = matchMedia("(prefers-reduced-motion: reduce)").matches;
    this.board = new Chessboard(layer, {
      style: { showCoordinates: false, animationDuration: still ? 0 : ANIMATION },
    });
    this.board.enableMoveInput((event) => this.#pointer(event));
    this.grid.addEventListener("keydown", (event) => this.#key(event));
    this.grid.addEventListener("click", (event) => {
      const cell = event.target.closest("[data-cell]");
      if (cell !== null) this.#press(cell.dataset.cell);
    });
    this.#buildSquares("w");
  }

  /** Shows a position. */
  show(state, animated = true) {
    const moved = this.#state?.fen !== state.fen;
    this.#state = state;
    this.#pieces = piecesOf(state.fen);
    if (state.bottom !== this.#bottom) {
      this.#buildSquares(state.bottom);
      this.#turn();
    }
    if (this.#selected !== "" && (moved || !state.open)) {
      this.#select("");
      this.board.cancelMoveInput();
    }
    this.board.setPosition(state.fen, animated && moved);
    this.#mark();
  }

  /** Puts the pieces back as they should stand, after a move that was not made. */
  restore() {
    this.board.setPosition(this.#state.fen, false);
  }

  // The board turns behind what it still has to draw, and refuses a second turn
  // until then.
  async #turn() {
    if (this.#turning) return;
    this.#turning = true;
    while (this.board.getOrientation() !== this.#bottom) {
      await this.board.setOrientation(this.#bottom, false);
    }
    this.#turning = false;
  }

  focus() {
    this.#cells.get(this.#focused).focus();
  }

  #buildSquares(bottom) {
    const hadFocus = this.grid.contains(document.activeElement);
    this.#bottom = bottom;
    this.#cells.clear();
    const ranks = [8, 7, 6, 5, 4, 3, 2, 1];
    const files = [...FILES];
    if (bottom === "b") {
      ranks.reverse();
      files.reverse();
    }
    this.grid.replaceChildren(...ranks.map((rank, row) =>
      element("div", { role: "row" }, ...files.map((file, column) => {
        const square = file + rank;
        const light = (FILES.indexOf(file) + rank) % 2 === 0;
        const cell = element("div", {
          class: `square ${light ? "light" : "dark"}`, role: "gridcell", "data-cell": square, tabindex: "-1",
        });
        if (row === 7) cell.append(element("span", { class: "file", "data-text": file, "aria-hidden": "true" }));
        if (column === 0) cell.append(element("span", { class: "rank", "data-text": rank, "aria-hidden": "true" }));
        this.#cells.set(square, cell);
        return cell;
      }))));
    this.#cells.get(this.#focused).tabIndex = 0;
    if (hadFocus) this.focus();
  }

  #mark() {
    const { last, hint, check } = this.#state;
    const targets = new Set(this.#selected === "" ? [] : this.#handlers.targets(this.#selected));
    for (const [square, cell] of this.#cells) {
      const piece = this.#pieces[square];
      const among = (move) => move !== null && (square === move.from || square === move.to);
      const marks = {
        last: among(last),
        hinted: among(hint),
        check: square === check,
        selected: square === this.#selected,
        target: targets.has(square),
        "taken-target": targets.has(square) && piece !== undefined,
      };
      for (const [name, on] of Object.entries(marks)) cell.classList.toggle(name, on);
      const notes = [
        marks.selected && "selected", marks.target && "possible", marks.last && "last move",
        marks.hinted && "hint", marks.check && "in check",
      ].filter(Boolean);
      cell.setAttribute("aria-label", [spokenSquare(square, piece), ...notes].join(", "));
      cell.setAttribute("aria-selected", String(marks.selected));
    }
  }

  #select(square) {
    if (this.#selected === square) return;
    this.#selected = square;
    if (this.#state !== null) this.#mark();
  }

  // Whether a piece of this square may be moved now.
  #movable(square) {
    return this.#state.open && this.#handlers.targets(square).length > 0;
  }

  #pointer(event) {
    switch (event.type) {
      case INPUT_EVENT_TYPE.moveInputStarted:
        if (!this.#movable(event.squareFrom)) return false;
        this.#select(event.squareFrom);
        return true;
      case INPUT_EVENT_TYPE.validateMoveInput:
        return this.#handlers.targets(event.squareFrom).includes(event.squareTo);
      case INPUT_EVENT_TYPE.moveInputFinished:
        this.#select("");
        if (event.legalMove) this.#finish(event.squareFrom, event.squareTo);
        return true;
      case INPUT_EVENT_TYPE.moveInputCanceled:
        this.#select("");
        return true;
      default:
        return true;
    }
  }

  // The move is made when the board has put the piece down: until then it counts
  // what the pointer does, a dialog that opens under it for instance.
  async #finish(from, to) {
    await this.board.setPosition(this.board.getPosition(), false);
    if (!this.#handlers.move(from, to)) this.restore();
  }

  // Enter on a square: takes the piece there, puts it down, or lets it go.
  #press(square) {
    if (this.#selected !== "" && this.#handlers.targets(this.#selected).includes(square)) {
      const from = this.#selected;
      this.#select("");
      this.#handlers.move(from, square);
    } else if (square !== this.#selected && this.#movable(square)) {
      this.#select(square);
      const targets = this.#handlers.targets(square);
      this.#handlers.say(`${spokenSquare(square, this.#pieces[square])} may go to ${targets.join(", ")}.`);
    } else if (this.#selected !== "") {
      this.#select("");
      this.#handlers.say("Let go.");
    } else {
      this.#handlers.say(this.#state.open ? "Nothing here can move." : "It is not your move.");
    }
  }

  #key(event) {
    if (event.ctrlKey || event.altKey || event.metaKey) return;
    const steps = { ArrowLeft: [-1, 0], ArrowRight: [1, 0], ArrowUp: [0, 1], ArrowDown: [0, -1] };
    if (event.key in steps) {
      this.#step(...steps[event.key]);
    } else if (event.key === "Enter" || event.key === " ") {
      this.#press(this.#focused);
    } else if (event.key === "Escape" && this.#selected !== "") {
      this.#select("");
      this.#handlers.say("Let go.");
    } else {
      return;
    }
    event.preventDefault();
    event.stopPropagation();
  }

  #step(right, up) {
    const sign = this.#bottom === "b" ? -1 : 1;
    const file = FILES.indexOf(this.#focused[0]) + sign * right;
    const rank = Number(this.#focused[1]) + sign * up;
    if (file < 0 || file > 7 || rank < 1 || rank > 8) return;
    this.#cells.get(this.#focused).tabIndex = -1;
    this.#focused = FILES[file] + rank;
    const cell = this.#cells.get(this.#focused);
    cell.tabIndex = 0;
    cell.focus();
  }
}
