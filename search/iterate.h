// The entry point of a search: book first, then iterative deepening.
#pragma once

#include "search/search_state.h"

namespace mirvo {

/// Searches record.gameBoard within the record's limits, which a front end may change
/// at a poll. Returns the best move and the expected reply (also stored in
/// searchFlags.ponderMove). The caller clears searchFlags.StopSearch before. Polls
/// input through the hook, prints the iteration reports and the hash report, and
/// doubles the allotted time of the first search after the book.
SearchResult Think(SearchRecord& record);

/// Prepares a record for a search of `gameBoard` on search slot 0, with the limits of
/// the settings, which the caller may change before Think.
SearchRecord PrepareSearch(Board& gameBoard);

}  // namespace mirvo
