#include "board/legal_moves.h"

#include "board/attacks.h"
#include "board/make_move.h"

namespace mirvo {

bool IsLegal(Board& board, Move move) {
  MakeMove(board, move);
  const bool legal = !MoverLeftInCheck(board);
  UnmakeMove(board);
  return legal;
}

bool IsLegalMove(Board& board, Move move) {
  constexpr Move compared = sameMoveMask | promotionFlag | (Move{7} << movePromotionShift);
  bool found = false;
  ForEachLegalMove(board, [&found, move](Move legal) {
    found = ((legal ^ move) & compared) == 0;
    return found;
  });
  return found;
}

Move FirstLegalMove(Board& board) {
  Move first = noMove;
  ForEachLegalMove(board, [&first](Move legal) {
    first = legal;
    return true;
  });
  return first;
}

int CountLegalMoves(Board& board) {
  int count = 0;
  ForEachLegalMove(board, [&count](Move) {
    ++count;
    return false;
  });
  return count;
}

}  // namespace mirvo
