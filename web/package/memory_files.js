// Files in memory: one flat folder, gone with the engine.
import { FileError, accessMode, append, create, exclusive, truncate, writeOnly }
  from "./file_errors.js";

const decoder = new TextDecoder();
const encoder = new TextEncoder();

class Contents {
  bytes;
  size;
  changed = false;

  constructor(bytes) {
    this.bytes = bytes;
    this.size = bytes.length;
  }

  write(bytes, position) {
    const end = position + bytes.length;
    if (end > this.bytes.length) {
      const larger = new Uint8Array(Math.max(end, 2 * this.bytes.length, 1024));
      larger.set(this.bytes.subarray(0, this.size));
      this.bytes = larger;
    }
    this.bytes.set(bytes, position);
    this.size = Math.max(this.size, end);
    this.changed = true;
  }

  get whole() {
    return this.bytes.slice(0, this.size);
  }
}

class OpenFile {
  #contents;
  #flags;
  #position = 0;

  constructor(contents, flags) {
    this.#contents = contents;
    this.#flags = flags;
  }

  read(target) {
    if ((this.#flags & accessMode) === writeOnly) throw new FileError("EBADF");
    const end = Math.min(this.#position + target.length, this.#contents.size);
    const size = Math.max(0, end - this.#position);
    target.set(this.#contents.bytes.subarray(this.#position, this.#position + size));
    this.#position += size;
    return size;
  }

  write(bytes) {
    if ((this.#flags & accessMode) === 0) throw new FileError("EBADF");
    if ((this.#flags & append) !== 0) this.#position = this.#contents.size;
    this.#contents.write(bytes, this.#position);
    this.#position += bytes.length;
    return bytes.length;
  }

  seek(offset, whence) {
    const position = [0, this.#position, this.#contents.size][whence] + offset;
    if (!(position >= 0)) throw new FileError("EINVAL");
    return (this.#position = position);
  }

  close() {}
}

export class MemoryFiles {
  #files = new Map();

  /** `entries`: contents by name, as text or bytes; null leaves a file out. */
  constructor(entries) {
    for (const [name, contents] of Object.entries(entries)) {
      if (contents === null) continue;
      const bytes = typeof contents === "string" ? encoder.encode(contents) : contents;
      this.#files.set(this.#name(name), new Contents(bytes.slice()));
    }
  }

  open(path, flags) {
    const name = this.#name(decoder.decode(path));
    let contents = this.#files.get(name);
    if (contents !== undefined && (flags & create) !== 0 && (flags & exclusive) !== 0) {
      throw new FileError("EEXIST");
    }
    if (contents === undefined) {
      if ((flags & create) === 0) throw new FileError("ENOENT");
      if (name === "" || name.includes("/")) throw new FileError("ENOENT");
      contents = new Contents(new Uint8Array(0));
      contents.changed = true;
      this.#files.set(name, contents);
    } else if ((flags & truncate) !== 0) {
      contents.size = 0;
      contents.changed = true;
    }
    return new OpenFile(contents, flags);
  }

  remove(path) {
    if (!this.#files.delete(this.#name(decoder.decode(path)))) throw new FileError("ENOENT");
  }

  /** What the program wrote: contents by name. */
  written() {
    const changed = [...this.#files].filter(([, contents]) => contents.changed);
    return Object.fromEntries(changed.map(([name, contents]) => [name, contents.whole]));
  }

  #name(path) {
    return path.replace(/^(\.?\/)+/, "");
  }
}
