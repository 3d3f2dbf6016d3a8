// The one game board that both protocol front ends play on.
#pragma once

#include "board/board.h"

namespace mirvo {

/// The game as the interface knows it. Owner: game_board.cpp. Writers: the
/// front ends. At the initial position before the first command.
extern Board gameBoard;

}  // namespace mirvo
