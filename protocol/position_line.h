// The line that XBoard play prints after every move on the game board. The interface
// ignores it; in the log it gives a list of positions.
#pragma once

#include <cstddef>

#include "board/board.h"

namespace mirvo {

/// Room for any position line, even with twelve letters on every square.
inline constexpr std::size_t positionLineCapacity = 1024;

/// Writes placement, side to move, castling rights, "-" and a newline into
/// `text` (positionLineCapacity bytes).
void FormatPositionLine(const Board& board, char* text);

void PrintPositionLine(const Board& board);

}  // namespace mirvo
