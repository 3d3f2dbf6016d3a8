// The position key after a move, computed before the move is made, so that the
// new position's table slots can be prefetched meanwhile.
#pragma once

#include <cstdint>

#include "board/board.h"
#include "board/keys.h"
#include "board/move.h"

namespace mirvo {

/// Key after `move`. Exact unless the move castles, promotes, captures en
/// passant or changes castling rights or the en-passant square: then it is some
/// other key, good only for a useless prefetch. A capture must have its victim's
/// kind in the move word.
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
