// The offline copy: a service worker (service_worker.js) that keeps all files of
// this version. A newer version is taken when the page is loaded, or when the
// person says so; never in the middle of a game.

/**
 * @param {(useIt: () => void) => void} onUpdate told that a newer version is there
 */
export async function keepOffline(onUpdate) {
  const { serviceWorker } = navigator;
  if (serviceWorker === undefined) return;
  let registration;
  try {
    registration = await serviceWorker.register("service_worker.js", { updateViaCache: "none" });
  } catch {
    return; // private windows and some hosts have none; the page works without
  }
  const wasControlled = serviceWorker.controller !== null;
  let wanted = false;
  serviceWorker.addEventListener("controllerchange", () => {
    // The first one only takes the page under its wing. Another window may have
    // taken a newer one, and the files of this version are gone then.
    if (wanted) location.reload();
    else if (wasControlled) onUpdate(() => location.reload());
  });
  const use = (worker) => {
    wanted = true;
    worker.postMessage("use this version");
  };
  // Loaded while a newer version waits: nothing has been played yet on this page.
  if (registration.waiting !== null && wasControlled) use(registration.waiting);
  registration.addEventListener("updatefound", () => {
    const worker = registration.installing;
    worker.addEventListener("statechange", () => {
      if (worker.state === "installed" && serviceWorker.controller !== null) onUpdate(() => use(worker));
    });
  });
}
