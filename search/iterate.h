// The entry to thinking: book first, then iterative deepening.
#pragma once

#include "search/search_state.h"

namespace mirvo {

/// Searches record.gameBoard within the limits of the settings and flags and
/// returns the best move and the expected reply (also left in
/// searchFlags.ponderMove). Clears the stop flag, polls input through the hook
/// while it runs, prints the iteration reports and the hash report.
SearchResult Think(SearchRecord& record);

/// Prepares a record for a search of `gameBoard` on search slot 0 with the limits
/// of the settings, to be changed before Think. Reports are for the console in
/// runs without input polling.
SearchRecord PrepareSearch(Board& gameBoard);

}  // namespace mirvo
