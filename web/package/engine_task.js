// An engine in the thread of a worker, on whatever system. The messages between
// it and engine.js:
//   to it:   {input, args, files, module}  starts it; `input` is the shared ring,
//                                  null where there is none
//            {bytes}               input, without a shared ring
//   from it: {ready: true}         it starts now
//            {line}                a line of output
//            {room: true}          the ring can take more
//            {exit, written}       its end: status, and the files that it wrote
//            {error}               its end by a fault of the program
import { Host, waitingForInput } from "./host.js";
import { LineConsole } from "./line_console.js";
import { MemoryFiles } from "./memory_files.js";
import { QueuedInput } from "./queued_input.js";
import { InputReader } from "./shared_input.js";

export class EngineTask {
  #post;
  #onEnd;
  #console;
  #files;
  #input;
  #host;
  #status = waitingForInput;

  /** `post` sends a message, `onEnd` ends the worker. */
  constructor(start, post, onEnd) {
    this.#post = post;
    this.#onEnd = onEnd;
    this.#console = new LineConsole((line) => post({ line }));
    this.#files = new MemoryFiles(start.files);
    this.#input = start.input === null
      ? new QueuedInput()
      : new InputReader(start.input, () => post({ room: true }));
    this.#host = new Host({
      args: ["mirvo", ...start.args],
      files: this.#files,
      input: this.#input,
      console: this.#console,
    });
    post({ ready: true });
    this.#advance(() => this.#host.start(start.module));
  }

  receive(bytes) {
    if (this.#status !== waitingForInput) return;
    this.#input.write(bytes);
    this.#advance(() => this.#host.resume());
  }

  #advance(run) {
    try {
      this.#status = run();
    } catch (fault) {
      this.#status = 1;
      this.#post({ error: String(fault?.stack ?? fault) });
      this.#onEnd();
      return;
    }
    if (this.#status === waitingForInput) return;
    this.#console.finish();
    this.#post({ exit: this.#status, written: this.#files.written() });
    this.#onEnd();
  }
}
