// What the engine asks of the book: a move for a position, and its summary.
#pragma once

#include "board/board.h"
#include "board/move.h"
#include "book/opening_book.h"

namespace mirvo {

/// Picks a legal book move for the position by weight at random and prints the
/// entry's list. False when the book has none. The board is unchanged after.
bool ProbeBook(OpeningBook& book, Board& board, Move& move);

/// The "-bookstats" summary.
void PrintBookStats(const OpeningBook& book);

}  // namespace mirvo
