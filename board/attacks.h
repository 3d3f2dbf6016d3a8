// Attack queries on a board: is a square attacked, is a side in check.
#pragma once

#include "board/attack_tables.h"
#include "board/bits.h"
#include "board/board.h"
#include "board/geometry_tables.h"

namespace mirvo {

/// Whether `attacker` attacks `square` (0..63). Tests pawns, knights, king,
/// diagonal sliders and orthogonal sliders, in that order.
inline bool SquareAttacked(const Board& board, int attacker, int square) {
  const Bitboard* enemy = PiecesOf(board, attacker);
  return (PawnAttacks[attacker ^ 1][square] & enemy[pawn]) != 0 ||
         (KnightAttacks[square] & enemy[knight]) != 0 || (KingAttacks[square] & enemy[king]) != 0 ||
         (BishopAttacks(board, square) & (enemy[bishop] | enemy[queen])) != 0 ||
         (RookAttacks(board, square) & (enemy[rook] | enemy[queen])) != 0;
}

/// The same with rank and file. Kept for drivers of the board; nothing calls it.
inline bool SquareAttacked(const Board& board, int attacker, int rank, int file) {
  return SquareAttacked(board, attacker, SquareAt(rank, file));
}

/// Whether the king of `side` is attacked. For the side to move the answer is
/// kept in inCheckCache until the next move.
inline bool InCheck(Board& board, int side) {
  if (side != board.sideToMove) return SquareAttacked(board, side ^ 1, KingSquare(board, side));
  if (board.inCheckCache < 0) {
    board.inCheckCache = SquareAttacked(board, side ^ 1, KingSquare(board, side)) ? 1 : 0;
  }
  return board.inCheckCache != 0;
}

/// Adds to `blockers` each piece that is alone between a square and a slider of `set`.
/// `path` has the squares up to each slider, the slider included.
inline void AddBlockers(const Board& board, const Bitboard* path, Bitboard set,
                        Bitboard& blockers) {
  while (set != 0) {
    const int slider = PopHighest(set);
    const Bitboard between = path[slider] & board.occupied & ~Bit(slider);
    if ((between & (between - 1)) == 0) blockers |= between;
  }
}

/// Pieces of either side that are alone between `square` and a slider of `attacker`.
/// Those of the other side are pinned if `square` is its king's.
inline Bitboard Blockers(const Board& board, int square, int attacker) {
  const Bitboard* sliders = PiecesOf(board, attacker);
  Bitboard blockers = 0;
  AddBlockers(board, RookPath[square], RookLines(square) & (sliders[rook] | sliders[queen]),
              blockers);
  AddBlockers(board, BishopPath[square], BishopLines(square) & (sliders[bishop] | sliders[queen]),
              blockers);
  return blockers;
}

/// The squares from which a move of the side to move may leave its own king
/// attacked; a generated move from any other square is legal. They are the
/// king's own square and those of its blockers, which are pinned or the enemy's;
/// all squares in check and where a move can clear more than its own origin (en
/// passant, overlaps).
inline Bitboard KingAndPinned(Board& board, int side) {
  const Bitboard kings = board.pieces[PieceIndex(side, king)];
  const int square = KingSquare(board, side);
  if (HasEnPassant(board) || board.hasOverlaps || kings != Bit(square) || InCheck(board, side)) {
    return ~Bitboard{0};
  }
  return kings | Blockers(board, square, side ^ 1);
}

/// After a move: whether it was illegal because the king of the side that moved
/// is attacked.
inline bool MoverLeftInCheck(const Board& board) {
  const int mover = board.sideToMove ^ 1;
  return SquareAttacked(board, board.sideToMove, KingSquare(board, mover));
}

}  // namespace mirvo
