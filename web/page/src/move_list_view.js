// The list of moves, each a button that shows the position behind it. One button
// takes part in the order of the Tab key, however long the game is.
import { element } from "./dom.js";
import { sideToMove } from "./rules.js";
import { spokenMove } from "./speech.js";

export class MoveListView {
  #buttons = []; // by half-move
  #shown = []; // the plies they stand for
  #startFen = "";
  #current = null;

  /**
   * @param {HTMLElement} list
   * @param {(count: number) => void} onPick told the half-moves that lead to the position
   */
  constructor(list, onPick) {
    this.list = list;
    list.addEventListener("click", (event) => {
      const button = event.target.closest("button");
      if (button !== null) onPick(Number(button.dataset.count));
    });
  }

  /** Shows a game's moves; `viewed` is the number of half-moves that lead to the board's position. */
  show(game, viewed) {
    this.#keepCommonPart(game);
    for (let index = this.#buttons.length; index < game.plies.length; ++index) this.#append(game, index);
    this.#shown = [...game.plies];
    this.#setCurrent(viewed > 0 ? this.#buttons[viewed - 1] : null);
    this.list.hidden = game.plies.length === 0;
  }

  // Removes the moves that are not those of this game any more.
  #keepCommonPart(game) {
    let common = 0;
    if (this.#startFen === game.startFen) {
      while (common < this.#shown.length && this.#shown[common] === game.plies[common]) common += 1;
    }
    this.#startFen = game.startFen;
    for (const button of this.#buttons.splice(common)) {
      const row = button.parentElement;
      button.remove();
      if (row.querySelector("button") === null) row.remove();
    }
  }

  #append(game, index) {
    const ply = game.plies[index];
    const before = game.fenAt(index);
    const white = sideToMove(before) === "w";
    const number = before.split(" ")[5];
    if (white || index === 0) {
      this.list.append(element("li", {}, element("span", { text: `${number}.` })));
      if (!white) this.list.lastElementChild.append(element("span", { text: "…" }));
    }
    const button = element("button", {
      type: "button", tabindex: "-1", "data-count": index + 1, text: ply.san,
      "aria-label": `${number}. ${ply.san}, ${white ? "White" : "Black"}: ${spokenMove(ply.san)}`,
    });
    this.list.lastElementChild.append(button);
    this.#buttons.push(button);
  }

  #setCurrent(button) {
    if (this.#current !== button) {
      this.#current?.removeAttribute("aria-current");
      this.#current?.setAttribute("tabindex", "-1");
      button?.setAttribute("aria-current", "true");
      this.#current = button;
    }
    (button ?? this.#buttons[0])?.setAttribute("tabindex", "0");
    this.#scrollTo(button);
  }

  // Scrolls the list alone, never the page.
  #scrollTo(button) {
    const { list } = this;
    if (button === null) {
      list.scrollTop = 0;
      return;
    }
    const row = button.parentElement;
    const top = row.offsetTop - list.offsetTop;
    if (top < list.scrollTop) list.scrollTop = top;
    const under = top + row.offsetHeight - list.clientHeight;
    if (under > list.scrollTop) list.scrollTop = under;
  }
}
