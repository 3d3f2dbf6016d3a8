// Every table that start-up computes is the same, to the last entry.
import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import path from "node:path";
import test from "node:test";

import { linesOf, readSource } from "./kit.mjs";

test("start-up tables", () => {
  const runner = path.join(process.env.MIRVO_SOURCE_DIR, "web/run_program.mjs");
  const printed = execFileSync(process.execPath, [runner, process.argv[2]], {
    encoding: "utf8",
    cwd: path.dirname(process.argv[2]),
  });
  const stored = linesOf(readSource("tests/data/startup_tables.txt"))
    .filter((line) => !line.startsWith("#"));
  assert.deepEqual(linesOf(printed).sort(), stored.sort());
});
