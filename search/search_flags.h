// Flags between front ends and a running search. There is one thread: front ends set
// them when the search polls the input, and the search reads them afterwards.
#pragma once

#include "board/move.h"

namespace mirvo {

struct SearchFlags {
  bool StopSearch = false;      // end the running search at once
  bool pondering = false;       // searching on the opponent's time
  bool NoInputPolling = false;  // the search reads no input
  bool searching = false;       // inside Think: commands answer without delay
  bool BookInUse = false;       // the game has not left the book yet
  Move ponderMove = noMove;     // expected reply found by the last search
};

/// Owner: search_flags.cpp. Writers: start-up, front ends, Think, PonderHit, the
/// suite runner. Readers: search, reports, front ends.
extern SearchFlags searchFlags;

}  // namespace mirvo
