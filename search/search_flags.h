// Flags between front ends and a running search. There is one thread: a front end
// sets them when the search's poll calls it, and the search reads them afterwards.
#pragma once

#include <cstdint>

#include "board/move.h"

namespace mirvo {

struct SearchFlags {
  std::uint8_t StopSearch = 0;      // end the running search at once
  std::uint8_t pondering = 0;       // searching on the opponent's time
  std::uint8_t NoInputPolling = 0;  // the search reads no input
  std::uint8_t searching = 0;       // inside Think; kept for debuggers, the engine never reads it
  std::uint8_t BookInUse = 0;       // the game has not left the book yet
  Move ponderMove = noMove;         // expected reply found by the last search
};

/// Owner: search_flags.cpp. Writers: start-up, front ends, Think, PonderHit, the
/// suite runner. Readers: search, reports, front ends.
extern SearchFlags searchFlags;

}  // namespace mirvo
