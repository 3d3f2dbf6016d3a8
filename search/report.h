// What a running search prints: a line per iteration, in the form of the protocol
// or for the console, and at times the root move being searched.
#pragma once

#include <cstdint>

#include "board/board.h"
#include "search/search_state.h"

namespace mirvo {

/// Console line if the record asks for that style; else the line of the protocol
/// in use, UCI's if there is none.
/// `score` is in centipawns, in the view of the side to move at the root.
void ReportIteration(const SearchRecord& record, const PvLine& pv, std::int32_t score);

/// Prints the line's moves, each followed by a blank; while pondering the expected
/// reply comes first in parentheses. Kept as a printer of lines for debugging;
/// the reports put their lines together whole.
void PrintPV(const PvLine& pv, bool san);

/// Prints the root move about to be searched, at most once a second: under UCI
/// and in console style only. `number` counts from 0; the board is the root
/// position.
void ReportRootMove(ReportStyle style, Board& board, Move move, int number);

}  // namespace mirvo
