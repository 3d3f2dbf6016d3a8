// The evaluation report as a table.
import { element } from "./dom.js";
import { pawnsText } from "./eval_report.js";
import { SIDE_NAMES } from "./rules.js";

const cell = (text, name) => element("td", { text, class: name });
const head = (text, scope, span) => element("th", { text, scope, colspan: span });

const number = (part) => cell(part.toFixed(2).replace("-", "\u2212"));

// A group of two rows: what the term looks at, and its numbers.
function group({ name, meaning, balance, white, black }) {
  const title = element("tr", {}, element("th", { scope: "rowgroup", colspan: "5" },
    name, element("small", { text: meaning })));
  const parts = white === null ? [element("td", { colspan: "4" })] : [...white, ...black].map(number);
  return element("tbody", {}, title, element("tr", {}, cell(pawnsText(balance), "balance"), ...parts));
}

function table(report) {
  return element("table", {},
    element("caption", { text: "In pawns, as White sees it: a plus is good for White." }),
    element("thead", {},
      element("tr", {}, element("th", { text: "Balance", scope: "col", rowspan: "2" }),
        head("White", "colgroup", "2"), head("Black", "colgroup", "2")),
      element("tr", {}, ...["middle", "end", "middle", "end"].map((text) => head(text, "col")))),
    ...report.rows.map(group),
    element("tfoot", {},
      element("tr", {}, head("Total", "rowgroup", "5")),
      element("tr", {}, cell(pawnsText(report.total), "balance"), element("td", { colspan: "4" }))));
}

/**
 * @param {HTMLElement} container
 * @param {{rows: object[], total: number}} report of `readEvalReport`
 * @param {"w"|"b"} side the side to move
 */
export function showReport(container, report, side) {
  const notes = report.rows.length === 0
    ? ["Neither side has enough pieces to win: the engine takes this for a draw and looks at nothing else."]
    : [
      "Each part is given for the middle game and for the end game; the balance lies between them, by what is left on the board.",
      `The position is judged as it stands (${SIDE_NAMES[side]} to move), without looking ahead and without the moves before it. So it differs from the score of a search.`,
    ];
  container.replaceChildren(
    ...(report.rows.length > 0 ? [table(report)] : []),
    ...notes.map((text) => element("p", { text })));
}
