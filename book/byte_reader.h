// Buffered reading of a file byte by byte, much cheaper than a library call per
// byte. Used for book files and PGN files.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>

namespace mirvo {

inline constexpr int endOfFile = -1;

/// Reads an open file; the caller closes it.
class ByteReader {
 public:
  // cppcheck-suppress uninitMemberVar ; only bytes below `size` are ever read.
  explicit ByteReader(std::FILE* source) : file(source) {}
  ByteReader(const ByteReader&) = delete;
  ByteReader& operator=(const ByteReader&) = delete;

  /// The next byte (0..255), or endOfFile at the end or after a read error.
  int Next() {
    if (position == size && !Refill()) return endOfFile;
    return buffer[position++];
  }

  /// The next `n` bytes, or null if they are not contiguous in the buffer; then
  /// read them one by one.
  const std::uint8_t* Take(std::size_t n) {
    if (position == size) Refill();
    if (size - position < n) return nullptr;
    position += n;
    return buffer + position - n;
  }

  /// What Next would return.
  int Peek() {
    if (position == size && !Refill()) return endOfFile;
    return buffer[position];
  }

 private:
  bool Refill() {
    position = 0;
    size = file == nullptr ? 0 : std::fread(buffer, 1, sizeof(buffer), file);
    // The end is final, even on a terminal or in a growing file.
    if (size == 0) file = nullptr;
    return size != 0;
  }

  std::FILE* file;
  std::size_t position = 0;
  std::size_t size = 0;
  std::uint8_t buffer[65536];
};

}  // namespace mirvo
