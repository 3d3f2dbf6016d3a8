// The main search: principal-variation alpha-beta over one node and below.
#pragma once

#include <cstdint>

#include "board/board.h"
#include "board/move.h"
#include "search/search_state.h"

namespace mirvo {

/// Score of the position in the side to move's view. A mate scores the node's
/// remaining depth - mateScore. `pv`, when given, must be empty and takes the
/// node's line; it stays empty when the node returns early.
std::int32_t Search(SearchState& state, Board& board, const NodeInput& input, PvLine* pv);

/// Score of the move just made, in the view of the side that made it: searches
/// the position with the negated, swapped window (alpha, beta). `childPv`, when
/// given, is emptied first and takes the child's line.
std::int32_t SearchChild(SearchState& state, Board& board, std::int32_t alpha, std::int32_t beta,
                         std::int32_t depth, bool afterCapture, PvLine* childPv);

/// Whether a move deserves one ply more by its kind: promotions and pawn moves
/// to the second or seventh rank. Counts it in the statistics.
bool WantsExtension(Move move);

/// The extension (0 or 1) that the path's limit leaves for a wanting move.
int AllowedExtension(const SearchState& state, bool wanted);

/// Replaces `pv` by `move` followed by `child`.
void WritePv(PvLine& pv, Move move, const PvLine& child);

/// A quiet move made the cut: killer, history bonus, malus for those before.
void RewardQuietCutoff(const SearchState& state, const Board& board, Move move, int depth,
                       const Move* tried, int nTried);

}  // namespace mirvo
