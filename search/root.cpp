#include "search/root.h"

#include "board/attacks.h"
#include "board/key_history.h"
#include "board/legal_moves.h"
#include "board/make_move.h"
#include "search/hash/hash_table.h"
#include "search/interruption.h"
#include "search/move_picker.h"
#include "search/quiescence.h"
#include "search/reductions.h"
#include "search/report.h"
#include "search/search.h"
#include "search/search_stats.h"
#include "shell/config/config.h"

namespace mirvo {
namespace {

constexpr int firstReducedMove = 6;  // counts every move of the picker, from 0

std::int32_t ExtensionLimit(std::int32_t depth) {
  const float limit =
      static_cast<float>(engineConfig.MaxNumExtPerDepth) * 0.01F * static_cast<float>(depth);
  constexpr float largest = 1.0e9F;
  if (limit > largest) return static_cast<std::int32_t>(largest);
  if (limit < -largest) return static_cast<std::int32_t>(-largest);
  return static_cast<std::int32_t>(limit);
}

// Searches the root with one ply less to find a first move when the table has none.
// That search sets the extension limit for its own depth, so this restores it.
Move FindRootMoveByDeepening(SearchState& state, Board& board, const NodeInput& node) {
  const std::int32_t outerLimit = state.extensionLimit;
  NodeInput shallow = node;
  shallow.depth = node.depth - 1;
  const Move move = FindMoveByDeepening(state, board, shallow, node.depth - 2, &SearchRoot);
  state.extensionLimit = outerLimit;
  return move;
}

}  // namespace

std::int32_t SearchRoot(SearchState& state, Board& board, const NodeInput& input, PvLine* pv) {
  std::int32_t alpha = input.alpha;
  const std::int32_t beta = input.beta;
  const std::int32_t depth = input.depth;
  const int side = board.sideToMove;
  const std::uint64_t key = board.positionKey;

  // 1. Limits and the first move to try.
  state.extensionLimit = ExtensionLimit(depth);
  state.extensions = 0;
  Move hashMove = noMove;
  std::int32_t ignored = 0;
  HashProbe(TranspositionTable, key, hashMove, ignored, alpha, beta, depth);
  if (hashMove == noMove && depth >= 3) hashMove = FindRootMoveByDeepening(state, board, input);

  // 2. The moves.
  const bool inCheck = InCheck(board, side);
  MovePicker picker(board, hashMove, depth, state.iterationDepth);
  const std::int32_t originalAlpha = alpha;
  std::int32_t best = -infiniteScore;
  Move bestMove = noMove;
  bool anyLegal = false;
  bool firstSearched = true;
  Move quiets[moveListCapacity];
  std::int32_t nQuiets = 0;
  PvLine childPv;
  Move move = noMove;
  std::int32_t orderScore = 0;
  for (int number = 0; picker.Next(move, orderScore); ++number) {
    // 2a. Input, progress, legality.
    PollForInput(state);
    if (CheckStopCommand(state)) return Quiesce(state, board, alpha, beta, 0);
    ReportRootMove(state.limits->reportStyle, board, move, number);
    MakeMove(board, move);
    if (MoverLeftInCheck(board)) {
      UnmakeMove(board);
      continue;
    }
    anyLegal = true;
    ++state.nodeCount;
    ++searchStats.nNodes;

    // 2b. Mate in one needs no search; its move has no check mark.
    const bool givesCheck = InCheck(board, board.sideToMove);
    if (givesCheck && FirstLegalMove(board) == noMove) {
      UnmakeMove(board);
      if (pv != nullptr && !Stopped(state)) WritePv(*pv, move, PvLine{});
      return mateScore;
    }
    if (givesCheck) move |= checkMark;
    const bool isCapture = IsCapture(move);

    // 2c. A repetition is a draw; all other moves are searched as in the main search.
    std::int32_t score = 0;
    const bool repeats = !isCapture && IsRepetition(board);
    if (!repeats) {
      const int extension = CountExtension(searchStats, state, move);
      const Candidate candidate{move, orderScore, extension, isCapture, givesCheck};
      MoveSearch search{alpha, beta, depth + extension - 1};
      search.isFirst = firstSearched;
      search.isPv = true;
      search.isCapture = isCapture;
      if (number >= firstReducedMove && depth >= minReducedDepth && MayReduce(candidate)) {
        search.reduction = Reduction(true, depth, number);
      }
      state.extensions += extension;
      score = SearchMove(state, board, search, &childPv);
      state.extensions -= extension;
      firstSearched = false;
    } else {
      childPv.length = 0;
    }
    UnmakeMove(board);
    if (Stopped(state)) return best;

    // 2d. New best, new line, cut-off.
    if (score > best) {
      best = score;
      bestMove = move;
      if (score > alpha) {
        alpha = score;
        if (pv != nullptr) WritePv(*pv, move, childPv);
      }
      if (score >= beta) {
        if (!isCapture) RewardQuietCutoff(state, board, move, depth, quiets, nQuiets);
        HashStore(TranspositionTable, key, move, score, lowerBound, depth);
        return score;
      }
    }
    if (!isCapture && !repeats && nQuiets < moveListCapacity) quiets[nQuiets++] = move;
  }

  // 3. Mate or stalemate at the root.
  if (!anyLegal) {
    if (!inCheck) {
      if (pv != nullptr) pv->length = 0;
      return 0;
    }
    if (!Stopped(state)) HashStore(TranspositionTable, key, noMove, -mateScore, upperBound, depth);
    return -mateScore;
  }

  // 4. The result.
  const bool raised = alpha > originalAlpha;
  if (!Stopped(state)) {
    HashStore(TranspositionTable, key, raised ? bestMove : noMove, best,
              raised ? exactBound : upperBound, depth);
  }
  return best;
}

}  // namespace mirvo
