// Helpers for tests of the search: tables built once, cold caches, searches of a
// position with the lines that they print.
#pragma once

#include <string>
#include <vector>

#include "board/board.h"
#include "search/search_state.h"

namespace mirvo::test {

/// Builds every start-up table and allocates the three hash tables once.
void PrepareEngine();

/// Clears tables, killers, history, previous line, statistics and flags, as in a
/// fresh process.
void ColdStart();

/// Sets the sizes that the next ColdStart gives all three tables, in megabytes.
void SetTableSizes(std::int32_t megabytes);

/// The same with the sizes of the default settings.
void SetDefaultTableSizes();

/// Sets `board` up from "startpos [moves ...]" or the first three FEN fields.
void SetPosition(Board& board, const std::string& text);

/// One search to `depth` without clock, book or input; returns what it printed
/// under UCI, line by line, without progress lines and times.
std::vector<std::string> SearchToDepth(Board& board, int depth, SearchResult& result);

/// The lines of the statistics report.
std::vector<std::string> StatisticsLines();

/// Lines of a text; the last one may lack its line end.
std::vector<std::string> SplitLines(const std::string& text);

/// All lines of a reference file under tests/data/reference.
std::vector<std::string> ReferenceLines(const std::string& name);

/// Coordinate text of a move, "0000" for none.
std::string MoveText(Move move);

}  // namespace mirvo::test
