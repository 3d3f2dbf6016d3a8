// Commands that arrive during a search and need the board: they wait, in order,
// until the search has ended. When the queue is full, input is not read.
#pragma once

#include <cstddef>
#include <deque>
#include <string>

namespace mirvo {

/// When a line is handled that arrives during a search.
enum class LineTiming { atOnce, afterSearch };

inline constexpr std::size_t maxDeferredCommands = 4096;

struct DeferredCommands {
  std::deque<std::string> lines;  // oldest first
  /// How many of them, from the oldest on, are already classified for the running
  /// search; the others were left by an earlier one.
  std::size_t nClassified = 0;
  bool hasGo = false;      // a classified line is a "go" of the UCI front end
  bool hasSwitch = false;  // a classified line changes the protocol
};

}  // namespace mirvo
