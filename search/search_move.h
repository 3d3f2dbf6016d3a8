// The searches that one move of a node or of the root gets: reduced depth, null
// window, full window.
#pragma once

#include <cstdint>

#include "board/board.h"
#include "board/move.h"
#include "search/hash_table.h"
#include "search/interruption.h"
#include "search/search.h"
#include "search/search_state.h"

namespace mirvo {

/// A legal move about to be searched.
struct Candidate {
  Move move;
  std::int32_t orderScore;
  int extension;  // plies
  bool isCapture;
  bool givesCheck;
};

/// Whether a late move may be searched at reduced depth: it is not extended,
/// gives no check, and is no capture that at least keeps the balance.
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

/// Score of the move just made, in the view of the side that made it. A later
/// move has to beat alpha in a null window before it gets the full one, and a
/// reduced one at the smaller depth before that. `pv`, when given, takes the
/// child's line when the full window is searched. Always inlined: calling it
/// costs 0.9 % of a search's instructions.
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

}  // namespace mirvo
