// Probing the book for a move, and the book's statistics.
#pragma once

#include "board/board.h"
#include "board/move.h"
#include "book/opening_book.h"

namespace mirvo {

/// Chooses a legal book move at random by weight and prints the list of the
/// position's moves. False if there is none. The board is unchanged afterwards.
bool ProbeBook(OpeningBook& book, Board& board, Move& move);

/// Prints the summary of "-bookstats".
void PrintBookStats(const OpeningBook& book);

}  // namespace mirvo
