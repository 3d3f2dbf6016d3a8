// Finding and counting the members of sets of squares. The tables are built once
// at start-up and never change.
#pragma once

#include <bit>
#include <cstdint>

#include "board/coding.h"

namespace mirvo {

inline constexpr int nChunks16 = 65536;

// The four tables are kept among those that start-up builds; nothing reads them,
// since HighestSquare, PopCount and Bit are faster.

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

/// Index of the highest member; `set` must not be empty. Not std::countl_zero,
/// which tests for the empty set first: 3 % of perft's instructions.
inline int HighestSquare(Bitboard set) { return 63 ^ __builtin_clzll(set); }

/// Removes the highest member of a non-empty set and returns its index. Sets
/// are walked from the top everywhere, so lists come out in one fixed order.
inline int PopHighest(Bitboard& set) {
  const int square = HighestSquare(set);
  set ^= Bit(square);
  return square;
}

/// Marks a function that counts many bits. A build for any x86-64 processor
/// compiles it twice, with and without the bit-count instruction, inlines what
/// it calls, and chooses when the program starts. (GCC recognises the count in
/// PopCount's lines.) Empty where the build may use the instruction anyway, and
/// where compiler or system cannot choose.
#if defined(__x86_64__) && defined(__GLIBC__) && defined(__OPTIMIZE__) && !defined(__clang__) && \
    !defined(__POPCNT__) && !defined(__SANITIZE_ADDRESS__)
#define MIRVO_COUNTS_BITS [[gnu::flatten, gnu::target_clones("default", "popcnt")]]
#else
#define MIRVO_COUNTS_BITS
#endif

/// Number of members.
inline int PopCount(Bitboard set) {
#ifdef __POPCNT__
  return std::popcount(set);
#else
  set -= (set >> 1) & 0x5555555555555555ULL;
  set = (set & 0x3333333333333333ULL) + ((set >> 2) & 0x3333333333333333ULL);
  set = (set + (set >> 4)) & 0x0F0F0F0F0F0F0F0FULL;
  return static_cast<int>((set * 0x0101010101010101ULL) >> 56);
#endif
}

}  // namespace mirvo
