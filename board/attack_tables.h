// Attack tables: sliding attacks indexed by the occupancy of one line, leaper
// attacks by square. Built once at start-up, read-only afterwards.
#pragma once

#include <cstdint>

#include "board/board.h"
#include "board/coding.h"
#include "board/square_sets.h"

namespace mirvo {

inline constexpr int nLineStates = 256;

extern Bitboard RankAttacks[nSquares][nLineStates];
extern Bitboard FileAttacks[nSquares][nLineStates];
extern Bitboard DiagA1H8Attacks[nSquares][nLineStates];
extern Bitboard DiagA8H1Attacks[nSquares][nLineStates];

// Where the line through a square starts in its occupancy view, how many
// squares a diagonal has, and a mask of as many bits.
extern std::uint8_t RankShift[nSquares];
extern std::uint8_t FileShift[nSquares];
extern std::uint8_t DiagA1H8Shift[nSquares];
extern std::uint8_t DiagA8H1Shift[nSquares];
extern std::uint8_t DiagA1H8Length[nSquares];
extern std::uint8_t DiagA8H1Length[nSquares];
extern std::uint8_t DiagA1H8Mask[nSquares];
extern std::uint8_t DiagA8H1Mask[nSquares];

extern Bitboard KnightAttacks[nSquares];
extern Bitboard KingAttacks[nSquares];
/// Squares a pawn of the side on the square attacks. [side][square]
extern Bitboard PawnAttacks[nSides][nSquares];

/// The four occupancy views that slider lookups read: a board's own, or a
/// working copy from which pieces are removed (static exchange).
struct OccupancyViews {
  std::uint64_t occupied;
  std::uint64_t rot90;
  std::uint64_t diagA1H8;
  std::uint64_t diagA8H1;
};

inline OccupancyViews ViewsOf(const Board& board) {
  return {board.occupied, board.occupiedRot90, board.occupiedDiagA1H8, board.occupiedDiagA8H1};
}

/// Attacks of a rook on an empty board.
constexpr Bitboard RookLines(int square) {
  return RankSet(RankOf(square)) ^ FileSet(FileOf(square));
}

/// Attacks of a bishop on an empty board, by square. A table of their own: the
/// entries of DiagA1H8Attacks and DiagA8H1Attacks are scattered over 256 kB.
struct BishopLineTable {
  Bitboard of[nSquares];
};
extern const BishopLineTable BishopLineSets;
inline Bitboard BishopLines(int square) { return BishopLineSets.of[square]; }

/// Attacks along the rank and file of `square`, up to and including the first
/// occupied square in each direction.
inline Bitboard RookAttacks(int square, std::uint64_t occupied, std::uint64_t rot90) {
  return RankAttacks[square][(occupied >> RankShift[square]) & 255] |
         FileAttacks[square][(rot90 >> FileShift[square]) & 255];
}

/// The index of FileAttacks for one file of a set that has no rotated view; rank
/// 1 is the lowest bit. The multiplication moves bit 8r of the file to 56 + r.
constexpr unsigned FileState(Bitboard occupied, int file) {
  return static_cast<unsigned>(((occupied >> file & FileSet(fileA)) * 0x0102040810204080ULL) >> 56);
}

/// Attacks along both diagonals of `square`.
inline Bitboard BishopAttacks(int square, std::uint64_t diagA1H8, std::uint64_t diagA8H1) {
  return DiagA1H8Attacks[square][(diagA1H8 >> DiagA1H8Shift[square]) & DiagA1H8Mask[square]] |
         DiagA8H1Attacks[square][(diagA8H1 >> DiagA8H1Shift[square]) & DiagA8H1Mask[square]];
}

inline Bitboard RookAttacks(const Board& board, int square) {
  return RookAttacks(square, board.occupied, board.occupiedRot90);
}
inline Bitboard BishopAttacks(const Board& board, int square) {
  return BishopAttacks(square, board.occupiedDiagA1H8, board.occupiedDiagA8H1);
}
inline Bitboard QueenAttacks(const Board& board, int square) {
  return RookAttacks(board, square) | BishopAttacks(board, square);
}
inline Bitboard RookAttacks(const OccupancyViews& views, int square) {
  return RookAttacks(square, views.occupied, views.rot90);
}
inline Bitboard BishopAttacks(const OccupancyViews& views, int square) {
  return BishopAttacks(square, views.diagA1H8, views.diagA8H1);
}

using TableBuilder = void (*)();

inline constexpr int nTableBuilders = 13;

/// The builders of the board's tables, in the order in which start-up runs them.
/// It shows progress after each.
extern const TableBuilder boardTableBuilders[nTableBuilders];

/// Runs all of them. Safe to call more than once (tests do).
void InitAttackTables();

}  // namespace mirvo
