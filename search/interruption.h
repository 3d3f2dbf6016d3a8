// How a running search is interrupted: the clock, the input, and the unwinding
// that follows.
#pragma once

#include <cstdint>

#include "search/search_flags.h"
#include "search/search_state.h"

namespace mirvo {

/// Moves that the quiescence search may count beyond a due input poll before
/// it polls itself. Games never get there; boards full of queens do.
inline constexpr std::uint32_t quiescencePatience = 2048;

/// The search must unwind: its time is up or a front end asked it to stop.
/// Nothing returned from then on may change a line, a table or a best move.
inline bool Stopped(const SearchState& state) {
  return state.stopFlag != 0 || searchFlags.StopSearch != 0;
}

/// For each node entry of the main search: looks at the clock once in 1024
/// entries. True, with the stop flag set, when the time is up.
bool OutOfTime(SearchState& state);

/// For each node entry of the main search: lets the front ends handle waiting
/// input once in 8192 counted moves.
void PollWhenDue(SearchState& state);

/// Looks at clock and input from within an endless exchange and notes in the
/// state that the quiescence search is to be abandoned when either says stop.
void PollOverdue(SearchState& state);

/// Whether PollOverdue is called for.
inline bool IsPollOverdue(const SearchState& state) {
  return state.nodeCount >= state.nextInputPoll + quiescencePatience;
}

}  // namespace mirvo
