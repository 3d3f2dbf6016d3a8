// The output of a running search: a line per iteration, for the protocol or for the
// console, and at intervals the root move being searched.
#pragma once

#include <cstdint>

#include "board/board.h"
#include "search/search_state.h"

namespace mirvo {

/// Prints the console line if the record asks for that style; else the line of the
/// protocol in use, or UCI's if there is none. `score` is in centipawns for the side
/// to move at the root.
void ReportIteration(const SearchRecord& record, const PvLine& pv, std::int32_t score);

/// Prints the line's moves, each followed by a blank; while pondering first the expected
/// reply in parentheses. Kept for debugging; the reports build whole lines themselves.
void PrintPV(const PvLine& pv, bool san);

/// Prints the root move about to be searched, at most once a second: under UCI
/// and in console style only. `number` counts from 0; the board is the root
/// position.
void ReportRootMove(ReportStyle style, Board& board, Move move, int number);

}  // namespace mirvo
