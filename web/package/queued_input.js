// The lines on their way to an engine where there is no shared memory: they come
// as messages, which the engine's thread receives between two searches only.
import { inputEnded, nothingToRead } from "./shared_input.js";

export class QueuedInput {
  #chunks = [];
  #ended = false;
  #abandoned = false; // a search waits for a command that cannot come

  get canWait() {
    return false;
  }

  get terminationRequested() {
    return false;
  }

  write(bytes) {
    if (bytes.length !== 0) this.#chunks.push(bytes);
  }

  end() {
    this.#ended = true;
  }

  waiting() {
    return this.#chunks.length !== 0 || this.#ended || this.#abandoned ? 1 : 0;
  }

  read(target, wait) {
    if (wait) this.#abandoned = false;
    if (this.#chunks.length === 0) {
      return this.#ended || this.#abandoned ? inputEnded : nothingToRead;
    }
    const chunk = this.#chunks[0];
    const size = Math.min(target.length, chunk.length);
    target.set(chunk.subarray(0, size));
    if (size === chunk.length) {
      this.#chunks.shift();
    } else {
      this.#chunks[0] = chunk.subarray(size);
    }
    return size;
  }

  // Only a search that is over pauses, to wait for "stop" or "ponderhit". To it
  // this is the end of its input, and it gives its move.
  pause() {
    this.#abandoned = true;
  }
}
