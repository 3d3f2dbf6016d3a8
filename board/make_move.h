// Making moves on a board and unmaking them.
#pragma once

#include <cassert>

#include "board/board.h"
#include "board/move.h"

namespace mirvo {

/// Plays `move` for the side to move and pushes an undo record. Legality (own
/// king left attacked) is the caller's test. A capture that will be unmade
/// must carry the capture flag and its moving kind; generated moves do. A move
/// from text may be illegal: it is made as it stands and every derived field
/// of the board stays consistent, but it cannot be unmade.
void MakeMove(Board& board, Move move);

/// Unmakes the newest move. The board must hold at least one undo record.
inline void UnmakeMove(Board& board) {
  assert(board.undoDepth > 0);
  const UndoRecord& undo = board.undoStack[--board.undoDepth];
  undo.unmake(board, undo);
}

/// The general way, which every move can go: all rules of making and unmaking a
/// move. MakeMove does the same to the board and takes faster ways for moves
/// that allow it (make_move_fast.h). The undo record holds `unmake` and `fromTo`
/// for the way the move was made; UnmakeAnyMove does not need them.
void MakeAnyMove(Board& board, Move move);

/// Unmakes the move in `undo`; the caller has already popped the record.
void UnmakeAnyMove(Board& board, const UndoRecord& undo);

/// Whether an en-passant capture is possible now: the square is empty, the pawn
/// to capture stands behind it, and that pawn has just made its double step (or
/// nothing was played since set-up).
bool EnPassantAvailable(const Board& board);

/// Passes the turn without a move, for the null-move search. The newest undo
/// record stays what it was.
void MakeNullMove(Board& board);
void UnmakeNullMove(Board& board);

/// Gives the turn to the other side, without a move: for null moves, and for a
/// text move that moves nothing. Keeps the key true and drops the check cache.
void PassTurn(Board& board);

/// Passes the turn in a game, for a text that names no move: as after any move
/// but a double step, nothing can be taken en passant then.
void PassTurnInGame(Board& board);

/// Whether the first move of a game from a set-up position takes en passant.
/// Set-up reads no en-passant square, so the move itself has to tell: a pawn
/// goes from its fifth rank diagonally to an empty square and an enemy pawn
/// stands beside it on the target's file.
bool TakesEnPassantAfterSetUp(const Board& board, Move move);

/// MakeMove for a move that arrived as text, with that capture.
void MakeTextMove(Board& board, Move move);

}  // namespace mirvo
