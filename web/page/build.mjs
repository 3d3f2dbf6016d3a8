// Builds the page: bundles the scripts, names every file by its contents, puts the
// engine's package beside them and writes the offline copy's list.
//
//   node build.mjs [ENGINE_PACKAGE [FOLDER]]
//
// The same sources give the same bytes, wherever they are built.
import { createHash } from "node:crypto";
import fs from "node:fs";
import path from "node:path";
import { fileURLToPath } from "node:url";
import { build } from "esbuild";

const here = path.dirname(fileURLToPath(import.meta.url));
const root = path.resolve(here, "../..");
const enginePackage = path.resolve(process.argv[2] ?? path.join(root, "build/web/package"));
const target = path.resolve(process.argv[3] ?? path.join(root, "build/web/page"));

// Of the engine's package what browsers need.
const NODE_ONLY = /^(bin|command|node|README|package\.json|index\.d\.ts)/;

const hashOf = (contents) => createHash("sha256").update(contents).digest("hex").slice(0, 12);
const read = (...names) => fs.readFileSync(path.join(here, ...names));

function engineFiles() {
  if (!fs.existsSync(path.join(enginePackage, "mirvo.wasm"))) {
    throw new Error(`The engine's package is not in ${enginePackage}: build the preset "web" first.`);
  }
  return fs.readdirSync(enginePackage).sort()
    .filter((name) => !NODE_ONLY.test(name))
    .map((name) => [name, fs.readFileSync(path.join(enginePackage, name))]);
}

async function bundle(engineFolder) {
  const result = await build({
    entryPoints: [path.join(here, "src/main.js")],
    bundle: true,
    format: "esm",
    target: "es2022",
    minify: true,
    legalComments: "none", // their texts are in LICENCES.txt
    charset: "utf8",
    absWorkingDir: here,
    define: { "globalThis.MIRVO_ENGINE": JSON.stringify(`${engineFolder}/index.js`) },
    write: false,
    logLevel: "warning",
  });
  return result.outputFiles[0].contents;
}

// The drawing of the pieces as a part of the page: without its comments and ids
// of its own.
function pieces() {
  return read("static/pieces.svg").toString().replace(/<!--[\s\S]*?-->/g, "").replace(/>\s+</g, "><").trim();
}

function licences() {
  const texts = ["chess.js", "cm-chessboard"].map((name) => {
    const { version, license } = JSON.parse(read("node_modules", name, "package.json"));
    const text = read("node_modules", name, "LICENSE").toString().trim();
    return `${name} ${version} (${license})\n\n${text}`;
  });
  const own = read("LICENCES.txt").toString().trim();
  return `${[own, ...texts].join(`\n\n${"-".repeat(72)}\n\n`)}\n`;
}

const engine = engineFiles();
const engineFolder = `engine-${hashOf(Buffer.concat(engine.flatMap(([name, contents]) => [Buffer.from(name), contents])))}`;
const script = await bundle(engineFolder);
const style = read("static/style.css");
const scriptName = `mirvo-${hashOf(script)}.js`;
const styleName = `mirvo-${hashOf(style)}.css`;
const fill = (text, values) => text.replace(/%([A-Z]+)%/g, (mark, name) => values[name] ?? mark);

const files = new Map([
  ["LICENCES.txt", licences()],
  ["icon.svg", read("static/icon.svg")],
  ["index.html", fill(read("static/index.html").toString(), { STYLE: styleName, SCRIPT: scriptName, PIECES: pieces() })],
  ["manifest.webmanifest", read("static/manifest.webmanifest")],
  [scriptName, script],
  [styleName, style],
  ...engine.map(([name, contents]) => [`${engineFolder}/${name}`, contents]),
]);
const version = hashOf(Buffer.concat([...files].flatMap(([name, contents]) => [Buffer.from(name), Buffer.from(contents)])));
files.set("service_worker.js", fill(read("src/service_worker.js").toString(), {
  VERSION: version, FILES: JSON.stringify([...files.keys()]),
}));

fs.rmSync(target, { recursive: true, force: true });
for (const [name, contents] of files) {
  const file = path.join(target, name);
  fs.mkdirSync(path.dirname(file), { recursive: true });
  fs.writeFileSync(file, contents);
}
const size = [...files.values()].reduce((sum, contents) => sum + contents.length, 0);
console.log(`${path.relative(process.cwd(), target)}: ${files.size} files, ${Math.round(size / 1000)} kB, version ${version}`);
