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
  PollForInput(state);
}

bool ReadClock(SearchState& state) {
  if (TimeIsUp(engineConfig) && !Stopped(state)) state.stopCause = StopCause::time;
  return Stopped(state);
}

}  // namespace

void PollForInput(SearchState& state) {
  if (searchFlags.NoInputPolling == 0 && searchHooks.pollInput != nullptr) searchHooks.pollInput();
  StopCommanded(state);
}

bool OutOfTime(SearchState& state) {
  if (engineConfig.InfiniteThinkingTime != 0) return false;
  if (Stopped(state)) return true;
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
  if (Stopped(state)) state.stopCause = StopCause::abandonedExchange;
}

}  // namespace mirvo
