// How a running search is interrupted: the clock, the input, and the unwinding
// that follows.
#pragma once

#include <cstdint>

#include "search/search_flags.h"
#include "search/search_state.h"

namespace mirvo {

/// Moves that the quiescence search may count beyond a due input poll before
/// it polls itself. Games never come to that; boards full of queens do.
inline constexpr std::uint32_t quiescencePatience = 2048;

/// Whether the search must unwind. Nothing returned from then on may change a
/// line, a table or a best move.
inline bool Stopped(const SearchState& state) { return state.stopCause != StopCause::none; }

/// Whether a front end asked the search to stop, which is then noted as the cause
/// if there was none. Called after every poll: front ends run in no other place.
inline bool StopCommanded(SearchState& state) {
  if (!searchFlags.StopSearch) return false;
  if (!Stopped(state)) state.stopCause = StopCause::command;
  return true;
}

/// Lets the front ends handle waiting input, where there are any and polling is
/// not switched off, and takes over a stop.
void PollForInput(SearchState& state);

/// For each node entry of the main search: looks at the clock once in 1024
/// entries, unless the search has no time limit. True when the search is stopped.
bool OutOfTime(SearchState& state);

/// For each node entry of the main search: lets the front ends handle waiting
/// input once in 8192 counted moves.
void PollWhenDue(SearchState& state);

/// Looks at clock and input from within an endless exchange; if either says stop,
/// the quiescence search is abandoned as well.
void PollOverdue(SearchState& state);

/// Whether it is time for PollOverdue.
inline bool IsPollOverdue(const SearchState& state) {
  return state.nodeCount >= state.nextInputPoll + quiescencePatience;
}

}  // namespace mirvo
