// Packs the built page for any static host. The same files give the same bytes:
// names are sorted, and times and rights are fixed.
//
//   node make_zip.mjs FOLDER ARCHIVE
import fs from "node:fs";
import path from "node:path";
import { pathToFileURL } from "node:url";
import zlib from "node:zlib";

const TOP_FOLDER = "mirvo-web/";
const VERSION = 20; // 2.0: folders and deflate
const MADE_ON_UNIX = 3 << 8;
const DEFLATED = 8;
const UTF8_NAMES = 1 << 11;
const RIGHTS = 0o100644 << 16;
const TIME = 0;
const DATE = (0 << 9) | (1 << 5) | 1; // 1 January 1980, the first that a zip knows

const CRC_TABLE = Uint32Array.from({ length: 256 }, (_, index) => {
  let value = index;
  for (let bit = 0; bit < 8; ++bit) value = value & 1 ? (value >>> 1) ^ 0xedb88320 : value >>> 1;
  return value;
});

function crc32(bytes) {
  let crc = 0xffffffff;
  for (const byte of bytes) crc = (crc >>> 8) ^ CRC_TABLE[(crc ^ byte) & 0xff];
  return (crc ^ 0xffffffff) >>> 0;
}

// Numbers of two and four bytes, one after the other.
function record(...numbers) {
  const bytes = Buffer.alloc(numbers.reduce((sum, [size]) => sum + size, 0));
  let at = 0;
  for (const [size, value] of numbers) at = bytes.writeUIntLE(value, at, size);
  return bytes;
}

function namesIn(folder, prefix = "") {
  return fs.readdirSync(path.join(folder, prefix), { withFileTypes: true }).flatMap((entry) =>
    (entry.isDirectory() ? namesIn(folder, `${prefix}${entry.name}/`) : [prefix + entry.name]));
}

/** @returns {Buffer} an archive of all files in the folder */
export function zipOf(folder) {
  const parts = [];
  const directory = [];
  let offset = 0;
  for (const name of namesIn(folder).sort()) {
    const contents = fs.readFileSync(path.join(folder, name));
    const packed = zlib.deflateRawSync(contents, { level: 9 });
    const nameBytes = Buffer.from(TOP_FOLDER + name);
    const common = [[2, UTF8_NAMES], [2, DEFLATED], [2, TIME], [2, DATE], [4, crc32(contents)],
      [4, packed.length], [4, contents.length], [2, nameBytes.length], [2, 0]];
    const local = Buffer.concat([record([4, 0x04034b50], [2, VERSION], ...common), nameBytes, packed]);
    directory.push(record([4, 0x02014b50], [2, MADE_ON_UNIX | VERSION], [2, VERSION], ...common,
      [2, 0], [2, 0], [2, 0], [4, RIGHTS >>> 0], [4, offset]), nameBytes);
    parts.push(local);
    offset += local.length;
  }
  const listed = Buffer.concat(directory);
  const count = directory.length / 2;
  const end = record([4, 0x06054b50], [2, 0], [2, 0], [2, count], [2, count], [4, listed.length], [4, offset], [2, 0]);
  return Buffer.concat([...parts, listed, end]);
}

if (process.argv[1] !== undefined && import.meta.url === pathToFileURL(process.argv[1]).href) {
  const [folder, archive] = process.argv.slice(2);
  const bytes = zipOf(folder);
  fs.writeFileSync(archive, bytes);
  console.log(`${path.basename(archive)}: ${Math.round(bytes.length / 1000)} kB`);
}
