// What the tests share: the package under test, the files of the source tree, and
// the program run in this thread, a line at a time.
import fs from "node:fs";
import path from "node:path";
import { pathToFileURL } from "node:url";

export const packageFolder = process.env.MIRVO_PACKAGE;
const sourceFolder = process.env.MIRVO_SOURCE_DIR;

export const importFromPackage = (name) =>
  import(pathToFileURL(path.join(packageFolder, name)).href);

export const readSource = (name) => fs.readFileSync(path.join(sourceFolder, name), "utf8");

const { Host } = await importFromPackage("host.js");
const { LineConsole } = await importFromPackage("line_console.js");
const { MemoryFiles } = await importFromPackage("memory_files.js");
const { QueuedInput } = await importFromPackage("queued_input.js");

const program = new WebAssembly.Module(
  fs.readFileSync(path.join(packageFolder, "mirvo.wasm")));

/** Tables of the sizes that the figures under tests/data were made with; no book. */
export const referenceSettings = { "config.txt": "UseOpeningBook=0\n" };

/** A program in this thread. */
export class LocalEngine {
  lines = [];
  #input = new QueuedInput();
  #host;

  constructor({ args = [], files = referenceSettings } = {}) {
    const console = new LineConsole((line) => this.lines.push(line));
    this.#host = new Host({
      args: ["mirvo", ...args],
      files: new MemoryFiles(files),
      input: this.#input,
      console,
    });
    this.status = this.#host.start(program);
    console.finish();
  }

  /** The lines that come in answer to one line. */
  ask(line) {
    this.lines.length = 0;
    this.#input.write(new TextEncoder().encode(`${line}\n`));
    this.status = this.#host.resume();
    return [...this.lines];
  }
}

/** Splits text into its lines, without an empty one at the end. */
export const linesOf = (text) => text.replace(/\n$/, "").split("\n");

/** The lines of a search that tell of its result: no times and speeds. */
export function resultLines(lines) {
  return lines
    .filter((line) => line.startsWith("bestmove") || / score /.test(line))
    .map((line) => line.replace(/^info (.*?) time \d+( score .* nodes \d+) nps \d+/, "$1$2"));
}

export function positionCommand(position) {
  return position.startsWith("startpos")
    ? `position ${position}`
    : `position fen ${position} - 0 1`;
}
