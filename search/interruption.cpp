#include "search/interruption.h"

#include <algorithm>

#include "search/hash/hash_memory.h"
#include "search/search_hooks.h"
#include "search/time_control.h"

namespace mirvo {
namespace {

constexpr std::uint32_t clockInterval = 1024;  // node entries between clock readings
constexpr std::uint32_t inputInterval = 8192;  // counted moves between input polls

// While table memory is not prefaulted, page faults may make a node ten times as slow
// or slower; then clock and input are checked after so many counted moves.
constexpr std::uint32_t fewMoves = 128;

// At each such check one slice of memory is prefaulted for every so many milliseconds
// left, up to maxSlices. A slice takes a third of a millisecond, or ten and more on a
// virtual machine that gets memory from its host.
constexpr std::int64_t timePerSlice = 25;  // ms
constexpr int maxSlices = 4;

// The quiescence search may step over an exact multiple of the interval, so a poll is
// due once the next multiple is reached or passed.
void Poll(SearchState& state) {
  state.nextInputPoll = (state.nodeCount / inputInterval + 1) * inputInterval;
  PollForInput(state);
}

bool ReadClock(SearchState& state) {
  if (TimeIsUp(*state.limits) && !Stopped(state)) state.stopCause = StopCause::time;
  return Stopped(state);
}

int SlicesInTime(const SearchLimits& limits) {
  if (limits.infinite) return maxSlices;
  return static_cast<int>(std::clamp<std::int64_t>(TimeLeft(limits) / timePerSlice, 0, maxSlices));
}

void LookWhileMemoryIsMissing(SearchState& state) {
  const std::uint32_t nMoves = state.nodeCount - state.movesAtLook;
  if (nMoves < fewMoves) return;
  state.movesAtLook = state.nodeCount;
  HashNoteUse(nMoves);
  Poll(state);
  if (!state.limits->infinite) ReadClock(state);
  if (Stopped(state)) return;
  for (int i = SlicesInTime(*state.limits); i > 0 && HashPrefaultSlice(); --i) {
  }
}

}  // namespace

void PollForInput(SearchState& state) {
  if (!searchFlags.NoInputPolling && searchHooks.pollInput != nullptr) searchHooks.pollInput();
  CheckStopCommand(state);
}

bool CheckClock(SearchState& state) {
  if (HashMemoryMissing()) [[unlikely]] {
    LookWhileMemoryIsMissing(state);
  }
  if (state.limits->infinite) return false;
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
  if (!state.limits->infinite) ReadClock(state);
  if (Stopped(state)) state.stopCause = StopCause::abandonedExchange;
}

}  // namespace mirvo
