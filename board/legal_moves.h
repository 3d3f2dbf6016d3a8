// Legal moves: the generator's moves without those that leave the mover's king
// attacked. The functions make and unmake moves on the board to test them.
#pragma once

#include "board/bb_move_generator.h"
#include "board/board.h"
#include "board/move.h"

namespace mirvo {

/// Whether `move`, which the generator offers on the board, is legal.
bool IsLegal(Board& board, Move move);

/// Whether `move` (from, to, promotion) is a legal move of the side to move.
bool IsLegalMove(Board& board, Move move);

/// The first legal move in generator order (captures first), or noMove.
Move FirstLegalMove(Board& board);

/// Number of legal moves of the side to move.
int CountLegalMoves(Board& board);

/// Calls `visit(move)` for each legal move in generator order until it returns true.
/// `visit` must leave the board unchanged.
template <typename Visitor>
void ForEachLegalMove(Board& board, Visitor visit) {
  BBMoveGenerator2 generator(board, board.sideToMove);
  generator.GenerateAll();
  for (int i = 0; i < generator.count; ++i) {
    const Move move = generator.moves[i];
    if (IsLegal(board, move) && visit(move)) return;
  }
}

}  // namespace mirvo
