// The lines on their way to an engine, in shared memory: a ring of bytes that
// one thread writes and the engine's thread reads, also in the middle of a
// search. Whoever writes never blocks: what finds no room waits in the writer
// until the reader tells that it has read.

const capacity = 1 << 16; // bytes; a power of two

// The words in front of the bytes. Counters of bytes wrap around at 32 bits.
const written = 0;
const read = 1;
const changes = 2; // counts whatever a waiting reader has to look at
const flags = 3;
const roomWanted = 4; // the writer has more than found room
const heard = 5; // counts the answers to the reader's messages
const nWords = 6;

const endedFlag = 1;
const terminationFlag = 2;

// Results of a read instead of a number of bytes (protocol/input.h).
export const inputEnded = 0;
export const nothingToRead = -1;

class Ring {
  constructor(buffer) {
    this.buffer = buffer;
    this.words = new Int32Array(buffer, 0, nWords);
    this.bytes = new Uint8Array(buffer, nWords * 4, capacity);
  }

  load(word) {
    return Atomics.load(this.words, word);
  }

  get filled() {
    return (this.load(written) - this.load(read)) | 0;
  }
}

export class InputWriter extends Ring {
  #kept = []; // chunks without room
  #ended = false;

  constructor() {
    super(new SharedArrayBuffer(nWords * 4 + capacity));
  }

  /** Takes all bytes; false when some of them wait for room. */
  write(bytes) {
    if (bytes.length !== 0) this.#kept.push(bytes);
    return this.flush();
  }

  /** No bytes will follow. */
  end() {
    this.#ended = true;
    this.flush();
  }

  requestTermination() {
    Atomics.or(this.words, flags, terminationFlag);
    this.#notify();
  }

  /** Tells the reader that its message was followed. */
  answer() {
    Atomics.add(this.words, heard, 1);
    Atomics.notify(this.words, heard);
  }

  /** To be called when the reader tells of room. */
  flush() {
    while (this.#kept.length !== 0) {
      const taken = this.#put(this.#kept[0]);
      if (taken < this.#kept[0].length) {
        this.#kept[0] = this.#kept[0].subarray(taken);
        Atomics.store(this.words, roomWanted, 1);
        // The reader may have made room before it saw the wish.
        if (this.filled === capacity) return false;
      } else {
        this.#kept.shift();
      }
    }
    if (this.#ended) {
      Atomics.or(this.words, flags, endedFlag);
      this.#notify();
    }
    return true;
  }

  #put(bytes) {
    const end = this.load(written);
    const size = Math.min(bytes.length, capacity - this.filled);
    const first = Math.min(size, capacity - (end & (capacity - 1)));
    this.bytes.set(bytes.subarray(0, first), end & (capacity - 1));
    this.bytes.set(bytes.subarray(first, size), 0);
    Atomics.add(this.words, written, size);
    this.#notify();
    return size;
  }

  #notify() {
    Atomics.add(this.words, changes, 1);
    Atomics.notify(this.words, changes);
  }
}

export class InputReader extends Ring {
  /** `onRoom` is called when a writer who waits may go on. */
  constructor(buffer, onRoom) {
    super(buffer);
    this.onRoom = onRoom;
  }

  get canWait() {
    return true;
  }

  get ended() {
    return (this.load(flags) & endedFlag) !== 0;
  }

  get terminationRequested() {
    return (this.load(flags) & terminationFlag) !== 0;
  }

  /** Bytes that wait; the end of input counts as one. */
  waiting() {
    return this.filled || (this.ended ? 1 : 0);
  }

  read(target, wait) {
    for (;;) {
      const seen = this.load(changes);
      const ended = this.ended; // before the bytes: it is set behind the last one
      const size = this.#take(target);
      if (size !== 0) return size;
      if (ended) return inputEnded;
      if (!wait || this.terminationRequested) return nothingToRead;
      Atomics.wait(this.words, changes, seen);
    }
  }

  /** Waits so long, or until something changes. */
  pause(milliseconds) {
    Atomics.wait(this.words, changes, this.load(changes), milliseconds);
  }

  /** Sends a message and waits until it was answered, a second at most. */
  ask(send) {
    const before = this.load(heard);
    send();
    Atomics.wait(this.words, heard, before, 1000);
  }

  #take(target) {
    const begin = this.load(read);
    const size = Math.min(target.length, this.filled);
    const first = Math.min(size, capacity - (begin & (capacity - 1)));
    const start = begin & (capacity - 1);
    target.set(this.bytes.subarray(start, start + first));
    target.set(this.bytes.subarray(0, size - first), first);
    Atomics.add(this.words, read, size);
    if (size !== 0 && Atomics.exchange(this.words, roomWanted, 0) !== 0) this.onRoom();
    return size;
  }
}
