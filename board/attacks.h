// Attack queries on a board: is a square attacked, is a side in check.
#pragma once

#include "board/attack_tables.h"
#include "board/board.h"

namespace mirvo {

/// Whether `attacker` attacks `square` (0..63). Tests pawns, knights, king,
/// diagonal sliders and orthogonal sliders, in that order.
inline bool SquareAttacked(const Board& board, int attacker, int square) {
  const std::uint64_t* enemy = board.pieces + attacker * nKinds;
  return (PawnAttacks[attacker ^ 1][square] & enemy[pawn]) != 0 ||
         (KnightAttacks[square] & enemy[knight]) != 0 || (KingAttacks[square] & enemy[king]) != 0 ||
         (BishopAttacks(board, square) & (enemy[bishop] | enemy[queen])) != 0 ||
         (RookAttacks(board, square) & (enemy[rook] | enemy[queen])) != 0;
}

/// The same with the square given as rank and file.
inline bool SquareAttacked(const Board& board, int attacker, int rank, int file) {
  return SquareAttacked(board, attacker, SquareAt(rank, file));
}

/// Whether the king of `side` is attacked. For the side to move the answer is
/// kept in inCheckCache until the next move.
inline bool InCheck(Board& board, int side) {
  if (side != board.sideToMove) {
    return SquareAttacked(board, side ^ 1, KingSquare(board, side));
  }
  if (board.inCheckCache < 0) {
    board.inCheckCache = SquareAttacked(board, side ^ 1, KingSquare(board, side)) ? 1 : 0;
  }
  return board.inCheckCache != 0;
}

/// The squares from which a move of the side to move may leave its own king
/// attacked; a generated move from any other square is legal. They are the
/// king's own square and, on each line that holds an enemy slider of that kind,
/// the pieces next to the king; all squares in check and where a move can take
/// more off the board than its own origin (en passant, irregular boards).
inline Bitboard ExposedOrigins(Board& board, int side) {
  constexpr Bitboard all = ~Bitboard{0};
  const std::uint64_t* enemy = board.pieces + (side ^ 1) * nKinds;
  const Bitboard kings = board.pieces[PieceIndex(side, king)];
  const int square = KingSquare(board, side);
  if (HasEnPassant(board) || board.irregular != 0 || kings != Bit(square)) return all;
  const Bitboard onLines = RookLines(square) & (enemy[rook] | enemy[queen]);
  const Bitboard onDiagonals = BishopLines(square) & (enemy[bishop] | enemy[queen]);
  Bitboard exposed = kings;
  if (InCheck(board, side)) return all;
  if (onLines != 0) exposed |= RookAttacks(board, square);
  if (onDiagonals != 0) exposed |= BishopAttacks(board, square);
  return exposed;
}

/// After a move: whether the side that has just moved left its king attacked,
/// which makes the move illegal.
inline bool MoverLeftInCheck(const Board& board) {
  const int mover = board.sideToMove ^ 1;
  return SquareAttacked(board, board.sideToMove, KingSquare(board, mover));
}

}  // namespace mirvo
