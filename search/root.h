// The root search: one depth of iterative deepening.
#pragma once

#include <cstdint>

#include "search/search_state.h"

namespace mirvo {

/// Searches the root position and returns its score. `pv`, when given, takes
/// the line of every move that raises alpha; it keeps what it held when none
/// does. A mate in one scores mateScore, being mated -mateScore.
std::int32_t SearchRoot(SearchState& state, Board& board, const NodeInput& input, PvLine* pv);

/// Number of legal moves of the side to move.
int CountLegalMoves(Board& board);

/// Whether `move` (its piece, from, to, promotion) is legal on the board.
bool IsLegalMove(Board& board, Move move);

/// The first legal move in generator order (captures first), or noMove.
Move FirstLegalMove(Board& board);

}  // namespace mirvo
