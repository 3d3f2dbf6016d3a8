// Sets of squares named by chess words, and the same words seen from either
// side: "ahead" is toward the enemy and relative rank 0 is the side's own back
// rank. The side is a compile-time constant, so all of it folds away.
#pragma once

#include "board/board.h"
#include "board/coding.h"

namespace mirvo {

inline constexpr Bitboard fileASquares = 0x0101010101010101ULL;
inline constexpr Bitboard fileHSquares = fileASquares << 7;
inline constexpr Bitboard lightSquares = 0x55AA55AA55AA55AAULL;  // a1 is dark
inline constexpr Bitboard darkSquares = ~lightSquares;

/// The three outer files of a wing, which shelter a king that stands there.
inline constexpr Bitboard filesAToC = 0x0707070707070707ULL;
inline constexpr Bitboard filesFToH = 0xE0E0E0E0E0E0E0E0ULL;

/// d4, e4, d5, e5 and the ring c3-f3-f6-c6 around them.
inline constexpr Bitboard centreSquares = 0x0000001818000000ULL;
inline constexpr Bitboard extendedCentreRing = 0x00003C24243C0000ULL;

constexpr Bitboard FileSet(int file) { return fileASquares << file; }
constexpr Bitboard RankSet(int rank) { return Bitboard{0xFF} << (8 * rank); }

/// Files beside `file`; the a and h files have one neighbour only.
constexpr Bitboard AdjacentFileSet(int file) {
  const Bitboard own = FileSet(file);
  return ((own & ~fileASquares) >> 1) | ((own & ~fileHSquares) << 1);
}

template <int side>
constexpr int RelativeRank(int rank) {
  return side == white ? rank : 7 - rank;
}

template <int side>
constexpr Bitboard RelativeRankSet(int rank) {
  return RankSet(RelativeRank<side>(rank));
}

/// A square named from White's side, as `side` sees it.
template <int side>
constexpr Bitboard RelativeSquare(int square) {
  return Bit(side == white ? square : Flip(square));
}

/// All squares on the ranks toward the enemy; none on the last rank. The
/// shift is split because a whole-word shift is undefined.
template <int side>
constexpr Bitboard RanksAhead(int rank) {
  return side == white ? (~Bitboard{0} << 8) << (8 * rank) : Bit(8 * rank) - 1;
}

template <int side>
constexpr Bitboard RanksBehind(int rank) {
  return RanksAhead<side ^ 1>(rank);
}

/// Squares attacked by any of `pawns`.
template <int side>
constexpr Bitboard PawnAttackSet(Bitboard pawns) {
  const Bitboard notA = pawns & ~fileASquares;
  const Bitboard notH = pawns & ~fileHSquares;
  return side == white ? (notA << 7) | (notH << 9) : (notA >> 9) | (notH >> 7);
}

/// The six bitboards of a side, indexed by kind.
template <int side>
inline const Bitboard* PiecesOf(const Board& board) {
  return board.pieces + side * nKinds;
}

}  // namespace mirvo
