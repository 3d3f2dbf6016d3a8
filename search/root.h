// The root search: one depth of iterative deepening.
#pragma once

#include <cstdint>

#include "search/search_state.h"

namespace mirvo {

/// Searches the root position and returns its score. `pv`, when given, receives the
/// line of every move that raises alpha and does not change if none does. A mate in
/// one scores mateScore, being mated -mateScore.
std::int32_t SearchRoot(SearchState& state, Board& board, const NodeInput& input, PvLine* pv);

}  // namespace mirvo
