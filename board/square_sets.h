// Sets of squares by the names that chess gives them: files, ranks, colours, and
// the same as a side sees them, whose own back rank is its first. With a side
// that is known when compiling all of it folds away.
#pragma once

#include "board/coding.h"

namespace mirvo {

constexpr Bitboard FileSet(int file) { return 0x0101010101010101ULL << file; }
constexpr Bitboard RankSet(int rank) { return Bitboard{0xFF} << (8 * rank); }

/// Files beside `file`; the a and h files have one neighbour only.
constexpr Bitboard AdjacentFileSet(int file) {
  const Bitboard own = FileSet(file);
  return ((own & ~FileSet(fileA)) >> 1) | ((own & ~FileSet(fileH)) << 1);
}

/// The wings, four files each, and the two files between their outer three.
inline constexpr Bitboard queenSideFiles = 0x0F0F0F0F0F0F0F0FULL;
inline constexpr Bitboard kingSideFiles = ~queenSideFiles;
inline constexpr Bitboard centreFiles = FileSet(fileD) | FileSet(fileE);

/// The three outer files of a wing, which shelter a king that stands there.
inline constexpr Bitboard filesAToC = queenSideFiles & ~centreFiles;
inline constexpr Bitboard filesFToH = kingSideFiles & ~centreFiles;

/// d4, e4, d5, e5 and the ring c3-f3-f6-c6 around them.
inline constexpr Bitboard centreSquares = centreFiles & (RankSet(rank4) | RankSet(rank5));
inline constexpr Bitboard extendedCentreRing = 0x00003C24243C0000ULL;

inline constexpr Bitboard lightSquares = 0x55AA55AA55AA55AAULL;  // a1 is dark
inline constexpr Bitboard darkSquares = ~lightSquares;

/// A rank as `side` counts it, from its own back rank.
constexpr int RelativeRank(int side, int rank) { return side == white ? rank : 7 - rank; }

constexpr Bitboard RelativeRankSet(int side, int rank) { return RankSet(RelativeRank(side, rank)); }

/// The square that White would call by this rank and file.
constexpr int RelativeSquare(int side, int rank, int file) {
  return SquareAt(RelativeRank(side, rank), file);
}

/// All squares on the ranks toward the enemy; none on the last rank. The shift
/// is split because a whole-word shift is undefined.
constexpr Bitboard RanksAhead(int side, int rank) {
  return side == white ? (~Bitboard{0} << 8) << (8 * rank) : Bit(8 * rank) - 1;
}

constexpr Bitboard RanksBehind(int side, int rank) { return RanksAhead(side ^ 1, rank); }

/// Squares attacked by any of the side's `pawns`.
constexpr Bitboard PawnAttackSet(int side, Bitboard pawns) {
  const Bitboard notA = pawns & ~FileSet(fileA);
  const Bitboard notH = pawns & ~FileSet(fileH);
  return side == white ? (notA << 7) | (notH << 9) : (notA >> 9) | (notH >> 7);
}

}  // namespace mirvo
