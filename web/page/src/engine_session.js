// The engine in its worker: starts it, asks it one question at a time, stops it
// and starts another when it cannot be interrupted.
//
// Every "go" is answered by one "bestmove", in order. A question that nobody wants
// the answer of any more is marked as given up and its answer dropped.
import { readBestMove, readThinkingLine } from "./uci_lines.js";

const MAX_RESTARTS = 2; // in a row without an answer in between

/**
 * @typedef {object} Answer
 * @property {string|null} move coordinates; null if there is none
 * @property {import("./uci_lines.js").ThinkingLine|null} thinking the newest line
 */

/** The engine could not be started, or ended for good. */
export class EngineFailure extends Error {}

export class EngineSession {
  #createEngine;
  #options;
  #engine = null;
  #ready = null; // promise of a started engine
  #questions = []; // whose "bestmove" is still to come
  #asked = null; // the newest question
  #failures = 0;
  #closed = false;

  /**
   * @param {(options: object) => Promise<object>} createEngine of the engine's package
   * @param {object} options for it
   */
  constructor(createEngine, options) {
    this.#createEngine = createEngine;
    this.#options = options;
  }

  /** Whether "stop" works while it thinks. */
  get interruptible() {
    return this.#engine?.interruptible === true;
  }

  get #current() {
    return this.#questions.find((question) => !question.givenUp);
  }

  /** Starts the engine if it does not run yet. */
  start() {
    this.#ready ??= this.#launch();
    return this.#ready;
  }

  async #launch() {
    const engine = await this.#createEngine(this.#options);
    if (this.#closed) {
      engine.terminate();
      throw new EngineFailure("The engine is not needed any more.");
    }
    this.#engine = engine;
    await new Promise((resolve, reject) => {
      engine.addEventListener("line", ({ line }) => {
        if (line === "uciok") resolve();
        else if (engine === this.#engine) this.#readLine(line);
      });
      engine.addEventListener("exit", () => {
        reject(new EngineFailure("The engine ended while it started."));
        if (engine === this.#engine) this.#lose();
      });
      engine.send("uci");
    });
    return engine;
  }

  #readLine(line) {
    const question = this.#questions[0];
    if (question === undefined) return;
    const best = readBestMove(line);
    if (best !== null) {
      this.#questions.shift();
      this.#failures = 0;
      if (!question.givenUp) question.resolve({ move: best.move, thinking: question.thinking });
      return;
    }
    const thinking = readThinkingLine(line);
    if (thinking === null || question.givenUp) return;
    question.thinking = thinking;
    question.onThinking(thinking);
  }

  // The engine is gone: what it was asked is asked of a new one.
  #lose() {
    const wanted = this.#current;
    this.#engine = null;
    this.#ready = null;
    this.#questions = [];
    if (wanted === undefined || this.#closed) return;
    this.#failures += 1;
    if (this.#failures > MAX_RESTARTS) {
      wanted.reject(new EngineFailure("The engine ended while it was thinking."));
      return;
    }
    this.#put(wanted);
  }

  async #put(question) {
    try {
      const engine = await this.start();
      if (question.givenUp) return;
      this.#questions.push(question);
      for (const command of question.commands) engine.send(command);
    } catch (error) {
      this.#ready = null;
      question.reject(error);
    }
  }

  /** Tells the engine that another game begins. */
  async newGame() {
    this.giveUp();
    const engine = await this.start();
    engine.send("ucinewgame");
  }

  /**
   * Asks for a move. An earlier question is given up.
   * @param {string} position command
   * @param {string} go command
   * @param {(line: import("./uci_lines.js").ThinkingLine) => void} onThinking for each line
   * @returns {Promise<Answer|null>} null if the question was given up
   */
  ask(position, go, onThinking = () => {}) {
    this.giveUp();
    return new Promise((resolve, reject) => {
      const question = {
        commands: [position, go], onThinking, resolve, reject, thinking: null, givenUp: false,
      };
      this.#asked = question;
      this.#put(question);
    });
  }

  /** Gives up the present question, whose promise becomes null. */
  giveUp() {
    const question = this.#asked;
    this.#asked = null;
    if (question === null) return;
    question.givenUp = true;
    question.resolve(null);
    if (!this.#questions.includes(question)) return;
    if (this.interruptible) this.#engine.send("stop");
    else this.#replace();
  }

  /**
   * Asks for the answer at once. An engine that cannot be interrupted is replaced,
   * and the first move of its newest line is the answer.
   * @returns {boolean} whether there will be an answer soon
   */
  answerNow() {
    const question = this.#current;
    if (question === undefined) return false;
    if (this.interruptible) {
      this.#engine.send("stop");
      return true;
    }
    if (question.thinking === null) return false;
    this.#replace();
    question.resolve({ move: question.thinking.pv[0], thinking: question.thinking });
    return true;
  }

  #replace() {
    const engine = this.#engine;
    this.#engine = null;
    this.#ready = null;
    this.#questions = [];
    engine.terminate();
    // Ready when it is needed; a failure is told to whoever asks next.
    this.start().catch(() => { this.#ready = null; });
  }

  close() {
    this.#closed = true;
    this.giveUp();
    this.#engine?.terminate();
    this.#engine = null;
  }
}

/**
 * Runs one of the engine's command-line jobs in an engine of its own.
 * @param {(options: object) => Promise<object>} createEngine
 * @param {string[]} args
 * @param {object} files
 * @param {number} patience milliseconds
 * @returns {Promise<string[]>} the lines it printed
 */
export async function runJob(createEngine, args, files, patience = 20000) {
  const lines = [];
  const engine = await createEngine({ args, files });
  return new Promise((resolve, reject) => {
    const timer = setTimeout(() => {
      reject(new EngineFailure("The engine did not answer."));
      engine.terminate();
    }, patience);
    engine.addEventListener("line", ({ line }) => lines.push(line));
    engine.addEventListener("exit", () => {
      clearTimeout(timer);
      resolve(lines);
    });
  });
}
