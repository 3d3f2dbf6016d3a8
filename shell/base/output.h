// The one print routine: writes every message to standard output and to the log
// file and flushes both. The record is built before main and never changes
// afterwards; the log stays open until the process ends.
#pragma once

#include <cstdint>
#include <cstdio>

namespace mirvo {

inline constexpr char engineName[] = "Mirvo";
inline constexpr char engineVersion[] = "0.2.7_d";
inline constexpr char engineAuthor[] = "Tavelin";
inline constexpr char logFileName[] = "mirvo_0.2.7_d_log.txt";

/// Bytes of the formatting buffer; longer messages get a temporary one.
inline constexpr int outputBufferSize = 2048;

struct OutputRecord {
  /// Allocates the buffer and starts a fresh log in the working directory. A
  /// log that cannot be opened leaves the handle null; nothing is reported.
  OutputRecord();
  OutputRecord(const OutputRecord&) = delete;
  OutputRecord& operator=(const OutputRecord&) = delete;

  char* buffer;            // outputBufferSize bytes, never freed; null if allocation failed
  std::int32_t toConsole;  // non-zero: messages go to standard output
  std::FILE* log;          // null when the file could not be opened
};

/// Owner: output.cpp. Writers: none after start-up. Readers: every layer.
extern OutputRecord output;

// Formats follow C99 on every platform (%llu for 64 bits). GCC calls that family
// gnu_printf; clang's printf already means it.
#if defined(__clang__)
#define MIRVO_FORMAT_FAMILY printf
#else
#define MIRVO_FORMAT_FAMILY gnu_printf
#endif

/// Formats one message and writes it to standard output and the log. Returns
/// its length in bytes. Write errors are ignored.
std::uint32_t Output(OutputRecord& record, const char* format, ...)
    __attribute__((format(MIRVO_FORMAT_FAMILY, 2, 3)));

/// The same without the log, for the few texts that belong on the console only.
void PrintToConsole(const char* format, ...) __attribute__((format(MIRVO_FORMAT_FAMILY, 1, 2)));

#undef MIRVO_FORMAT_FAMILY

}  // namespace mirvo
