// The position key after a move, computed before the move is made, so that the table
// slots of the new position can be prefetched.
#pragma once

#include <cstdint>

#include "board/board.h"
#include "board/keys.h"
#include "board/move.h"

namespace mirvo {

/// Key after `move`. Wrong for moves that castle, promote, capture en passant or change
/// castling rights or the en-passant square, for which the prefetch is useless but
/// harmless. A capture must have its victim's kind in the move word.
inline std::uint64_t KeyAfter(const Board& board, Move move) {
  const int side = board.sideToMove;
  const int kind = MovingKind(move);
  const int to = ToSquare(move);
  std::uint64_t key = board.positionKey ^ SideKey() ^ PieceKey(side, kind, FromSquare(move)) ^
                      PieceKey(side, kind, to);
  if (IsCapture(move)) key ^= PieceKey(side ^ 1, CapturedKind(move), to);
  return key;
}

}  // namespace mirvo
