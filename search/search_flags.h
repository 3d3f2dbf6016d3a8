// Flags by which front ends and search talk while a search runs: one thread,
// so a front end called from the search's poll sets them and the search reads
// them after the call.
#pragma once

#include <cstdint>

#include "board/move.h"

namespace mirvo {

struct SearchFlags {
  std::uint8_t StopSearch = 0;      // end the running search at once
  std::uint8_t pondering = 0;       // searching on the opponent's time
  std::uint8_t NoInputPolling = 0;  // test-suite runs read no input
  std::uint8_t searching = 0;       // inside Think
  std::uint8_t BookInUse = 0;       // the game has not left the book yet
  Move ponderMove = noMove;         // expected reply left by the last search
};

/// Owner: search_flags.cpp. Writers: front ends, Think, PonderHit, EPD runner.
extern SearchFlags searchFlags;

}  // namespace mirvo
