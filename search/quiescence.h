// The quiescence search: resolves captures, and checks by all evasions, so
// that the main search never scores the middle of an exchange.
#pragma once

#include <cstdint>

#include "search/search_state.h"

namespace mirvo {

/// Score of the position in the side to move's view. `qply` counts plies below
/// the horizon; being mated scores qply - mateScore.
std::int32_t Quiesce(SearchState& state, Board& board, std::int32_t alpha, std::int32_t beta,
                     std::int32_t qply);

}  // namespace mirvo
