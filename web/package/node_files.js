// The files of the machine that Node runs on.
import fs from "node:fs";
import path from "node:path";

import { accessMode, append, create, exclusive, readWrite, truncate, writeOnly }
  from "./file_errors.js";

function nodeFlags(flags) {
  const mode = flags & accessMode;
  const { constants } = fs;
  return (mode === writeOnly ? constants.O_WRONLY : mode === readWrite ? constants.O_RDWR : 0) |
    (flags & create ? constants.O_CREAT : 0) | (flags & exclusive ? constants.O_EXCL : 0) |
    (flags & truncate ? constants.O_TRUNC : 0) | (flags & append ? constants.O_APPEND : 0);
}

class OpenFile {
  #descriptor;
  #position; // null where the file has none, as a pipe

  constructor(descriptor) {
    this.#descriptor = descriptor;
    this.#position = fs.fstatSync(descriptor).isFile() ? 0 : null;
  }

  read(target) {
    const size = fs.readSync(this.#descriptor, target, 0, target.length, this.#position);
    if (this.#position !== null) this.#position += size;
    return size;
  }

  write(bytes) {
    const size = fs.writeSync(this.#descriptor, bytes, 0, bytes.length, this.#position);
    if (this.#position !== null) this.#position += size;
    return size;
  }

  seek(offset, whence) {
    const stat = fs.fstatSync(this.#descriptor);
    const base = [0, this.#position ?? 0, stat.size][whence];
    if (this.#position === null || base + offset < 0) {
      throw Object.assign(new Error("no such place"), { code: "EINVAL" });
    }
    return (this.#position = base + offset);
  }

  close() {
    fs.closeSync(this.#descriptor);
  }
}

export class NodeFiles {
  #spare;

  /** Files of the folder `spare` stand in for missing ones of these names. */
  constructor(spare = { folder: null, names: [] }) {
    this.#spare = spare;
  }

  open(name, flags) {
    const file = Buffer.from(name);
    try {
      return new OpenFile(fs.openSync(file, nodeFlags(flags), 0o666));
    } catch (error) {
      const spare = this.#spare.names.find((known) => known === file.toString());
      if (error.code !== "ENOENT" || (flags & create) !== 0 || spare === undefined) throw error;
      return new OpenFile(fs.openSync(path.join(this.#spare.folder, spare), "r"));
    }
  }

  remove(name) {
    fs.unlinkSync(Buffer.from(name));
  }

  written() {
    return {};
  }
}
