// Keeps the files of one version of the page, so that it works without a network.
// build.mjs fills in the version, which changes with the contents of any file, and
// the list of files.
const VERSION = "%VERSION%";
const FILES = %FILES%;
const CACHE = `mirvo-${VERSION}`;

// With these headers the page may share memory with the engine, which then hears
// "stop" while it thinks. A host that does not send them needs to be visited
// twice: from the second time on the page comes from here.
const ISOLATION = {
  "Cross-Origin-Opener-Policy": "same-origin",
  "Cross-Origin-Embedder-Policy": "require-corp",
  "Cross-Origin-Resource-Policy": "same-origin",
};

async function fill() {
  const cache = await caches.open(CACHE);
  // Past the browser's own cache, which may hold files of an older version.
  await cache.addAll(FILES.map((file) => new Request(file, { cache: "reload" })));
}

async function removeOlder() {
  const names = await caches.keys();
  await Promise.all(names.filter((name) => name.startsWith("mirvo-") && name !== CACHE)
    .map((name) => caches.delete(name)));
}

function isolated(response) {
  const headers = new Headers(response.headers);
  for (const [name, value] of Object.entries(ISOLATION)) headers.set(name, value);
  return new Response(response.body, { status: response.status, statusText: response.statusText, headers });
}

async function answer(request) {
  const cache = await caches.open(CACHE);
  const url = new URL(request.url);
  const page = request.mode === "navigate" && url.href === self.registration.scope;
  const kept = await cache.match(page ? "index.html" : request, { ignoreSearch: true });
  return kept === undefined ? fetch(request) : isolated(kept);
}

self.addEventListener("install", (event) => event.waitUntil(fill()));
self.addEventListener("activate", (event) => event.waitUntil(removeOlder().then(() => self.clients.claim())));
self.addEventListener("message", (event) => {
  if (event.data === "use this version") self.skipWaiting();
});
self.addEventListener("fetch", (event) => {
  const url = new URL(event.request.url);
  if (event.request.method === "GET" && url.origin === self.location.origin) {
    event.respondWith(answer(event.request));
  }
});
