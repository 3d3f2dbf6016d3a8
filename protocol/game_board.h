// The game board of both protocol front ends.
#pragma once

#include "board/board.h"

namespace mirvo {

/// The game as the interface knows it, at the initial position before the first
/// command. Owner: game_board.cpp. Writers: the front ends.
extern Board gameBoard;

/// Prints the wide diagram of the game board followed by an empty line, unless the
/// settings ask for quiet.
void PrintGameBoard();

}  // namespace mirvo
