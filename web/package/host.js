// Runs the engine's program: gives it the functions that it imports, the C
// library's and those of shell/base/host_web.h.
import { errorNumber, errors } from "./file_errors.js";
import { nothingToRead } from "./shared_input.js";

// Thrown through the program to leave it.
class Exit {
  constructor(status) {
    this.status = status;
  }
}
const inputWanted = Symbol("the program waits for input");

const standardStreams = 3; // descriptors 0, 1 and 2
const encoder = new TextEncoder();

/** Where the program stands when the host has control again. */
export const waitingForInput = null;

export class Host {
  #args;
  #files;
  #input;
  #console;
  #signals;
  #exports;
  #open = new Map();
  #stack;

  /**
   * args     the words of the command line, the program's name first
   * files    open(path, flags), remove(path); see memory_files.js
   * input    see shared_input.js
   * console  write(bytes), closed, endWithClosedOutput
   * signals  told whether the program speaks XBoard; optional
   */
  constructor({ args, files, input, console, signals }) {
    this.#args = args.map((word) => encoder.encode(word + "\0"));
    this.#files = files;
    this.#input = input;
    this.#console = console;
    this.#signals = signals ?? (() => {});
  }

  /** Starts the program. Its exit status, or waitingForInput. */
  start(module) {
    const instance = new WebAssembly.Instance(module, this.#imports());
    this.#exports = instance.exports;
    this.#stack = this.#exports.stackSave();
    return this.#run(this.#exports._start);
  }

  /** Goes on with a program that waited for input. */
  resume() {
    this.#exports.stackRestore(this.#stack);
    return this.#run(this.#exports.ResumeEngine);
  }

  #run(entry) {
    try {
      entry();
      return 0;
    } catch (reason) {
      if (reason === inputWanted) return waitingForInput;
      if (reason instanceof Exit) return reason.status;
      throw reason;
    }
  }

  // Memory moves when it grows, so views of it live as long as one call.
  #bytes(address, size) {
    return new Uint8Array(this.#exports.memory.buffer, address >>> 0, size);
  }

  #view() {
    return new DataView(this.#exports.memory.buffer);
  }

  #text(address) {
    const memory = new Uint8Array(this.#exports.memory.buffer);
    return memory.slice(address >>> 0, memory.indexOf(0, address >>> 0));
  }

  #imports() {
    return {
      wasi_snapshot_preview1: {
        args_sizes_get: (count, size) => this.#argumentSizes(count, size),
        args_get: (words, buffer) => this.#arguments(words, buffer),
        proc_exit: (status) => {
          throw new Exit(status);
        },
        fd_read: (...args) => this.#transfer("read", ...args),
        fd_write: (...args) => this.#transfer("write", ...args),
        fd_seek: (descriptor, offset, whence, position) =>
          this.#seek(descriptor, offset, whence, position),
        fd_close: (descriptor) => this.#close(descriptor),
      },
      env: {
        emscripten_notify_memory_growth: () => {},
        __syscall_rmdir: () => -errors.EPERM,
        // From a start long ago, as clocks of other systems: the book's choices
        // depend on it, and what comes once a second comes at once.
        HostMilliseconds: () => performance.timeOrigin + performance.now(),
        HostSleep: sleep,
        HostOpenFile: (path, flags) => this.#openFile(path, flags),
        HostRemoveFile: (path) => this.#removeFile(path),
        HostInputWaiting: () => this.#input.waiting(),
        HostReadInput: (buffer, size, wait) => this.#readInput(buffer, size, wait !== 0),
        HostPauseInput: (milliseconds) => this.#input.pause(milliseconds),
        HostOutputClosed: () => Number(this.#console.closed),
        HostFollowSignals: (xboard) => this.#signals(xboard !== 0),
        HostTerminationRequested: () => Number(this.#input.terminationRequested),
        HostEndWithClosedOutput: (ends) => {
          this.#console.endWithClosedOutput = ends !== 0;
        },
      },
    };
  }

  #argumentSizes(count, size) {
    const view = this.#view();
    view.setUint32(count, this.#args.length, true);
    view.setUint32(size, this.#args.reduce((sum, word) => sum + word.length, 0), true);
    return 0;
  }

  #arguments(words, buffer) {
    const view = this.#view();
    let place = buffer;
    this.#args.forEach((word, index) => {
      view.setUint32(words + 4 * index, place, true);
      this.#bytes(place, word.length).set(word);
      place += word.length;
    });
    return 0;
  }

  #readInput(buffer, size, wait) {
    const nRead = this.#input.read(this.#bytes(buffer, size), wait);
    if (nRead === nothingToRead && wait && !this.#input.canWait) throw inputWanted;
    return nRead;
  }

  #openFile(path, flags) {
    try {
      const file = this.#files.open(this.#text(path), flags);
      let descriptor = standardStreams;
      while (this.#open.has(descriptor)) ++descriptor;
      this.#open.set(descriptor, file);
      return descriptor;
    } catch (error) {
      return -errorNumber(error);
    }
  }

  #removeFile(path) {
    try {
      this.#files.remove(this.#text(path));
      return 0;
    } catch (error) {
      return -errorNumber(error);
    }
  }

  #stream(descriptor) {
    if (descriptor >= standardStreams) return this.#open.get(descriptor);
    // Input does not come this way, and nothing is ever written to errors.
    return { read: () => 0, write: (bytes) => this.#print(bytes), seek: () => 0 };
  }

  #print(bytes) {
    this.#console.write(bytes);
    // As where the system ends a process whose output nobody reads.
    if (this.#console.closed && this.#console.endWithClosedOutput) throw new Exit(141);
    return bytes.length;
  }

  // Reads or writes the pieces of memory that a list names.
  #transfer(way, descriptor, list, count, transferred) {
    const stream = this.#stream(descriptor);
    if (stream === undefined) return errors.EBADF;
    let total = 0;
    try {
      for (let i = 0; i < count; ++i) {
        const address = this.#view().getUint32(list + 8 * i, true);
        const size = this.#view().getUint32(list + 8 * i + 4, true);
        if (size === 0) continue;
        const done = stream[way](this.#bytes(address, size));
        total += done;
        if (done < size) break;
      }
    } catch (reason) {
      if (reason instanceof Exit) throw reason;
      return errorNumber(reason);
    }
    this.#view().setUint32(transferred, total, true);
    return 0;
  }

  #seek(descriptor, offset, whence, position) {
    const stream = this.#stream(descriptor);
    if (stream === undefined) return errors.EBADF;
    try {
      this.#view().setBigInt64(position, BigInt(stream.seek(Number(offset), whence)), true);
      return 0;
    } catch (error) {
      return errorNumber(error);
    }
  }

  #close(descriptor) {
    if (descriptor < standardStreams) return 0;
    const file = this.#open.get(descriptor);
    if (file === undefined) return errors.EBADF;
    this.#open.delete(descriptor);
    try {
      file.close();
      return 0;
    } catch (error) {
      return errorNumber(error);
    }
  }
}

// Without shared memory a thread has no way to wait but to count the time.
function sleep(milliseconds) {
  if (typeof SharedArrayBuffer !== "undefined") {
    Atomics.wait(new Int32Array(new SharedArrayBuffer(4)), 0, 0, milliseconds);
    return;
  }
  const end = performance.now() + milliseconds;
  while (performance.now() < end);
}
