// A game between a person and the engine: whose turn it is, what a wish of the
// person does, what the engine is asked. It knows nothing of elements: views are
// told through `onChange` and `onSay`.
import { ChessClock } from "./clock.js";
import { EngineFailure } from "./engine_session.js";
import { Game } from "./game.js";
import { DEFAULT_LIMIT, goCommand, hintCommand } from "./limits.js";
import { SIDE_NAMES, opponent, readCoordinates, sideToMove } from "./rules.js";
import { spokenMove } from "./speech.js";
import { positionCommand } from "./uci_position.js";
import { whitesScore } from "./uci_lines.js";

const SCORING_COMMAND = "go depth 7";

/** What the engine is busy with. */
export const Task = { none: "", move: "move", hint: "hint", score: "score" };

export class Play {
  /**
   * @param {import("./engine_session.js").EngineSession} session
   * @param {object} listeners
   * @param {() => void} listeners.onChange something is to be shown anew
   * @param {(text: string) => void} listeners.onSay for screen readers
   * @param {() => number} now milliseconds, for the clocks
   */
  constructor(session, { onChange, onSay }, now = () => performance.now()) {
    this.session = session;
    this.changed = onChange;
    this.say = onSay;
    this.now = now;
    this.task = Task.none;
    this.failure = "";
    this.tags = {};
    this.#take({
      game: new Game(), player: "w", limit: { ...DEFAULT_LIMIT }, clocks: [null], scores: [null], flipped: false,
    });
  }

  #take({ game, player, limit, clocks, scores, flipped }) {
    this.game = game;
    this.player = player;
    this.limit = limit;
    this.clocks = clocks;
    this.scores = scores;
    this.flipped = flipped;
    this.viewed = game.plies.length;
    this.hint = null;
    this.thinking = null;
    this.wantsMoveNow = false;
    this.clock = limit.kind === "clock" && player !== "both"
      ? new ChessClock(this.#clocksAt(game.plies.length), limit.increment * 1000, this.now) : null;
  }

  #clocksAt(count) {
    const whole = this.limit.minutes * 60000;
    return this.clocks[count] ?? { w: whole, b: whole };
  }

  // ------------------------------------------------------------- what holds

  get outcome() {
    return this.game.outcome();
  }

  isPersons(side) {
    return this.player === "both" || this.player === side;
  }

  /** Whether the person may move on the board now. */
  get open() {
    return this.outcome === null && this.isPersons(this.game.turn) && this.viewed === this.game.plies.length;
  }

  get bottom() {
    const own = this.player === "b" ? "b" : "w";
    return this.flipped ? opponent(own) : own;
  }

  get viewedFen() {
    return this.game.fenAt(this.viewed);
  }

  get canTakeBack() {
    return this.#countToTakeBack() > 0;
  }

  /** The newest score of a position up to the one that is viewed. */
  get score() {
    for (let index = this.viewed; index >= 0; --index) {
      if (this.scores[index] !== null) return this.scores[index];
    }
    return null;
  }

  // -------------------------------------------------------------- beginning

  /** Begins a game. */
  begin({ player, limit, startFen, game = new Game(startFen), tags = {} }) {
    const none = () => Array.from({ length: game.plies.length + 1 }, () => null);
    this.#take({ game, player, limit, clocks: none(), scores: none(), flipped: false });
    this.tags = tags;
    this.#restart();
    this.say(`New game. ${this.situation()}`);
  }

  /** Goes on with a saved game. */
  resume(saved) {
    this.#take(saved);
    this.#restart();
    if (this.clock !== null && this.outcome === null && saved.game.plies.length > 0) {
      this.clock.start(this.game.turn);
      this.changed();
    }
  }

  #restart() {
    this.failure = "";
    this.task = Task.none;
    this.session.newGame().catch((error) => this.#fail(error));
    this.#advance();
  }

  // ----------------------------------------------------------------- moving

  /** A move of the person; false if it is not possible now. */
  move(move) {
    if (!this.open) return false;
    return this.#make(move) !== null;
  }

  #make(move) {
    const mover = this.game.turn;
    const ply = this.game.play(move);
    if (ply === null) return null;
    if (this.clock !== null) {
      // The clocks run from the first move on.
      if (this.game.plies.length === 1) this.clock.start(opponent(mover));
      else this.clock.press(mover);
      if (this.outcome !== null) this.clock.stop();
    }
    this.clocks.push(this.clock?.snapshot() ?? null);
    this.scores.push(null);
    this.viewed = this.game.plies.length;
    this.#giveUp();
    this.say(`${SIDE_NAMES[mover]}: ${spokenMove(ply.san)}. ${this.outcome?.reason ?? ""}`);
    this.#advance();
    return ply;
  }

  // What comes next: the end, the engine's move, or the person's.
  #advance() {
    if (this.outcome === null && !this.isPersons(this.game.turn)) this.#think();
    this.changed();
  }

  #giveUp() {
    this.session.giveUp();
    this.task = Task.none;
    this.hint = null;
    this.thinking = null;
    this.wantsMoveNow = false;
  }

  // Asks the engine about a position and keeps the score.
  async #ask(task, go, count = this.game.plies.length) {
    const { game } = this;
    const fen = game.fenAt(count);
    this.task = task;
    const keep = (line) => {
      if (this.game === game && count < this.scores.length) {
        this.scores[count] = whitesScore(line.score, sideToMove(fen));
      }
    };
    try {
      const answer = await this.session.ask(positionCommand(game, count), go, (line) => {
        keep(line);
        this.thinking = { fen, line };
        if (this.wantsMoveNow && this.session.answerNow()) this.wantsMoveNow = false;
        this.changed();
      });
      // A move of the opening book comes without a thought.
      if (answer?.thinking === null && answer.move !== null) this.thinking = { fen, line: null, move: answer.move };
      return answer;
    } catch (error) {
      this.#fail(error);
      return null;
    }
  }

  async #think() {
    const remaining = this.clock?.remaining(this.game.turn);
    const answer = await this.#ask(Task.move, goCommand(this.limit, remaining));
    if (answer === null) return;
    this.task = Task.none;
    this.#noteFlag();
    if (this.outcome !== null) return;
    const move = readCoordinates(answer.move);
    const thinking = this.thinking;
    if (move === null || this.#make(move) === null) {
      this.#fail(new EngineFailure("The engine answered with a move that is not possible."));
      return;
    }
    // The score that the engine expected holds until the next one is known.
    this.scores[this.game.plies.length] = this.scores[this.game.plies.length - 1];
    this.thinking ??= thinking;
    this.changed();
  }

  #fail(error) {
    this.task = Task.none;
    this.failure = error instanceof EngineFailure ? error.message
      : `The engine could not be started: ${String(error?.message ?? error).slice(0, 200)}`;
    this.clock?.stop();
    this.say(this.failure);
    this.changed();
  }

  /** Tries the engine again after a failure. */
  retry() {
    this.failure = "";
    if (this.clock !== null && this.game.plies.length > 0 && this.outcome === null) {
      this.clock.start(this.game.turn);
    }
    this.#advance();
  }

  // ----------------------------------------------------------------- wishes

  #countToTakeBack() {
    const { plies } = this.game;
    if (this.player === "both") return Math.min(plies.length, 1);
    // Back to where the person was to move.
    let count = 1;
    while (count <= plies.length && sideToMove(this.game.fenAt(plies.length - count)) !== this.player) count += 1;
    return count <= plies.length ? count : 0;
  }

  takeBack() {
    const count = this.#countToTakeBack();
    if (count === 0) return;
    this.#truncate(this.game.plies.length - count);
    this.say(`Taken back. ${this.situation()}`);
  }

  /** Goes on from the position that is viewed; what came behind it is dropped. */
  playOn() {
    if (this.viewed === this.game.plies.length) return;
    const turn = sideToMove(this.viewedFen);
    if (this.player !== "both") this.player = turn;
    this.#truncate(this.viewed);
    this.say(`Going on from here. ${this.situation()}`);
  }

  #truncate(length) {
    this.#giveUp();
    this.game.takeBack(this.game.plies.length - length);
    this.clocks.length = length + 1;
    this.scores.length = length + 1;
    this.viewed = length;
    if (this.clock !== null) {
      this.clock.set(this.#clocksAt(length));
      if (length > 0 && this.outcome === null) this.clock.start(this.game.turn);
    }
    this.#advance();
  }

  async askHint() {
    if (!this.open || this.task === Task.hint) return;
    this.hint = null;
    const asked = this.#ask(Task.hint, hintCommand(this.limit));
    this.changed();
    const answer = await asked;
    if (answer === null) return;
    this.task = Task.none;
    const move = readCoordinates(answer.move);
    if (move !== null) {
      this.hint = move;
      this.say(`Hint: ${move.from} to ${move.to}.`);
    }
    this.changed();
  }

  /** Ends the engine's thinking; while the person is to move, the engine takes over that side. */
  moveNow() {
    if (this.task === Task.move || this.task === Task.hint) {
      if (!this.session.answerNow()) this.wantsMoveNow = true;
    } else if (this.open) {
      this.#giveUp();
      this.player = opponent(this.game.turn);
      this.say(`Mirvo plays ${SIDE_NAMES[this.game.turn]}.`);
      this.#advance();
    }
  }

  /** Scores all positions that have no score, one after the other. */
  async scoreGame() {
    if (this.task === Task.score) {
      this.#giveUp();
      this.changed();
      return;
    }
    if (this.task !== Task.none) return;
    const { game } = this;
    for (let count = 0; count <= game.plies.length; ++count) {
      if (this.scores[count] !== null) continue;
      if (count === game.plies.length && this.outcome !== null) {
        this.scores[count] = this.#finalScore();
        break;
      }
      const answer = await this.#ask(Task.score, SCORING_COMMAND, count);
      if (answer === null) return; // another wish came, or the engine failed
      if (this.scores[count] === null) this.scores[count] = 0; // a book move
    }
    this.task = Task.none;
    this.changed();
  }

  #finalScore() {
    const { result } = this.outcome;
    if (result === "1/2-1/2" || result === "*") return 0;
    return result === "1-0" ? 32767 : -32767;
  }

  flip() {
    this.flipped = !this.flipped;
    this.changed();
  }

  /** Shows the position after so many half-moves. */
  view(count) {
    this.viewed = Math.min(Math.max(count, 0), this.game.plies.length);
    this.changed();
    this.say(this.viewed === 0 ? "Start of the game."
      : `${this.#moveNumber(this.viewed)} ${spokenMove(this.game.plies[this.viewed - 1].san)}.`);
  }

  #moveNumber(count) {
    const before = this.game.fenAt(count - 1);
    return `${before.split(" ")[5]}, ${SIDE_NAMES[sideToMove(before)]}:`;
  }

  // ------------------------------------------------------------------- time

  /** To be called often while a clock runs. */
  tick() {
    if (this.clock?.running != null && this.#noteFlag()) this.changed();
  }

  #noteFlag() {
    const fallen = this.clock?.fallen() ?? null;
    if (fallen === null || this.outcome !== null) return false;
    this.clock.stop();
    const winner = opponent(fallen);
    if (this.game.hasBareKing(winner)) {
      this.game.declare("1/2-1/2", `Draw: ${SIDE_NAMES[fallen]}'s time is over, and ${SIDE_NAMES[winner]} has only the king.`);
    } else {
      this.game.declare(winner === "w" ? "1-0" : "0-1", `Time is over: ${SIDE_NAMES[winner]} wins.`);
    }
    this.#giveUp();
    this.say(this.outcome.reason);
    return true;
  }

  /** How the game stands, in a sentence. */
  situation() {
    const end = this.outcome;
    if (end !== null) return end.reason;
    const turn = this.game.turn;
    const check = this.game.inCheck() ? " Check." : "";
    if (this.player === "both") return `${SIDE_NAMES[turn]} to move.${check}`;
    return this.isPersons(turn) ? `Your move, you play ${SIDE_NAMES[turn]}.${check}` : `Mirvo is thinking.${check}`;
  }

  /** What is kept from visit to visit. */
  toSave() {
    const clocks = [...this.clocks];
    if (this.clock !== null) clocks[this.game.plies.length] = this.clock.snapshot();
    const { game, player, limit, scores, flipped } = this;
    return { game, player, limit, clocks, scores, flipped };
  }
}
