// A Web Worker made of one of Node's threads, as far as the package needs one:
// the global names of a worker, and fetching of the package's files. A browser's
// own workers are what the page's tests use.
import fs from "node:fs";
import { Worker as Thread, isMainThread, parentPort, workerData } from "node:worker_threads";

globalThis.fetch = async (url) => {
  try {
    return new Response(fs.readFileSync(new URL(url)));
  } catch {
    return new Response("", { status: 404, statusText: "Not Found" });
  }
};

globalThis.Worker = class {
  #thread;

  constructor(url) {
    this.#thread = new Thread(new URL(import.meta.url), {
      workerData: { url: String(url), isolated: globalThis.crossOriginIsolated },
    });
    this.#thread.on("message", (data) => this.onmessage?.({ data }));
    this.#thread.on("error", (error) => this.onerror?.(error));
    this.#thread.on("exit", () => this.onclose?.());
  }

  postMessage(data) {
    this.#thread.postMessage(data);
  }

  terminate() {
    this.#thread.terminate();
  }
};

if (!isMainThread) {
  globalThis.crossOriginIsolated = workerData.isolated;
  globalThis.location = new URL(workerData.url);
  globalThis.self = globalThis;
  globalThis.postMessage = (data) => parentPort.postMessage(data);
  globalThis.close = () => process.exit();
  await import(workerData.url);
  parentPort.on("message", (data) => globalThis.onmessage({ data }));
}
