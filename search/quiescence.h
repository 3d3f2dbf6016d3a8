// The quiescence search: searches captures and, in check, all evasions, so that the
// main search never scores a position in the middle of an exchange.
#pragma once

#include <cstdint>

#include "search/search_state.h"

namespace mirvo {

/// Score of the position for the side to move. `qply` counts plies below the horizon;
/// being mated scores qply - mateScore.
std::int32_t Quiesce(SearchState& state, Board& board, std::int32_t alpha, std::int32_t beta,
                     std::int32_t qply);

}  // namespace mirvo
