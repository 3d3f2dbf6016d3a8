// The engine object, whatever kind of worker it runs in.
import { InputWriter } from "./shared_input.js";

const encoder = new TextEncoder();

/** One line of output, without its line end. */
export class LineEvent extends Event {
  constructor(line) {
    super("line");
    this.line = line;
  }
}

/** The engine has ended. */
export class ExitEvent extends Event {
  constructor(status, files) {
    super("exit");
    this.status = status; // null after terminate() and after a fault
    this.files = files;
  }
}

/** The program failed: out of memory, or a mistake of ours. */
export class FaultEvent extends Event {
  constructor(message) {
    super("fault");
    this.message = message;
  }
}

export class Engine extends EventTarget {
  #worker;
  #writer;
  #exited;
  #setExited;
  #ended = false;
  #ready;
  #setReady;

  /**
   * worker: {post(message), terminate(), listen(onMessage, onError)}; see
   * engine_task.js for the messages.
   */
  constructor(worker, interruptible) {
    super();
    this.#worker = worker;
    this.#writer = interruptible ? new InputWriter() : null;
    this.#exited = new Promise((resolve) => {
      this.#setExited = resolve;
    });
    this.#ready = new Promise((resolve, reject) => {
      this.#setReady = { resolve, reject };
    });
    worker.listen((message) => this.#receive(message), (error) => this.#fail(error));
  }

  /** Whether lines reach the engine while it searches. */
  get interruptible() {
    return this.#writer !== null;
  }

  /** For createEngine: resolves when the program starts. */
  async start({ args, files, module }) {
    this.#worker.post({ input: this.#writer?.buffer ?? null, args, files, module });
    await this.#ready;
    return this;
  }

  /** Sends a line, or several with line feeds between them. */
  send(line) {
    if (this.#ended) return;
    const bytes = encoder.encode(`${line}\n`);
    if (this.interruptible) {
      this.#writer.write(bytes);
    } else {
      this.#worker.post({ bytes });
    }
  }

  /** Sends "quit". Resolves with the exit status when the engine has ended. */
  quit() {
    this.send("quit");
    return this.#exited;
  }

  /** Ends the engine at once, whatever it does. */
  terminate() {
    this.#end(null, {});
  }

  #receive(message) {
    if (this.#ended) return;
    if (message.line !== undefined) {
      this.dispatchEvent(new LineEvent(message.line));
    } else if (message.room) {
      this.#writer.flush();
    } else if (message.ready) {
      this.#setReady.resolve();
    } else if (message.error !== undefined) {
      this.#fail(new Error(message.error));
    } else if (message.exit !== undefined) {
      this.#end(message.exit, message.written);
    }
  }

  #fail(error) {
    if (this.#ended) return;
    this.#setReady.reject(error);
    this.dispatchEvent(new FaultEvent(String(error?.message ?? error)));
    this.#end(null, {});
  }

  #end(status, files) {
    if (this.#ended) return;
    this.#ended = true;
    this.#worker.terminate();
    this.#setReady.reject(new Error("the engine has ended"));
    this.#setExited(status);
    this.dispatchEvent(new ExitEvent(status, files));
  }
}
