// A program on Node's standard input and output, as if it were a native one:
// files of the working folder, signals, exit status. The program has a thread of
// its own; this one hands the input on and hears signals and the end.
import { Worker } from "node:worker_threads";

import { InputWriter } from "./shared_input.js";

/** Time for the lines that wait when XBoard asks the engine to terminate. */
const graceTime = 1000; // ms

/**
 * program  path of the WebAssembly program
 * args     its words, its own name first
 * spare    what stands in for missing files; see node_files.js
 */
export function runCommand({ program, args, spare }) {
  const input = new InputWriter();
  const worker = new Worker(new URL("./command_worker.js", import.meta.url), {
    execArgv: [], // without the options that the user gave to Node itself
    workerData: { program, args, spare, input: input.buffer },
  });

  // Only an engine for an interface reads; other commands leave the input alone.
  function readInput() {
    process.stdin.on("data", (bytes) => {
      if (!input.write(bytes)) process.stdin.pause();
    });
    process.stdin.on("end", () => input.end());
    process.stdin.on("error", () => input.end());
  }

  const ignoreInterrupt = () => {};
  const terminate = () => {
    input.requestTermination();
    setTimeout(() => process.exit(0), graceTime);
  };
  function followSignals(xboard) {
    process.off("SIGINT", ignoreInterrupt);
    process.off("SIGTERM", terminate);
    if (!xboard) return;
    process.on("SIGINT", ignoreInterrupt);
    process.on("SIGTERM", terminate);
  }

  worker.on("message", (message) => {
    if (message.readInput) readInput();
    if (message.room && input.flush()) process.stdin.resume();
    if (message.xboard !== undefined) {
      followSignals(message.xboard);
      input.answer();
    }
  });
  worker.on("error", (error) => {
    process.stderr.write(`mirvo: ${error?.stack ?? error}\n`);
    process.exit(1);
  });
  worker.on("exit", (status) => process.exit(status));
}
