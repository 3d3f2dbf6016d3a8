#!/usr/bin/env node
// The engine on standard input and output.
import { fileURLToPath } from "node:url";

import { runCommand } from "../command.js";

const folder = fileURLToPath(new URL("..", import.meta.url));
runCommand({
  program: fileURLToPath(new URL("../mirvo.wasm", import.meta.url)),
  args: ["mirvo", ...process.argv.slice(2)],
  // A working folder without settings or book plays with the package's.
  spare: { folder, names: ["config.txt", "book.bk"] },
});
