// Stands in for the engine of the package: the same events and methods, answers as
// a test wants them. Searches end when the test says so, or at once with `moves`.

class Line extends Event {
  constructor(line) {
    super("line");
    this.line = line;
  }
}

export class ScriptedEngine extends EventTarget {
  sent = [];
  ended = false;
  searches = 0; // whose answer is still to come

  /**
   * @param {object} script
   * @param {boolean} script.interruptible whether "stop" is heard
   * @param {(position: string) => string|undefined} script.moves answers a search at once, if it gives a move
   */
  constructor({ interruptible = true, moves = () => undefined } = {}) {
    super();
    this.interruptible = interruptible;
    this.moves = moves;
    this.position = "";
  }

  print(line) {
    if (!this.ended) this.dispatchEvent(new Line(line));
  }

  /** Ends the running search. */
  answer(move, { score = 10, pv = move } = {}) {
    this.think(pv, score);
    this.searches -= 1;
    this.print(`bestmove ${move} `);
  }

  think(pv, score = 10) {
    this.print(`info depth 3 seldepth 5 time 1 score cp ${score} nodes 100 nps 1000 pv ${pv} `);
  }

  send(line) {
    if (this.ended) return;
    this.sent.push(line);
    if (line === "uci") queueMicrotask(() => this.print("uciok"));
    if (line.startsWith("position ")) this.position = line;
    if (line === "stop" && this.interruptible && this.searches > 0) queueMicrotask(() => this.answer("a7a6"));
    if (line.startsWith("go ")) {
      this.searches += 1;
      const { position } = this;
      queueMicrotask(() => {
        const move = this.moves(position);
        if (move !== undefined) this.answer(move);
      });
    }
  }

  terminate() {
    this.end();
  }

  /** The engine is gone, as after a fault. */
  end() {
    if (this.ended) return;
    this.ended = true;
    this.dispatchEvent(new Event("exit"));
  }
}

/** A `createEngine` that makes such engines and keeps them in `made`. */
export function scriptedEngines(script = {}) {
  const made = [];
  const createEngine = async () => {
    const engine = new ScriptedEngine(script);
    made.push(engine);
    return engine;
  };
  return { createEngine, made };
}

/** Lets everything happen that waits for nothing else. */
export function settled() {
  return new Promise((resolve) => { setImmediate(resolve); });
}
