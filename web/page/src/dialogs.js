// The page's dialogs: new game, promotion, help.
import { byId, element, setText, svgElement } from "./dom.js";
import { readLimit } from "./limits.js";

const PROMOTIONS = { q: "Queen", r: "Rook", b: "Bishop", n: "Knight" };

/**
 * Asks for the piece that a pawn becomes.
 * @param {"w"|"b"} side
 * @returns {Promise<string|null>} its letter; null if nothing was chosen
 */
export function askPromotion(side) {
  const dialog = byId("promotion-dialog");
  return new Promise((resolve) => {
    let chosen = null;
    byId("promotion-choices").replaceChildren(...Object.entries(PROMOTIONS).map(([letter, name]) =>
      element("button", {
        type: "button", "data-piece": letter,
        onclick: () => {
          chosen = letter;
          dialog.close();
        },
      }, svgElement("svg", { viewBox: "0 0 40 40", "aria-hidden": "true" },
        svgElement("use", { href: `#${side}${letter}` })), name)));
    dialog.addEventListener("close", () => resolve(chosen), { once: true });
    dialog.showModal();
  });
}

const LEVELS = ["half-move", "half-moves"];

/** The dialog for a new game. */
export class NewGameDialog {
  /** @param {(settings: {player: string, limit: object}) => void} onStart */
  constructor(onStart) {
    this.dialog = byId("new-game-dialog");
    this.form = byId("new-game-form");
    this.form.addEventListener("input", () => this.#showLimit());
    this.form.addEventListener("submit", () => {
      const values = new FormData(this.form);
      const player = values.get("player");
      onStart({
        player: player === "random" ? (Math.random() < 0.5 ? "w" : "b") : player,
        limit: readLimit(Object.fromEntries(values)),
      });
    });
    byId("new-game-cancel").addEventListener("click", () => this.dialog.close());
  }

  /** Opens with the present game's settings. */
  open(player, limit) {
    this.form.elements.player.value = player;
    this.form.elements.kind.value = limit.kind;
    for (const name of ["depth", "seconds", "minutes", "increment"]) {
      if (limit[name] !== undefined) this.form.elements[name].value = limit[name];
    }
    this.#showLimit();
    this.dialog.showModal();
  }

  #showLimit() {
    const { kind, depth } = this.form.elements;
    for (const part of this.form.querySelectorAll("[data-kind]")) {
      part.hidden = part.dataset.kind !== kind.value;
      for (const input of part.querySelectorAll("input")) input.disabled = part.hidden;
    }
    const plies = Number(depth.value);
    setText(byId("depth-output"), `${plies} (looks ${plies} ${LEVELS[plies === 1 ? 0 : 1]} ahead)`);
  }
}
