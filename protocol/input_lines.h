// Puts bytes of an input source together to lines. Owns the buffer between
// the operating system and the dispatcher, so that a test for waiting input
// never misses lines that a library has read ahead.
#pragma once

#include <cstddef>

#include "protocol/input.h"

namespace mirvo {

/// Room for one line and its terminating 0. A line of lineCapacity - 1
/// characters or more, its line end counted, is split.
inline constexpr std::size_t lineCapacity = 4096;

enum class LineStatus {
  line,     // a line was written
  nothing,  // no complete line yet
  ended,    // no line, and no input will follow
};

struct LineReader {
  const InputSource* source = nullptr;
  char chunk[lineCapacity];  // bytes read and not yet looked at
  std::size_t chunkBegin = 0;
  std::size_t chunkEnd = 0;
  char partial[lineCapacity];  // the line that has no end yet
  std::size_t nPartial = 0;
  bool atStart = true;  // the first line is still to come
};

/// Writes the next line, without its line end, into `line` (lineCapacity
/// bytes, 0-terminated). A carriage return before the line feed and a
/// byte-order mark before the first line are dropped; the end of input ends a
/// last line too. With `wait` it may block until the source gives bytes, else
/// never; bytes of an unfinished line are kept for the next call.
LineStatus ReadLine(LineReader& reader, bool wait, char* line);

/// Whether bytes wait, read or unread.
bool InputWaits(const LineReader& reader);

}  // namespace mirvo
