#include "search/interruption.h"

#include "search/search_hooks.h"
#include "search/time_control.h"
#include "shell/config.h"

namespace mirvo {
namespace {

constexpr std::uint32_t clockInterval = 1024;  // node entries between clock readings
constexpr std::uint32_t inputInterval = 8192;  // counted moves between input polls

// The quiescence search may step over an exact multiple, so the next one is
// remembered and counts as due once it is reached or passed.
void Poll(SearchState& state) {
  state.nextInputPoll = (state.nodeCount / inputInterval + 1) * inputInterval;
  if (searchFlags.NoInputPolling == 0 && searchHooks.pollInput != nullptr) searchHooks.pollInput();
}

bool ReadClock(SearchState& state) {
  if (TimeIsUp(engineConfig)) state.stopFlag = 1;
  return state.stopFlag != 0;
}

}  // namespace

bool OutOfTime(SearchState& state) {
  if (engineConfig.InfiniteThinkingTime != 0) return false;
  if (state.stopFlag != 0) return true;
  if (state.clockPolls > clockInterval) {
    state.clockPolls = 0;
    if (ReadClock(state)) return true;
  }
  ++state.clockPolls;
  return false;
}

void PollWhenDue(SearchState& state) {
  if (state.nodeCount >= state.nextInputPoll) Poll(state);
}

void PollOverdue(SearchState& state) {
  Poll(state);
  if (engineConfig.InfiniteThinkingTime == 0) ReadClock(state);
  if (Stopped(state)) state.abandonQuiescence = 1;
}

}  // namespace mirvo
