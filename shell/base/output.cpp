#include "shell/base/output.h"

#include <cstdarg>
#include <cstdlib>
#include <cstring>

#include "shell/base/streams.h"

namespace mirvo {

OutputRecord output;

namespace {

/// A formatted message, in the caller's buffer or, if it is too long for that, in
/// allocated memory.
struct Message {
  const char* text;
  std::size_t length;
  char* owned;  // freed by the caller; null when the text fits the buffer
};

/// Formats into `buffer` (`size` bytes). A message that does not fit is
/// formatted again into allocated memory; without memory it stays truncated.
__attribute__((format(printf, 3, 0))) Message FormatMessage(char* buffer, std::size_t size,
                                                            const char* format,
                                                            std::va_list arguments) {
  std::va_list again;
  va_copy(again, arguments);
  Message message{buffer, 0, nullptr};
  const int needed = std::vsnprintf(buffer, size, format, arguments);
  if (needed < 0) {
    // A message that cannot be formatted at all is dropped.
    buffer[0] = '\0';
  } else if (static_cast<std::size_t>(needed) < size) {
    message.length = static_cast<std::size_t>(needed);
  } else {
    const std::size_t room = static_cast<std::size_t>(needed) + 1;
    message.owned = static_cast<char*>(std::malloc(room));
    if (message.owned != nullptr) {
      std::vsnprintf(message.owned, room, format, again);
      message.text = message.owned;
    }
    message.length = std::strlen(message.text);
  }
  va_end(again);
  return message;
}

/// One write and one flush, so that a reader never sees half a message. Errors
/// (full disk, closed pipe) are ignored: the other sink and later messages are
/// still written.
void WriteTo(std::FILE* sink, const Message& message) {
  std::fwrite(message.text, 1, message.length, sink);
  std::fflush(sink);
}

}  // namespace

OutputRecord::OutputRecord()
    : buffer(static_cast<char*>(std::malloc(outputBufferSize))), toConsole(1), log(nullptr) {
  OccupyStandardStreams();
  log = std::fopen(logFileName, "w+");
}

std::uint32_t Output(OutputRecord& record, const char* format, ...) {
  // Used when the record's buffer could not be allocated.
  char spare[outputBufferSize];
  char* const buffer = record.buffer != nullptr ? record.buffer : spare;
  std::va_list arguments;
  va_start(arguments, format);
  const Message message = FormatMessage(buffer, outputBufferSize, format, arguments);
  va_end(arguments);
  if (record.toConsole != 0) WriteTo(stdout, message);
  if (record.log != nullptr) WriteTo(record.log, message);
  std::free(message.owned);
  return static_cast<std::uint32_t>(message.length);
}

void PrintToConsole(const char* format, ...) {
  char buffer[outputBufferSize];
  std::va_list arguments;
  va_start(arguments, format);
  const Message message = FormatMessage(buffer, outputBufferSize, format, arguments);
  va_end(arguments);
  WriteTo(stdout, message);
  std::free(message.owned);
}

}  // namespace mirvo
