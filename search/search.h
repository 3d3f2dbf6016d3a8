// The main search, a principal-variation search, and what it shares with the root
// search.
#pragma once

#include <cstdint>

#include "board/board.h"
#include "board/move.h"
#include "search/hash/hash_table.h"
#include "search/interruption.h"
#include "search/search_state.h"
#include "search/search_stats.h"

namespace mirvo {

/// Score of the position for the side to move. Being mated scores the node's remaining
/// depth - mateScore. `pv`, when given, must be empty and receives the node's line; it
/// stays empty when the node returns without one.
std::int32_t Search(SearchState& state, Board& board, const NodeInput& input, PvLine* pv);

/// Score of the move just made, for the side that made it: searches the position with
/// the negated, swapped window (alpha, beta). `childPv`, when given, is emptied first
/// and receives the child's line.
std::int32_t SearchChild(SearchState& state, Board& board, std::int32_t alpha, std::int32_t beta,
                         std::int32_t depth, bool afterCapture, PvLine* childPv);

/// Smallest depth of a node at which late moves are reduced.
inline constexpr std::int32_t minReducedDepth = 3;

/// A legal move about to be searched.
struct Candidate {
  Move move;
  std::int32_t orderScore;
  int extension;  // plies
  bool isCapture;
  bool givesCheck;
};

/// Whether a late move may be searched at reduced depth: it is not extended, gives no
/// check, and is not a capture without loss of material.
inline bool MayReduce(const Candidate& candidate) {
  const bool goodCapture = candidate.isCapture && candidate.orderScore >= 0;
  return candidate.extension == 0 && !goodCapture && !candidate.givesCheck;
}

/// How a move is to be searched once it is made. The window is the node's.
struct MoveSearch {
  std::int32_t alpha;
  std::int32_t beta;
  std::int32_t depth;          // of the child
  std::int32_t reduction = 0;  // plies off that depth in a first attempt; 0 for none
  bool isFirst = false;        // the first move searched gets the full window at once
  bool isPv = false;           // a later move that beats alpha gets the full window
  bool isCapture = false;
};

/// Score of the move just made, for the side that made it. A later move must beat alpha
/// in a null window before it is searched with the full one, and a reduced move first at
/// the smaller depth. `pv`, when given, receives the child's line when the full window
/// is searched. Always inlined: a call costs 0.9 % of a search's instructions.
[[gnu::always_inline]] inline std::int32_t SearchMove(SearchState& state, Board& board,
                                                      const MoveSearch& search, PvLine* pv) {
  const std::int32_t alpha = search.alpha;
  const bool isCapture = search.isCapture;
  if (search.isFirst) {
    return SearchChild(state, board, alpha, search.beta, search.depth, isCapture, pv);
  }
  if (search.reduction > 0) {
    const std::int32_t reduced = search.depth - search.reduction;
    if (reduced <= 0) HashPrefetch(EvalHashTable, board.positionKey);
    const std::int32_t score =
        SearchChild(state, board, alpha, alpha + 1, reduced, isCapture, nullptr);
    const bool failedHigh = score > alpha;
    if (!failedHigh || Stopped(state)) return score;
  }
  const std::int32_t score =
      SearchChild(state, board, alpha, alpha + 1, search.depth, isCapture, nullptr);
  const bool failedHigh = score > alpha;
  if (!search.isPv || !failedHigh || Stopped(state)) return score;
  return SearchChild(state, board, alpha, search.beta, search.depth, isCapture, pv);
}

/// Whether a move is of the kind that is extended by a ply: promotions and pawn
/// moves to the second or seventh rank.
bool IsExtendedKind(Move move);

/// Plies by which a move is extended: 1 for that kind while the limit of the path allows
/// it, else 0. Counts every move of that kind in the statistics.
int CountExtension(SearchStats& stats, const SearchState& state, Move move);

/// Search or SearchRoot.
using NodeSearch = std::int32_t(SearchState& state, Board& board, const NodeInput& input,
                                PvLine* pv);

/// Internal iterative deepening: searches a node without a hash move at smaller depth
/// (`shallow`), a second time with an open window if it fails low. Returns the move that
/// a probe of the table with `probeDepth` then gives; noMove if there is none or the
/// search was stopped.
Move FindMoveByDeepening(SearchState& state, Board& board, const NodeInput& shallow,
                         std::int32_t probeDepth, NodeSearch* search);

/// Replaces `pv` by `move` followed by `child`.
void WritePv(PvLine& pv, Move move, const PvLine& child);

/// Updates move ordering after a cut-off by a quiet move: killer, history bonus, and
/// history malus for the quiet moves tried before it.
void RewardQuietCutoff(const SearchState& state, const Board& board, Move move, int depth,
                       const Move* tried, int nTried);

}  // namespace mirvo
