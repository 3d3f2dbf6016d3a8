// The upper half of a wide product, for computing remainders in hash_table.h.
#pragma once

#include <cstdint>

namespace mirvo {

/// The upper 64 bits of a * b in plain 64-bit arithmetic, for targets without a
/// 128-bit type; the reference that a test compares MultiplyHigh with.
constexpr std::uint64_t MultiplyHighPlain(std::uint64_t a, std::uint32_t b) {
  const std::uint64_t upper = (a >> 32) * b;
  const std::uint64_t lower = (a & 0xFFFFFFFF) * b;
  return (upper + (lower >> 32)) >> 32;
}

/// The upper 64 bits of a * b.
constexpr std::uint64_t MultiplyHigh(std::uint64_t a, std::uint32_t b) {
#ifdef __SIZEOF_INT128__
  __extension__ using Wide = unsigned __int128;
  return static_cast<std::uint64_t>((static_cast<Wide>(a) * b) >> 64);
#else
  return MultiplyHighPlain(a, b);
#endif
}

}  // namespace mirvo
