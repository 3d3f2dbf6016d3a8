// The engine as a Web Worker. It serves two kinds of users:
// - createEngine (index.js), which sends the messages of engine_task.js;
// - anybody else: new Worker("worker.js"), postMessage("uci"), and each line of
//   output comes back as a message, a string.
// No import statement: so it runs as a classic and as a module worker.
(() => {
  const early = [];
  let receive = (message) => early.push(message);
  self.onmessage = (event) => receive(event.data);
  const folder = new URL(".", self.location.href);

  // Whatever comes is handed to the first message's kind of service.
  async function serve(first) {
    if (typeof first !== "string") {
      const { EngineTask } = await import(new URL("engine_task.js", folder));
      const task = new EngineTask(first, (message) => self.postMessage(message), () => {});
      return (message) => task.receive(message.bytes);
    }
    // The engine itself is in a worker of its own, so that this one can still
    // hear while it searches.
    const { createEngine } = await import(new URL("index.js", folder));
    const engine = await createEngine();
    engine.addEventListener("line", (event) => self.postMessage(event.line));
    engine.addEventListener("exit", () => self.close());
    engine.send(first);
    return (line) => engine.send(line);
  }

  receive = (first) => {
    receive = (message) => early.push(message);
    serve(first).then((service) => {
      early.forEach(service);
      receive = service;
    }, (error) => setTimeout(() => { throw error; }));
  };
})();
