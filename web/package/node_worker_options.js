// How a thread is started that runs the engine in Node.

export const workerOptions = {
  // None of the options that the user gave to Node itself.
  execArgv: [],
  // The deepest search needs more than the usual stack, see docs/web.md.
  resourceLimits: { stackSizeMb: 16 },
};
