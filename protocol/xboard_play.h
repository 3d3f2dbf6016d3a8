// Moves of an XBoard game: the opponent's, the engine's answer, and the start
// of pondering.
#pragma once

#include "board/board.h"
#include "board/move.h"
#include "protocol/xboard_game.h"

namespace mirvo {

/// A line that begins with a coordinate move. Made without a legality test;
/// while pondering it decides between hit and miss.
void HandleXBoardMove(XBoardGame& game, const char* line);

/// "go": the engine plays the side to move from here on.
void StartPlaying(XBoardGame& game);

/// The full move word of a coordinate text for the side to move: kind, capture
/// flag and captured kind (en passant too), promotion, so that the move can be
/// taken back. noMove when the from-square holds no piece of that side.
Move CompleteTextMove(const char* text, const Board& board);

}  // namespace mirvo
