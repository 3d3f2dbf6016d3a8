// The source of input: reads bytes of standard input and tests whether any are
// waiting. One implementation per platform; tests install their own.
#pragma once

#include <cstddef>
#include <cstdint>

namespace mirvo {

/// Results of a read besides a number of bytes.
inline constexpr int inputEnded = 0;      // end of input, or a read error
inline constexpr int nothingToRead = -1;  // nothing yet, or the wait was interrupted

struct InputSource {
  /// Number of waiting bytes, or 1 where only their presence is known. End of input
  /// counts as waiting, so that the caller reads it.
  std::uint32_t (*waiting)();
  /// Reads at most `size` bytes and returns their number, inputEnded or
  /// nothingToRead. Without `wait` it never blocks.
  int (*read)(char* buffer, std::size_t size, bool wait);
  /// Whether the process that started this one has ended.
  bool (*parentExited)();
  /// Whether the reader of standard output has closed it.
  bool (*outputClosed)();
  /// Sleeps about so many milliseconds between two polls.
  void (*pause)(std::uint32_t milliseconds);
};

/// Standard input. The first call stores the parent process.
const InputSource& SystemInput();

}  // namespace mirvo
