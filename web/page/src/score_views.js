// The score: the bar beside the board and the graph over the game.
import { byId, element, setText, svgElement } from "./dom.js";
import { MATE_SCORE, scoreInWords, scoreText, whitesShare } from "./uci_lines.js";

const WIDTH = 1000;
const HEIGHT = 200;

/** Shows the newest known score of a position; null if there is none. */
export function showBar(score, bottom) {
  const bar = byId("bar");
  const share = score === null ? 0.5 : whitesShare(score);
  byId("bar-white").style.transform = `scaleY(${share.toFixed(3)})`;
  bar.classList.toggle("flipped", bottom === "b");
  bar.setAttribute("aria-label", `Score: ${score === null ? "none yet" : scoreInWords(score)}`);
  const text = byId("bar-text");
  setText(text, score === null ? "" : barText(score));
  // On the side of whoever is ahead, where there is room.
  const whiteAhead = share >= 0.5;
  text.classList.toggle("at-top", whiteAhead === (bottom === "b"));
  text.classList.toggle("on-black", !whiteAhead);
}

function barText(score) {
  if (Math.abs(score) >= MATE_SCORE) return "#";
  const pawns = Math.abs(score) / 100;
  return pawns >= 10 ? pawns.toFixed(0) : pawns.toFixed(1);
}

// White's area under the scores; a position without a score has that of the one before.
function areaPath(scores) {
  const step = WIDTH / Math.max(scores.length - 1, 1);
  let height = HEIGHT / 2;
  const points = scores.map((score, index) => {
    if (score !== null) height = HEIGHT * (1 - whitesShare(score));
    return `L${(index * step).toFixed(1)} ${height.toFixed(1)}`;
  });
  return `M0 ${HEIGHT}${points.join("")}H${WIDTH}V${HEIGHT}Z`;
}

function summary(scores) {
  const known = scores.filter((score) => score !== null);
  if (known.length === 0) return "No scores yet.";
  const newest = known[known.length - 1];
  return `${known.length} of ${scores.length} positions have a score; the newest: ${scoreText(newest)}, ${scoreInWords(newest)}.`;
}

export class GraphView {
  #positions = 1;

  /**
   * @param {HTMLElement} container
   * @param {(count: number) => void} onPick told the half-moves that lead to the position
   */
  constructor(container, onPick) {
    this.area = svgElement("path", { class: "area" });
    this.here = svgElement("line", { class: "here", y1: 0, y2: HEIGHT });
    const middle = { class: "middle", x1: 0, x2: WIDTH, y1: HEIGHT / 2, y2: HEIGHT / 2 };
    this.picture = svgElement("svg", {
      viewBox: `0 0 ${WIDTH} ${HEIGHT}`, preserveAspectRatio: "none", role: "img",
    }, this.area, svgElement("line", middle), this.here);
    this.text = element("p", { class: "small" });
    container.append(this.picture, this.text);
    this.picture.addEventListener("click", (event) => {
      const box = this.picture.getBoundingClientRect();
      const share = (event.clientX - box.left) / box.width;
      onPick(Math.round(share * (this.#positions - 1)));
    });
  }

  /** @param {(number|null)[]} scores of each position, in White's view */
  show(scores, viewed) {
    this.#positions = scores.length;
    this.area.setAttribute("d", areaPath(scores));
    const at = (WIDTH * viewed) / Math.max(scores.length - 1, 1);
    this.here.setAttribute("x1", at);
    this.here.setAttribute("x2", at);
    this.picture.setAttribute("aria-label", `Score over the game. ${summary(scores)}`);
    const score = scores[viewed];
    setText(this.text, score === null || score === undefined
      ? (scores.some((known) => known !== null) ? "No score for this position." : "No scores yet.")
      : `${scoreText(score)} – ${scoreInWords(score)}.`);
  }
}
