// The package in a browser: the engine in a Web Worker.
import { Engine, ExitEvent, FaultEvent, LineEvent } from "./engine.js";

export { Engine, ExitEvent, FaultEvent, LineEvent };

const packageFolder = new URL(".", import.meta.url);

async function fetchBytes(url) {
  const response = await fetch(url);
  if (!response.ok) throw new Error(`${url}: ${response.status} ${response.statusText}`);
  return new Uint8Array(await response.arrayBuffer());
}

function webWorker(url) {
  const worker = new Worker(url, { name: "mirvo" });
  return {
    post: (message) => worker.postMessage(message),
    terminate: () => worker.terminate(),
    listen(onMessage, onError) {
      worker.onmessage = (event) => onMessage(event.data);
      worker.onmessageerror = () => onError(new Error("a message of the engine was lost"));
      worker.onerror = (event) => onError(new Error(event.message ?? `cannot run ${url}`));
    },
  };
}

/** The package's own files, without those that `files` names. */
async function defaultFiles(folder, files) {
  const names = ["config.txt", "book.bk"].filter((name) => !(name in files));
  const contents = await Promise.all(names.map((name) => fetchBytes(new URL(name, folder))));
  return Object.fromEntries(names.map((name, index) => [name, contents[index]]));
}

export async function createEngine(options = {}) {
  const { args = [], files = {}, interruptible = true } = options;
  // Bundlers know the form of this address.
  const workerUrl = options.folder === undefined
    ? new URL("./worker.js", import.meta.url)
    : new URL("worker.js", new URL(options.folder, globalThis.location.href));
  const folder = options.folder === undefined ? packageFolder : new URL(".", workerUrl);
  const [program, defaults] = await Promise.all([
    fetchBytes(new URL("mirvo.wasm", folder)),
    defaultFiles(folder, files),
  ]);
  const shared = interruptible && globalThis.crossOriginIsolated === true;
  const engine = new Engine(webWorker(workerUrl), shared);
  return engine.start({
    args,
    files: { ...defaults, ...files },
    module: await WebAssembly.compile(program),
  });
}
