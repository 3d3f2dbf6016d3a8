// The two clocks of a game. Time comes from a function, so that tests need not wait.
import { opponent } from "./rules.js";

export class ChessClock {
  #now;
  #side = null; // whose clock runs
  #since = 0;

  /**
   * @param {{w: number, b: number}} remaining milliseconds
   * @param {number} increment milliseconds for each move
   * @param {() => number} now milliseconds
   */
  constructor(remaining, increment, now = () => performance.now()) {
    this.kept = { ...remaining };
    this.increment = increment;
    this.#now = now;
  }

  /** Whose clock runs; null if none does. */
  get running() {
    return this.#side;
  }

  /** Milliseconds that a side has left, at least 0. */
  remaining(side) {
    const spent = this.#side === side ? this.#now() - this.#since : 0;
    return Math.max(this.kept[side] - spent, 0);
  }

  /** Both clocks as they stand. */
  snapshot() {
    return { w: this.remaining("w"), b: this.remaining("b") };
  }

  start(side) {
    this.stop();
    this.#side = side;
    this.#since = this.#now();
  }

  stop() {
    if (this.#side === null) return;
    this.kept[this.#side] = this.remaining(this.#side);
    this.#side = null;
  }

  /** A side has moved: its increment, and the other clock runs. */
  press(side) {
    this.stop();
    this.kept[side] += this.increment;
    this.start(opponent(side));
  }

  /** Sets both clocks; neither runs. */
  set(remaining) {
    this.#side = null;
    this.kept = { ...remaining };
  }

  /** The side whose time is over; null if none. */
  fallen() {
    return this.#side !== null && this.remaining(this.#side) <= 0 ? this.#side : null;
  }
}

/** "4:07", "0:09.3" in the last twenty seconds, "1:02:03" above an hour. */
export function clockText(milliseconds) {
  if (milliseconds < 20000) {
    const tenths = Math.floor(milliseconds / 100);
    return `0:${String(Math.floor(tenths / 10)).padStart(2, "0")}.${tenths % 10}`;
  }
  const seconds = Math.ceil(milliseconds / 1000);
  const two = (number) => String(number).padStart(2, "0");
  const hours = Math.floor(seconds / 3600);
  const minutes = Math.floor(seconds / 60) % 60;
  return `${hours > 0 ? `${hours}:${two(minutes)}` : minutes}:${two(seconds % 60)}`;
}
