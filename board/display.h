// Printing a board as a text diagram, and its placement as FEN text.
#pragma once

#include "board/board.h"

namespace mirvo {

enum class BoardLayout { wide, compact };

/// Room for the text of either diagram, even with twelve letters on a square.
inline constexpr int diagramCapacity = 64 * 2 * 12 + 512;

/// Writes the diagram into `text` (diagramCapacity bytes).
void FormatBoard(const Board& board, BoardLayout layout, char* text);

/// Prints the diagram followed by an empty line, or nothing when `quiet`.
void PrintBoard(const Board& board, BoardLayout layout, bool quiet);

}  // namespace mirvo
