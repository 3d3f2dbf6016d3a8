// How long the engine may think, and the "go" command that says so.

/**
 * @typedef {object} Limit
 * @property {"clock"|"depth"|"time"} kind
 * @property {number} [minutes] of each side, for a clock
 * @property {number} [increment] seconds a move, for a clock
 * @property {number} [depth] half-moves
 * @property {number} [seconds] a move
 */

/** @type {Limit} */
export const DEFAULT_LIMIT = { kind: "depth", depth: 4 };

/** What each number may be: smallest, largest. */
export const RANGES = {
  minutes: [0.5, 180],
  increment: [0, 60],
  depth: [1, 20],
  seconds: [0.1, 60],
};

/** Milliseconds of a clock that the engine leaves alone (its setting MoveOverhead). */
export const MOVE_OVERHEAD = 50;

const within = (value, [least, most]) => Math.min(Math.max(value, least), most);

/**
 * Makes a limit of anything: numbers in range, default values for the rest.
 * @returns {Limit}
 */
export function readLimit(value) {
  const numberOf = (name, otherwise) => {
    const number = Number(value?.[name]);
    return Number.isFinite(number) && value?.[name] !== "" ? within(number, RANGES[name]) : otherwise;
  };
  switch (value?.kind) {
    case "clock":
      return { kind: "clock", minutes: numberOf("minutes", 5), increment: numberOf("increment", 3) };
    case "time":
      return { kind: "time", seconds: numberOf("seconds", 1) };
    case "depth":
      return { kind: "depth", depth: Math.round(numberOf("depth", DEFAULT_LIMIT.depth)) };
    default:
      return { ...DEFAULT_LIMIT };
  }
}

/** The limit in words, as "5 minutes + 3 seconds a move". */
export function limitInWords(limit) {
  const count = (number, word) => `${number} ${word}${number === 1 ? "" : "s"}`;
  if (limit.kind === "clock") {
    const plus = limit.increment > 0 ? ` + ${count(limit.increment, "second")} a move` : "";
    return `${count(limit.minutes, "minute")}${plus}`;
  }
  if (limit.kind === "time") return `${count(limit.seconds, "second")} a move`;
  return `${count(limit.depth, "half-move")} deep`;
}

// The engine knows no "movetime": the last move before a time control has the
// whole clock, less the overhead. It takes the clock of one of the sides, so both
// are told the same.
function goForTime(milliseconds) {
  const clock = Math.round(milliseconds) + MOVE_OVERHEAD;
  return `go wtime ${clock} btime ${clock} winc 0 binc 0 movestogo 1`;
}

/**
 * The command for the engine's own move.
 * @param {Limit} limit
 * @param {number} remaining milliseconds on the engine's clock, for a clock
 */
export function goCommand(limit, remaining = 0) {
  if (limit.kind === "depth") return `go depth ${limit.depth}`;
  if (limit.kind === "time") return goForTime(limit.seconds * 1000);
  const clock = Math.max(Math.round(remaining), 1);
  const increment = Math.round(limit.increment * 1000);
  // "movestogo" stays from an earlier command, so it is always said.
  return `go wtime ${clock} btime ${clock} winc ${increment} binc ${increment} movestogo 0`;
}

/** The command for a hint: as deep as the opponent looks, or a second. */
export function hintCommand(limit) {
  if (limit.kind === "depth") return `go depth ${Math.max(limit.depth, 6)}`;
  return goForTime(1000);
}
