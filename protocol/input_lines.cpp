#include "protocol/input_lines.h"

#include <cstring>
#include <string_view>

#include "shell/base/text.h"

namespace mirvo {
namespace {

/// Characters of one line, including its line feed.
constexpr std::size_t maxLineLength = lineCapacity - 1;

/// Writes the collected characters as a line.
LineStatus FinishLine(LineReader& reader, char* line) {
  std::string_view text(reader.partial, reader.nPartial);
  if (reader.atStart) text = WithoutByteOrderMark(text);
  std::memcpy(line, text.data(), text.size());
  line[text.size()] = 0;
  reader.atStart = false;
  reader.nPartial = 0;
  return LineStatus::line;
}

/// Takes characters from the chunk until a line is complete. A full buffer completes a
/// line too, unless it ends with a carriage return whose line feed may follow.
LineStatus ScanChunk(LineReader& reader, char* line) {
  while (reader.chunkBegin < reader.chunkEnd) {
    const char next = reader.chunk[reader.chunkBegin];
    if (reader.nPartial == maxLineLength && next != '\n') return FinishLine(reader, line);
    ++reader.chunkBegin;
    if (next == '\n') {
      if (reader.nPartial > 0 && reader.partial[reader.nPartial - 1] == '\r') --reader.nPartial;
      return FinishLine(reader, line);
    }
    reader.partial[reader.nPartial++] = next;
    if (reader.nPartial == maxLineLength && next != '\r') return FinishLine(reader, line);
  }
  return LineStatus::nothing;
}

}  // namespace

LineStatus ReadLine(LineReader& reader, bool wait, char* line) {
  for (;;) {
    if (ScanChunk(reader, line) == LineStatus::line) return LineStatus::line;
    const int nRead = reader.source->read(reader.chunk, sizeof reader.chunk, wait);
    if (nRead == nothingToRead) return LineStatus::nothing;
    if (nRead == inputEnded) {
      return reader.nPartial > 0 ? FinishLine(reader, line) : LineStatus::ended;
    }
    reader.chunkBegin = 0;
    reader.chunkEnd = static_cast<std::size_t>(nRead);
  }
}

bool InputWaits(const LineReader& reader) {
  return reader.chunkBegin < reader.chunkEnd || reader.source->waiting() != 0;
}

}  // namespace mirvo
