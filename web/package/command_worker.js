// The thread of a program on Node's standard input and output.
import fs from "node:fs";
import { parentPort, workerData } from "node:worker_threads";

import { Host } from "./host.js";
import { NodeFiles } from "./node_files.js";
import { InputReader } from "./shared_input.js";

const { program, args, spare, input } = workerData;

/** Standard input. The first look at it begins the reading. */
class CommandInput extends InputReader {
  #asked = false;

  waiting() {
    this.#ask();
    return super.waiting();
  }

  read(target, wait) {
    this.#ask();
    return super.read(target, wait);
  }

  #ask() {
    if (this.#asked) return;
    this.#asked = true;
    parentPort.postMessage({ readInput: true });
  }
}

/** Standard output, whose writes have ended when they return. */
const standardOutput = {
  closed: false,
  endWithClosedOutput: false,
  write(bytes) {
    let done = 0;
    while (done < bytes.length && !this.closed) {
      try {
        done += fs.writeSync(1, bytes, done);
      } catch (error) {
        if (error.code === "EAGAIN") {
          waitForReader();
        } else {
          // What cannot be written is dropped, a full disk's output for example.
          this.closed = error.code === "EPIPE";
          return;
        }
      }
    }
  },
};

// The pipe is full and does not block.
function waitForReader() {
  Atomics.wait(new Int32Array(new SharedArrayBuffer(4)), 0, 0, 1);
}

const reader = new CommandInput(input, () => parentPort.postMessage({ room: true }));
const host = new Host({
  args,
  files: new NodeFiles(spare),
  input: reader,
  console: standardOutput,
  signals: (xboard) => reader.ask(() => parentPort.postMessage({ xboard })),
});
process.exit(host.start(new WebAssembly.Module(fs.readFileSync(program))));
