// The page: shows a `Play` and hands it the wishes of the person.
import { BoardView } from "./board_view.js";
import { clockText } from "./clock.js";
import { NewGameDialog, askPromotion } from "./dialogs.js";
import { byId, element, setText, svgElement } from "./dom.js";
import { evalArguments, readEvalReport } from "./eval_report.js";
import { runJob } from "./engine_session.js";
import { limitInWords } from "./limits.js";
import { surplus } from "./material.js";
import { MoveListView } from "./move_list_view.js";
import { MAX_PGN_LENGTH, cleanText, readPgn, writePgn } from "./pgn.js";
import { Task } from "./play.js";
import { showReport } from "./report_view.js";
import { SIDE_NAMES, kingSquare, lineInSan, numberedLine, opponent, readFen, sideToMove, spellings } from "./rules.js";
import { GraphView, showBar } from "./score_views.js";
import { loadChoices, saveChoices, saveGame } from "./storage.js";
import { applyTheme, nextTheme } from "./theme.js";
import { scoreText, whitesScore } from "./uci_lines.js";

const CLOCK_TICK = 100; // ms
const SHORT_TIME = 20000; // ms
const LINE_MOVES = 14; // of the thinking line that are shown

const REPORT_FILES = { "config.txt": "UseOpeningBook=0\nPawnHashSize=1\nEvalHashSize=1\nTTHashSize=1\n", "book.bk": null };

/** Speaks to screen readers; the same words twice are two messages. */
export function announce(text) {
  const announcer = byId("announcer");
  announcer.replaceChildren(element("p", { text: text.trim() }));
}

function today() {
  const date = new Date();
  const two = (number) => String(number).padStart(2, "0");
  return `${date.getFullYear()}.${two(date.getMonth() + 1)}.${two(date.getDate())}`;
}

export class Page {
  #frame = 0;
  #reportFen = "";
  #fenShown = "";
  #pgnShown = null;
  #tagsShown = null;

  /**
   * @param {import("./play.js").Play} play
   * @param {(options: object) => Promise<object>} createEngine for the evaluation report
   */
  constructor(play, createEngine) {
    this.play = play;
    this.createEngine = createEngine;
    this.choices = loadChoices();
    this.board = new BoardView(byId("board"), {
      targets: (square) => this.#targets(square),
      move: (from, to) => this.#move(from, to),
      say: announce,
    });
    this.moves = new MoveListView(byId("moves"), (count) => play.view(count));
    this.graph = new GraphView(byId("graph"), (count) => play.view(count));
    this.newGame = new NewGameDialog(({ player, limit }) => play.begin({ player, limit }));
    applyTheme(this.choices.theme);
    this.#listen();
    setInterval(() => this.#tick(), CLOCK_TICK);
  }

  /** Shows everything anew, at most once a frame. */
  changed() {
    if (this.#frame !== 0) return;
    this.#frame = requestAnimationFrame(() => this.render());
  }

  render() {
    cancelAnimationFrame(this.#frame);
    this.#frame = 0;
    this.#showBoard();
    this.#showPlayers();
    this.#showClocks();
    this.#showThinking();
    this.#showScores();
    this.#showStatus();
    this.#showControls();
    this.moves.show(this.play.game, this.play.viewed);
    this.#showTexts();
    if (byId("report").open) this.#showReport();
    saveGame(this.play.toSave());
  }

  // ------------------------------------------------------------------ parts

  #showBoard() {
    const { play } = this;
    const fen = play.viewedFen;
    const last = play.viewed > 0 ? play.game.plies[play.viewed - 1] : null;
    const inCheck = last?.check ?? (play.viewed === play.game.plies.length && play.game.inCheck());
    this.board.show({
      fen, last, hint: play.viewed === play.game.plies.length ? play.hint : null,
      bottom: play.bottom, open: play.open,
      check: inCheck ? kingSquare(fen, sideToMove(fen)) : "",
    });
  }

  #nameOf(side) {
    const { play } = this;
    const { White, Black } = play.tags;
    const tag = side === "w" ? White : Black;
    if (play.player === "both") return tag && tag !== "?" ? tag : SIDE_NAMES[side];
    return play.isPersons(side) ? "You" : "Mirvo";
  }

  #showPlayers() {
    const more = surplus(this.play.viewedFen);
    for (const [place, side] of [["bottom", this.play.bottom], ["top", opponent(this.play.bottom)]]) {
      const dot = element("span", { class: `dot ${side === "w" ? "white" : "black"}`, role: "img", "aria-label": SIDE_NAMES[side] });
      byId(`name-${place}`).replaceChildren(dot, this.#nameOf(side));
      const { pieces, lead } = more[side];
      const pictures = pieces.map((kind) => svgElement("svg", { viewBox: "4 3 32 33", "aria-hidden": "true" },
        svgElement("use", { href: `#${opponent(side)}${kind}` })));
      byId(`taken-${place}`).replaceChildren(...pictures, ...(lead > 0 ? [element("span", { text: `+${lead}` })] : []));
    }
  }

  #showClocks() {
    const { clock, bottom } = this.play;
    for (const [place, side] of [["bottom", bottom], ["top", opponent(bottom)]]) {
      const node = byId(`clock-${place}`);
      node.hidden = clock === null;
      if (clock === null) continue;
      const left = clock.remaining(side);
      setText(node, clockText(left));
      node.classList.toggle("running", clock.running === side);
      node.classList.toggle("short", left < SHORT_TIME);
      node.setAttribute("aria-label", `${this.#nameOf(side)}: ${clockText(left)} left`);
    }
  }

  #tick() {
    const { play } = this;
    if (play.clock?.running == null) return;
    play.tick();
    this.#showClocks();
  }

  #showThinking() {
    const { thinking } = this.play;
    if (thinking === null) {
      const waits = this.play.task === Task.move || this.play.task === Task.hint;
      setText(byId("thinking-facts"), waits ? "…" : "");
      setText(byId("thinking-line"), "–");
      return;
    }
    const { fen, line, move } = thinking;
    const { san } = lineInSan(fen, line?.pv ?? [move], LINE_MOVES);
    setText(byId("thinking-line"), numberedLine(fen, san) || "–");
    if (line === null) {
      setText(byId("thinking-facts"), "from the opening book");
      return;
    }
    const score = scoreText(whitesScore(line.score, sideToMove(fen)));
    setText(byId("thinking-facts"), `depth ${line.depth} · ${score} · ${line.nodes.toLocaleString("en")} nodes`);
  }

  #showScores() {
    showBar(this.play.score, this.play.bottom);
    this.graph.show(this.play.scores, this.play.viewed);
    const button = byId("score-game");
    const scoring = this.play.task === Task.score;
    setText(button, scoring ? "Stop" : "Score all moves");
    button.disabled = !scoring && (this.play.task !== Task.none || !this.play.scores.includes(null));
  }

  #showStatus() {
    const { play } = this;
    const earlier = play.viewed < play.game.plies.length;
    const status = byId("status");
    const hint = play.hint === null ? "" : ` Hint: ${play.hint.from} to ${play.hint.to}.`;
    setText(status, earlier ? "An earlier position. Go to the newest one to move." : play.situation() + hint);
    status.classList.toggle("over", play.outcome !== null && !earlier);
    this.#showNotice(play.failure, play.failure === "" ? null : ["Try again", () => play.retry()]);
  }

  #showNotice(text, action) {
    const notice = byId("notice");
    if (this.update !== undefined && text === "") {
      text = "A newer version of this page is there.";
      action = ["Use it now", this.update];
    }
    if (notice.dataset.text === text) return;
    notice.dataset.text = text;
    notice.hidden = text === "";
    notice.replaceChildren(text);
    if (action !== null) notice.append(element("button", { type: "button", text: action[0], onclick: action[1] }));
  }

  #showControls() {
    const { play } = this;
    const newest = play.game.plies.length;
    const thinks = play.task === Task.move || play.task === Task.hint;
    setText(byId("move-now"), thinks || !play.open ? "Move now" : "Mirvo moves");
    const off = {
      "take-back": !play.canTakeBack,
      hint: !play.open || play.task === Task.hint,
      "move-now": !thinks && !play.open,
      first: play.viewed === 0,
      earlier: play.viewed === 0,
      later: play.viewed === newest,
      last: play.viewed === newest,
    };
    for (const [id, disabled] of Object.entries(off)) {
      // A disabled button would lose the keyboard's focus.
      byId(id).setAttribute("aria-disabled", String(disabled));
    }
    byId("play-on").hidden = play.viewed === newest;
    byId("moves-empty").hidden = newest > 0;
    setText(byId("engine-state"), this.#engineState());
  }

  #engineState() {
    const { play } = this;
    if (play.failure !== "") return "The engine does not run.";
    if (!this.ready) return "The engine is starting …";
    return play.player === "both" ? "Mirvo gives hints." : `Mirvo thinks: ${limitInWords(play.limit)}.`;
  }

  // The texts are made when they are looked at: a long game is a long text.
  #showTexts() {
    if (!byId("exchange").open) return;
    const fen = this.play.viewedFen;
    if (fen !== this.#fenShown) {
      this.#fenShown = fen;
      byId("fen").value = fen;
    }
    const newest = this.play.game.fen + this.play.game.plies.length + (this.play.outcome?.result ?? "");
    if (newest !== this.#pgnShown) {
      this.#pgnShown = newest;
      byId("pgn").value = this.#pgn();
    }
    this.#showTags();
  }

  #showTags() {
    if (this.#tagsShown === this.play.tags) return;
    this.#tagsShown = this.play.tags;
    const told = ["White", "Black", "Event", "Site", "Date", "Result"].filter((name) =>
      this.play.tags[name] && !/^[?.]*$/.test(this.play.tags[name]));
    byId("tags").replaceChildren(...told.flatMap((name) =>
      [element("dt", { text: name }), element("dd", { text: this.play.tags[name] })]));
  }

  #pgn() {
    const { play } = this;
    const name = (side) => {
      const tag = play.tags[side === "w" ? "White" : "Black"];
      if (tag !== undefined) return tag;
      if (play.player === "both") return "?";
      return play.isPersons(side) ? "Player" : "Mirvo";
    };
    const { Date: date = today(), Event: event } = play.tags;
    return writePgn(play.game, { white: name("w"), black: name("b"), date, event });
  }

  async #showReport() {
    const fen = this.play.viewedFen;
    if (fen === this.#reportFen) return;
    this.#reportFen = fen;
    const body = byId("report-body");
    body.setAttribute("aria-busy", "true");
    let report = null;
    try {
      report = readEvalReport(await runJob(this.createEngine, evalArguments(fen), REPORT_FILES), sideToMove(fen));
    } catch {
      // Told below.
    }
    if (fen !== this.#reportFen) return; // another position is shown by now
    body.removeAttribute("aria-busy");
    if (report !== null) {
      showReport(body, report, sideToMove(fen));
    } else {
      this.#reportFen = "";
      body.replaceChildren(element("p", { text: "The engine gave no report." }));
    }
  }

  // ----------------------------------------------------------------- wishes

  #targets(square) {
    if (!this.play.open) return [];
    return [...new Set(this.play.game.legalMoves(square).map(({ to }) => to))];
  }

  // A move of the board; true if the board may leave the piece where it was put.
  #move(from, to) {
    const { play } = this;
    const choices = play.game.legalMoves(from).filter((move) => move.to === to);
    if (choices.length === 0 || !play.open) return false;
    if (choices[0].promotion === undefined) return play.move({ from, to });
    const { game } = play;
    const count = game.plies.length;
    askPromotion(game.turn).then((promotion) => {
      const same = play.game === game && game.plies.length === count;
      if (!same || promotion === null || !play.move({ from, to, promotion })) {
        this.board.restore();
        this.changed();
      }
    });
    return true;
  }

  #typedMove(event) {
    event.preventDefault();
    const input = byId("entry-text");
    const text = input.value.trim();
    if (text === "") return;
    const made = spellings(text).some((move) => this.play.move(move));
    if (made) {
      input.value = "";
      input.removeAttribute("aria-invalid");
      return;
    }
    input.setAttribute("aria-invalid", "true");
    input.select();
    const why = this.play.open ? `"${cleanText(text, 12)}" is not possible here.` : this.play.situation();
    setText(byId("status"), why);
    announce(why);
  }

  #message(text, bad = false) {
    const node = byId("exchange-message");
    node.classList.toggle("bad", bad);
    setText(node, text);
  }

  async #copy(text, field, what) {
    try {
      await navigator.clipboard.writeText(text);
      this.#message(`${what} copied.`);
    } catch {
      field.focus();
      field.select();
      this.#message(`Copying is not allowed here; the ${what} is selected.`);
    }
  }

  #setUp(event) {
    event.preventDefault();
    const { fen, error } = readFen(byId("fen").value);
    if (error !== undefined) return this.#message(error, true);
    this.#fenShown = "";
    const { player, limit } = this.play;
    this.play.begin({ player: player === "both" ? "both" : sideToMove(fen), limit, startFen: fen });
    return this.#message("The position is set up.");
  }

  #load(text) {
    const { game, tags, note, error } = readPgn(text);
    if (error !== undefined) return this.#message(error, true);
    this.#pgnShown = null;
    this.play.begin({ player: "both", limit: this.play.limit, game, tags });
    return this.#message(`${game.plies.length} half-moves loaded. ${note}`.trim());
  }

  async #loadFile(input) {
    const [file] = input.files;
    input.value = "";
    if (file === undefined) return;
    // Four bytes a character at most, so what is too long in characters is not read.
    if (file.size > 4 * MAX_PGN_LENGTH) {
      this.#message("The file is too large.", true);
      return;
    }
    this.#load(await file.text());
  }

  // ------------------------------------------------------------------- keys

  #listen() {
    const { play } = this;
    this.actions = {
      "new-game": () => this.newGame.open(play.player, play.limit),
      "take-back": () => play.takeBack(),
      hint: () => play.askHint(),
      "move-now": () => play.moveNow(),
      flip: () => play.flip(),
      first: () => play.view(0),
      earlier: () => play.view(play.viewed - 1),
      later: () => play.view(play.viewed + 1),
      last: () => play.view(play.game.plies.length),
      "play-on": () => play.playOn(),
      "score-game": () => play.scoreGame(),
      "fen-copy": () => this.#copy(play.viewedFen, byId("fen"), "FEN"),
      "pgn-copy": () => this.#copyPgn(),
      theme: () => this.#nextTheme(),
      help: () => byId("help-dialog").showModal(),
    };
    for (const [id, action] of Object.entries(this.actions)) {
      byId(id).addEventListener("click", () => {
        if (byId(id).getAttribute("aria-disabled") !== "true") action();
      });
    }
    byId("entry").addEventListener("submit", (event) => this.#typedMove(event));
    byId("fen-form").addEventListener("submit", (event) => this.#setUp(event));
    byId("pgn-form").addEventListener("submit", (event) => {
      event.preventDefault();
      this.#load(byId("pgn").value);
    });
    byId("pgn-file").addEventListener("change", (event) => this.#loadFile(event.target));
    for (const id of ["report", "exchange"]) byId(id).addEventListener("toggle", () => this.changed());
    const single = byId("single-keys");
    single.checked = this.choices.singleKeys;
    single.addEventListener("change", () => this.#choose({ singleKeys: single.checked }));
    document.addEventListener("keydown", (event) => this.#key(event));
    addEventListener("pagehide", () => saveGame(play.toSave()));
  }

  #choose(choice) {
    Object.assign(this.choices, choice);
    saveChoices(this.choices);
  }

  #nextTheme() {
    this.#choose({ theme: nextTheme(this.choices.theme) });
    applyTheme(this.choices.theme);
  }

  #copyPgn() {
    const text = this.#pgn();
    byId("pgn").value = text;
    return this.#copy(text, byId("pgn"), "PGN");
  }

  #key(event) {
    const { target } = event;
    const typing = target.closest?.("input:not([type=checkbox], [type=file]), textarea, dialog") != null;
    if (typing || event.ctrlKey || event.altKey || event.metaKey) return;
    const steps = { ArrowLeft: "earlier", ArrowRight: "later", Home: "first", End: "last" };
    const letters = { n: "new-game", u: "take-back", h: "hint", m: "move-now", f: "flip", "?": "help" };
    const key = event.key.toLowerCase();
    let act;
    if (event.key in steps) act = () => byId(steps[event.key]).click();
    else if (this.choices.singleKeys) {
      if (key in letters) act = () => byId(letters[key]).click();
      else if (key === "/") act = () => byId("entry-text").focus();
      else if (key === "e") act = () => this.#openReport();
      else if (key === "s") act = () => announce(this.#spokenSituation());
    }
    if (act === undefined) return;
    event.preventDefault();
    act();
  }

  #openReport() {
    const report = byId("report");
    report.open = !report.open;
    if (report.open) report.querySelector("summary").focus();
  }

  #spokenSituation() {
    const { play } = this;
    const clocks = play.clock === null ? "" : ` Clocks: you ${clockText(play.clock.remaining(play.player))}, Mirvo ${clockText(play.clock.remaining(opponent(play.player)))}.`;
    return `${play.situation()} Move ${play.game.fen.split(" ")[5]}. ${byId("bar").getAttribute("aria-label")}.${clocks}`;
  }
}
