// The line printed after each iteration, in the form that suits whoever
// drives the engine.
#pragma once

#include <cstdint>

#include "search/search_state.h"

namespace mirvo {

/// What an iteration is reported with.
struct IterationReport {
  int depth;
  std::int32_t score;  // centipawns, side to move's view
};

/// UCI, XBoard or console line, by protocol mode and the no-polling flag.
void ReportIteration(const SearchRecord& record, const PvLine& pv, const IterationReport& report);

/// Prints the line's moves, each followed by a blank; the expected reply in
/// parentheses first while pondering.
void PrintPV(const PvLine& pv, bool san);

}  // namespace mirvo
