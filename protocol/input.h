// Where input comes from: bytes of standard input, with a test whether any
// are waiting. One implementation a platform; tests install their own.
#pragma once

#include <cstddef>
#include <cstdint>

namespace mirvo {

/// What a read gives instead of a number of bytes.
inline constexpr int inputEnded = 0;      // end of input, or it cannot be read
inline constexpr int nothingToRead = -1;  // nothing yet, or the wait was cut short

struct InputSource {
  /// Number of bytes that wait, or 1 where only their presence is known. End
  /// of input counts as waiting, so that the caller reads and meets it.
  std::uint32_t (*waiting)();
  /// Reads at most `size` bytes and returns their number, inputEnded or
  /// nothingToRead. Without `wait` it never blocks.
  int (*read)(char* buffer, std::size_t size, bool wait);
  /// Whether the process that started this one is gone.
  bool (*parentExited)();
  /// Whether the reader of standard output is gone: nothing that is printed
  /// will ever be seen.
  bool (*outputClosed)();
  /// Sleeps about so many milliseconds between two looks at the input.
  void (*pause)(std::uint32_t milliseconds);
};

/// Standard input. The first call notes who started the process.
const InputSource& SystemInput();

}  // namespace mirvo
