// The package in Node: the engine in a worker thread.
import fs from "node:fs";
import { fileURLToPath } from "node:url";
import { Worker } from "node:worker_threads";

import { Engine, ExitEvent, FaultEvent, LineEvent } from "./engine.js";

export { Engine, ExitEvent, FaultEvent, LineEvent };

const packageFolder = new URL(".", import.meta.url);

function threadWorker() {
  // Without the options that the user gave to Node itself.
  const worker = new Worker(new URL("./node_worker.js", import.meta.url), { execArgv: [] });
  return {
    post: (message) => worker.postMessage(message),
    terminate: () => worker.terminate(),
    listen(onMessage, onError) {
      worker.on("message", onMessage);
      worker.on("error", onError);
    },
  };
}

function folderOf(options) {
  if (options.folder === undefined) return packageFolder;
  return new URL(".", new URL(options.folder, packageFolder));
}

export async function createEngine(options = {}) {
  const { args = [], files = {}, interruptible = true } = options;
  const folder = folderOf(options);
  const read = (name) => fs.promises.readFile(fileURLToPath(new URL(name, folder)));
  const names = ["config.txt", "book.bk"].filter((name) => !(name in files));
  const defaults = await Promise.all(names.map(async (name) => [name, await read(name)]));
  const module = await WebAssembly.compile(await read("mirvo.wasm"));
  const engine = new Engine(threadWorker(), interruptible);
  return engine.start({ args, files: { ...Object.fromEntries(defaults), ...files }, module });
}
