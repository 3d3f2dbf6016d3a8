// Bit scanning and counting on sets of squares, and the two 16-bit lookup
// tables for them. The tables are built once at start-up and never change.
#pragma once

#include <cstdint>

#include "board/coding.h"

namespace mirvo {

inline constexpr int nChunks16 = 65536;

/// Number of set bits of each 16-bit value.
extern std::uint8_t PopCount16[nChunks16];

/// 48 + index of the highest set bit of each 16-bit value, so that the top
/// chunk of a 64-bit word maps straight to a square; entry 0 holds 63.
extern std::uint8_t HighBit16[nChunks16];

/// `SquareBit[s]` is the set {s}; `SquareClear[s]` is every other square.
extern Bitboard SquareBit[nSquares];
extern Bitboard SquareClear[nSquares];

void BuildHighBit16();
void BuildPopCount16();
void BuildSquareBit();
void BuildSquareClear();

/// Index of the highest member; `set` must not be empty.
inline int HighestSquare(Bitboard set) { return 63 ^ __builtin_clzll(set); }

/// Removes the highest member of a non-empty set and returns its index. Sets
/// are walked from the top everywhere, so lists come out in one fixed order.
inline int PopHighest(Bitboard& set) {
  const int square = HighestSquare(set);
  set ^= Bit(square);
  return square;
}

/// For a function that counts many bits: a build for any x86-64 compiles it
/// twice, with everything it calls built in, and takes the version with the
/// processor's own instruction (which the compiler sees in PopCount's lines)
/// where the program finds one at its start. Nothing where the build may count
/// so anyhow, nor where such a choice is not to be had.
#if defined(__x86_64__) && defined(__GLIBC__) && defined(__OPTIMIZE__) && !defined(__clang__) && \
    !defined(__POPCNT__) && !defined(__SANITIZE_ADDRESS__)
#define MIRVO_COUNTS_BITS [[gnu::flatten, gnu::target_clones("default", "popcnt")]]
#else
#define MIRVO_COUNTS_BITS
#endif

/// Number of members. Uses the processor's instruction where the build may.
inline int PopCount(Bitboard set) {
#ifdef __POPCNT__
  return __builtin_popcountll(set);
#else
  set -= (set >> 1) & 0x5555555555555555ULL;
  set = (set & 0x3333333333333333ULL) + ((set >> 2) & 0x3333333333333333ULL);
  set = (set + (set >> 4)) & 0x0F0F0F0F0F0F0F0FULL;
  return static_cast<int>((set * 0x0101010101010101ULL) >> 56);
#endif
}

}  // namespace mirvo
