// The key of the position after a move, foretold for prefetching: the table
// slots of the new position are on their way while the move is being made.
#pragma once

#include <cstdint>

#include "board/board.h"
#include "board/keys.h"
#include "board/move.h"

namespace mirvo {

/// Key after `move`, exact for moves that neither castle, promote, take en
/// passant nor change castling rights or the en-passant square; for those it
/// names another slot, and nothing is lost but a prefetch. A capture carries
/// its victim's kind in the move word.
inline std::uint64_t NextKey(const Board& board, Move move) {
  const int side = board.sideToMove;
  const int kind = MovingKind(move);
  const int to = ToSquare(move);
  std::uint64_t key = board.positionKey ^ SideKey() ^ PieceKey(side, kind, FromSquare(move)) ^
                      PieceKey(side, kind, to);
  if (IsCapture(move)) key ^= PieceKey(side ^ 1, CapturedKind(move), to);
  return key;
}

}  // namespace mirvo
