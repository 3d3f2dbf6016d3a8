// The two ways of input: the ring in shared memory, and the queue without one.
import assert from "node:assert/strict";
import test from "node:test";
import { Worker } from "node:worker_threads";

import { importFromPackage, packageFolder } from "./kit.mjs";

const { InputReader, InputWriter, inputEnded, nothingToRead } =
  await importFromPackage("shared_input.js");
const { QueuedInput } = await importFromPackage("queued_input.js");

const bytes = (text) => new TextEncoder().encode(text);
const text = (target, size) => new TextDecoder().decode(target.slice(0, size));

test("a ring gives what was written, in order", () => {
  const writer = new InputWriter();
  const reader = new InputReader(writer.buffer, () => {});
  const target = new Uint8Array(100);
  assert.equal(reader.waiting(), 0);
  assert.equal(reader.read(target, false), nothingToRead);
  assert.ok(writer.write(bytes("uci\n")));
  assert.ok(writer.write(bytes("isready\n")));
  assert.equal(reader.waiting(), 12);
  assert.equal(text(target, reader.read(target, true)), "uci\nisready\n");
  writer.write(bytes("quit\n"));
  writer.end();
  assert.equal(text(target, reader.read(target, true)), "quit\n");
  assert.equal(reader.waiting(), 1);
  assert.equal(reader.read(target, true), inputEnded);
});

// Every length of chunk against every place where the ring begins anew, many
// times its size in all.
test("a ring keeps what finds no room until there is some", () => {
  const writer = new InputWriter();
  let wishes = 0;
  const reader = new InputReader(writer.buffer, () => ++wishes);
  const target = new Uint8Array(4000);
  let sent = 0;
  let received = 0;
  for (let round = 0; round < 300; ++round) {
    const chunk = new Uint8Array(1 + ((round * 997) % 9000)).map((_, i) => (sent + i) % 251);
    sent += chunk.length;
    writer.write(chunk);
    const size = Math.max(0, reader.read(target, false));
    for (let i = 0; i < size; ++i) assert.equal(target[i], (received + i) % 251);
    received += size;
  }
  assert.ok(wishes > 0);
  writer.end();
  while (received < sent) {
    writer.flush();
    const size = reader.read(target, false);
    assert.ok(size > 0);
    for (let i = 0; i < size; ++i) assert.equal(target[i], (received + i) % 251);
    received += size;
  }
  assert.equal(reader.read(target, true), inputEnded);
});

test("a reader who waits is woken by bytes and by the end", async () => {
  const script = `
    import { parentPort, workerData } from "node:worker_threads";
    import { InputReader } from ${JSON.stringify(`file://${packageFolder}/shared_input.js`)};
    const reader = new InputReader(workerData, () => {});
    for (let i = 0; i < 2; ++i) {
      parentPort.postMessage("waiting");
      parentPort.postMessage(reader.read(new Uint8Array(10), true));
    }`;
  const steps = [(writer) => writer.write(bytes("stop\n")), (writer) => writer.end()];
  const writer = new InputWriter();
  const worker = new Worker(new URL(`data:text/javascript,${encodeURIComponent(script)}`),
    { workerData: writer.buffer });
  const results = await new Promise((resolve, reject) => {
    const received = [];
    worker.on("error", reject);
    worker.on("exit", () => resolve(received));
    worker.on("message", (message) => {
      if (message === "waiting") {
        setTimeout(() => steps.shift()(writer), 20);
      } else {
        received.push(message);
      }
    });
  });
  assert.deepEqual(results, [5, inputEnded]);
});

test("behind a request to terminate nobody waits", () => {
  const writer = new InputWriter();
  const reader = new InputReader(writer.buffer, () => {});
  assert.equal(reader.terminationRequested, false);
  writer.requestTermination();
  assert.equal(reader.terminationRequested, true);
  assert.equal(reader.read(new Uint8Array(10), true), nothingToRead);
  writer.write(bytes("quit\n"));
  assert.equal(reader.read(new Uint8Array(10), true), 5);
});

test("a queue ends for a search that waits, and begins anew afterwards", () => {
  const queue = new QueuedInput();
  const target = new Uint8Array(3);
  assert.equal(queue.waiting(), 0);
  queue.write(bytes("stop\n"));
  assert.equal(text(target, queue.read(target, false)), "sto");
  assert.equal(text(target, queue.read(target, false)), "p\n");
  queue.pause(5);
  assert.equal(queue.waiting(), 1);
  assert.equal(queue.read(target, false), inputEnded);
  assert.equal(queue.read(target, true), nothingToRead);
  assert.equal(queue.waiting(), 0);
  queue.end();
  assert.equal(queue.read(target, true), inputEnded);
});
