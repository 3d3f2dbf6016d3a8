// Tests a move before it is searched, and makes a move that has been tested.
#pragma once

#include "board/attacks.h"
#include "board/make_move.h"
#include "search/check_info.h"

namespace mirvo {

struct MoveStatus {
  bool legal = false;
  bool givesCheck = false;  // of a legal move
};

/// Whether a generated `move` is legal and gives check. Makes and unmakes it only if
/// `checkInfo` does not know.
inline MoveStatus TryMove(Board& board, const CheckInfo& checkInfo, Move move) {
  const Legality legality = checkInfo.LegalityOf(move);
  if (legality != Legality::unknown) {
    return {legality == Legality::legal, checkInfo.GivesCheck(move)};
  }
  MakeMove(board, move);
  MoveStatus status;
  status.legal = !MoverLeftInCheck(board);
  if (status.legal) status.givesCheck = InCheck(board, board.sideToMove);
  UnmakeMove(board);
  return status;
}

/// Makes a legal move and stores on the board whether it gives check.
inline void MakeTriedMove(Board& board, Move move, bool givesCheck) {
  MakeMove(board, move);
  board.inCheckCache = givesCheck ? 1 : 0;
}

}  // namespace mirvo
