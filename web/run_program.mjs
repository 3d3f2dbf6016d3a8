// Runs a WebAssembly program of the build on standard input and output with the
// files of the working folder:
//   node run_program.mjs PROGRAM.wasm [ARGUMENT...]
import { runCommand } from "./package/command.js";

const [program, ...words] = process.argv.slice(2);
runCommand({ program, args: [program, ...words], spare: { folder: "", names: [] } });
