// How a running search is interrupted: clock, input, and unwinding.
#pragma once

#include <cstdint>

#include "search/search_flags.h"
#include "search/search_state.h"

namespace mirvo {

/// Moves that the quiescence search may count beyond a due input poll before it polls
/// itself. That never happens in games, only on boards full of queens.
inline constexpr std::uint32_t quiescencePollDelay = 2048;

/// Whether the search must unwind. Scores returned from then on may not change a line,
/// a table or a best move.
inline bool Stopped(const SearchState& state) { return state.stopCause != StopCause::none; }

/// Checks whether a front end asked the search to stop; stores that as the cause if
/// there is none yet. Called after every poll, the only place where front ends run.
inline bool CheckStopCommand(SearchState& state) {
  if (!searchFlags.StopSearch) return false;
  if (!Stopped(state)) state.stopCause = StopCause::command;
  return true;
}

/// Lets the front ends handle waiting input, unless there is no hook or polling is
/// switched off; then checks for a stop.
void PollForInput(SearchState& state);

/// Called at each node entry of the main search: reads the clock once in 1024 entries,
/// unless the search has no time limit. True when the search is stopped.
bool CheckClock(SearchState& state);

/// Called at each node entry of the main search: polls the input once in 8192 counted
/// moves.
void PollWhenDue(SearchState& state);

/// Checks clock and input from within an endless exchange; if either stops the search,
/// the quiescence search unwinds at once as well.
void PollOverdue(SearchState& state);

/// Whether it is time for PollOverdue.
inline bool IsPollOverdue(const SearchState& state) {
  return state.nodeCount >= state.nextInputPoll + quiescencePollDelay;
}

}  // namespace mirvo
