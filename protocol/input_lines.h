// Assembles lines from the bytes of an input source. Owns the buffer between the
// operating system and the dispatcher, so that a test for waiting input never misses
// lines that a library has read ahead.
#pragma once

#include <cstddef>

#include "protocol/input.h"

namespace mirvo {

/// Room for one line and its terminating 0. A line of more than lineCapacity - 1
/// characters, including its line end, is split.
inline constexpr std::size_t lineCapacity = 4096;

enum class LineStatus {
  line,     // a line was written
  nothing,  // there is no complete line yet
  ended,    // no line, and no input will follow
};

struct LineReader {
  const InputSource* source = nullptr;
  char chunk[lineCapacity];  // bytes read and not yet scanned
  std::size_t chunkBegin = 0;
  std::size_t chunkEnd = 0;
  char partial[lineCapacity];  // the beginning of an unfinished line
  std::size_t nPartial = 0;
  bool atStart = true;  // no line has been returned yet
};

/// Writes the next line, without its line end, into `line` (lineCapacity bytes,
/// 0-terminated). Drops a carriage return before the line feed and a byte-order mark
/// before the first line; the end of input also ends a line. Blocks only with `wait`,
/// until the source has bytes; keeps the bytes of an unfinished line for the next
/// call.
LineStatus ReadLine(LineReader& reader, bool wait, char* line);

/// Whether bytes are waiting, in the buffer or in the source.
bool InputWaits(const LineReader& reader);

}  // namespace mirvo
