// The main search: principal-variation alpha-beta over one node and below.
#pragma once

#include <cstdint>

#include "board/board.h"
#include "board/move.h"
#include "search/search_state.h"
#include "search/search_stats.h"

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

/// Whether a move is of the kind that is extended by a ply: promotions and pawn
/// moves to the second or seventh rank.
bool IsExtendedKind(Move move);

/// Plies by which a move is extended: 1 for that kind while the path's limit
/// allows it, else 0. Counts every move of that kind in the statistics.
int CountExtension(SearchStats& stats, const SearchState& state, Move move);

/// Search or SearchRoot.
using NodeSearch = std::int32_t(SearchState& state, Board& board, const NodeInput& input,
                                PvLine* pv);

/// Internal iterative deepening: a node without a hash move is searched with
/// less depth (`shallow`), a second time with an open window if it fails low.
/// Returns the move that the table then has for it when probed with
/// `probeDepth`; noMove when there is none or the search was stopped.
Move FindMoveByDeepening(SearchState& state, Board& board, const NodeInput& shallow,
                         std::int32_t probeDepth, NodeSearch* search);

/// Replaces `pv` by `move` followed by `child`.
void WritePv(PvLine& pv, Move move, const PvLine& child);

/// A quiet move caused a cut-off: killer, history bonus, and history malus for
/// the quiet moves tried before it.
void RewardQuietCutoff(const SearchState& state, const Board& board, Move move, int depth,
                       const Move* tried, int nTried);

}  // namespace mirvo
