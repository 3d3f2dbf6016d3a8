// Serves the built page on the loopback address, with the headers that let the
// page share memory with the engine.
//
//   node serve.mjs [--port N] [--no-isolation] [FOLDER]
//
// Without --port it is 8000, or any free one if that is taken; 0 takes any free one. --no-isolation leaves the headers out, as many hosts do.
import fs from "node:fs";
import http from "node:http";
import path from "node:path";
import { fileURLToPath, pathToFileURL } from "node:url";

const USUAL_PORT = 8000;

const TYPES = {
  ".bk": "application/octet-stream",
  ".css": "text/css; charset=utf-8",
  ".html": "text/html; charset=utf-8",
  ".js": "text/javascript; charset=utf-8",
  ".svg": "image/svg+xml",
  ".txt": "text/plain; charset=utf-8",
  ".wasm": "application/wasm",
  ".webmanifest": "application/manifest+json",
};

const ISOLATION = {
  "Cross-Origin-Opener-Policy": "same-origin",
  "Cross-Origin-Embedder-Policy": "require-corp",
  "Cross-Origin-Resource-Policy": "same-origin",
};

// The file of an address inside the folder; undefined if there is none.
function fileOf(folder, url) {
  let name;
  try {
    name = decodeURIComponent(url.replace(/[?#].*$/s, ""));
  } catch {
    return undefined;
  }
  if (name.includes("\0")) return undefined;
  const file = path.join(folder, name.endsWith("/") ? `${name}index.html` : name);
  const inside = file.startsWith(folder + path.sep);
  return inside && fs.statSync(file, { throwIfNoEntry: false })?.isFile() ? file : undefined;
}

/**
 * Serves a folder on 127.0.0.1.
 * @param {string} folder
 * @param {{port?: number, isolated?: boolean}} options
 * @returns {Promise<http.Server & {address: string}>}
 */
export function serve(folder, { port = 0, isolated = true } = {}) {
  const root = path.resolve(folder);
  const server = http.createServer((request, response) => {
    const file = ["GET", "HEAD"].includes(request.method) ? fileOf(root, request.url) : undefined;
    const headers = { "Cache-Control": "no-cache", "X-Content-Type-Options": "nosniff", ...(isolated ? ISOLATION : {}) };
    if (file === undefined) {
      response.writeHead(404, { ...headers, "Content-Type": "text/plain" }).end("There is nothing here.\n");
      return;
    }
    headers["Content-Type"] = TYPES[path.extname(file)] ?? "application/octet-stream";
    headers["Content-Length"] = fs.statSync(file).size;
    response.writeHead(200, headers);
    if (request.method === "HEAD") response.end();
    else fs.createReadStream(file).pipe(response);
  });
  return new Promise((resolve, reject) => {
    server.once("error", reject);
    server.listen(port, "127.0.0.1", () => {
      server.url = `http://127.0.0.1:${server.address().port}/`;
      resolve(server);
    });
  });
}

async function main(words) {
  const options = {};
  let folder = path.resolve(path.dirname(fileURLToPath(import.meta.url)), "../../build/web/page");
  while (words.length > 0) {
    const word = words.shift();
    if (word === "--port") options.port = Number(words.shift());
    else if (word === "--no-isolation") options.isolated = false;
    else folder = word;
  }
  const { port } = options;
  if (port !== undefined && !(Number.isInteger(port) && port >= 0 && port <= 65535)) {
    throw new Error("--port needs a number from 0 to 65535");
  }
  const server = port !== undefined ? await serve(folder, options)
    : await serve(folder, { ...options, port: USUAL_PORT }).catch(() => serve(folder, options));
  console.log(`Mirvo is at ${server.url} (Ctrl-C ends this)`);
}

if (process.argv[1] !== undefined && import.meta.url === pathToFileURL(process.argv[1]).href) {
  main(process.argv.slice(2)).catch((error) => {
    console.error(error.code === "EADDRINUSE" ? `${error.message}: choose another with --port N` : error.message);
    process.exit(1);
  });
}
