// Numbers of errors as the C library of the program has them, which are WASI's.

export const errors = {
  EACCES: 2,
  EBADF: 8,
  EEXIST: 20,
  EINVAL: 28,
  EIO: 29,
  EISDIR: 31,
  EMFILE: 33,
  ENOENT: 44,
  ENOSPC: 51,
  ENOTDIR: 54,
  EPERM: 63,
  EPIPE: 64,
  EROFS: 69,
};

/** The number of an exception of a file operation. */
export function errorNumber(error) {
  if (error instanceof WebAssembly.RuntimeError) throw error;
  return errors[error?.code] ?? errors.EIO;
}

export class FileError extends Error {
  constructor(code) {
    super(code);
    this.code = code;
  }
}

// Flags of open() in that library.
export const writeOnly = 0o1;
export const readWrite = 0o2;
export const accessMode = 0o3;
export const create = 0o100;
export const exclusive = 0o200;
export const truncate = 0o1000;
export const append = 0o2000;
