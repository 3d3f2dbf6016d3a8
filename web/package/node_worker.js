// The thread of an engine object in Node.
import { parentPort } from "node:worker_threads";

import { EngineTask } from "./engine_task.js";

parentPort.once("message", (start) => {
  const task = new EngineTask(start, (message) => parentPort.postMessage(message),
    () => parentPort.close());
  parentPort.on("message", (message) => task.receive(message.bytes));
});
