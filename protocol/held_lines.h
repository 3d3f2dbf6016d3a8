// Lines that arrived during a search and need the board: they wait, in order,
// until the search has ended. Bounded: what passes the end is not even read.
#pragma once

#include <cstddef>
#include <deque>
#include <string>

namespace mirvo {

inline constexpr std::size_t maxHeldLines = 4096;

struct HeldLines {
  std::deque<std::string> lines;  // oldest first
  /// Lines from the oldest on that the running search has been asked about
  /// already; the others were left behind by an earlier search.
  std::size_t nJudged = 0;
  bool hasGo = false;      // a judged line is a "go" of the UCI front end
  bool hasSwitch = false;  // a judged line changes the protocol
};

}  // namespace mirvo
