// Moves of an XBoard game: the opponent's, the engine's answer, and the start
// of pondering.
#pragma once

#include "board/board.h"
#include "board/move.h"
#include "protocol/xboard_game.h"

namespace mirvo {

/// Handles a line that begins with a coordinate move: makes it without a legality test
/// or, while pondering, decides between hit and miss.
void HandleXBoardMove(XBoardGame& game, const char* line);

/// "go": the engine plays the side to move from now on.
void StartPlaying(XBoardGame& game);

/// The full move word of a coordinate text for the side to move: kind, capture flag and
/// captured kind (also en passant), promotion, so that the move can be unmade. noMove
/// if the origin square has no piece of that side.
Move CompleteTextMove(const char* text, const Board& board);

}  // namespace mirvo
