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

constexpr int firstReducedMove = 6;  // RootMove::number

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

// A legal move of the root, just made.
struct RootMove {
  Candidate candidate;
  int number;    // counts every move of the picker, from 0
  bool isFirst;  // no other was searched before
};

// Score of the move, searched as in the main search.
std::int32_t SearchRootMove(SearchState& state, Board& board, const NodeInput& node,
                            const RootMove& rootMove, PvLine& childPv) {
  const Candidate& candidate = rootMove.candidate;
  MoveSearch search{node.alpha, node.beta, node.depth + candidate.extension - 1};
  search.isFirst = rootMove.isFirst;
  search.isPv = true;
  search.isCapture = candidate.isCapture;
  if (rootMove.number >= firstReducedMove && node.depth >= minReducedDepth &&
      MayReduce(candidate)) {
    search.reduction = Reduction(true, node.depth, rootMove.number);
  }
  state.extensions += candidate.extension;
  const std::int32_t score = SearchMove(state, board, search, &childPv);
  state.extensions -= candidate.extension;
  return score;
}

// Score of a root where no move is legal: mate or stalemate.
std::int32_t ScoreWithoutMoves(const SearchState& state, Board& board, std::int32_t depth,
                               PvLine* pv) {
  if (!InCheck(board, board.sideToMove)) {
    if (pv != nullptr) pv->length = 0;
    return 0;
  }
  if (!Stopped(state)) {
    HashStore(TranspositionTable, board.positionKey, noMove, -mateScore, upperBound, depth);
  }
  return -mateScore;
}

}  // namespace

std::int32_t SearchRoot(SearchState& state, Board& board, const NodeInput& input, PvLine* pv) {
  std::int32_t alpha = input.alpha;
  const std::int32_t beta = input.beta;
  const std::int32_t depth = input.depth;
  const std::uint64_t key = board.positionKey;

  // 1. Limits and the first move to try.
  state.extensionLimit = ExtensionLimit(depth);
  state.extensions = 0;
  Move hashMove = noMove;
  std::int32_t ignored = 0;
  HashProbe(TranspositionTable, key, hashMove, ignored, alpha, beta, depth);
  if (hashMove == noMove && depth >= 3) hashMove = FindRootMoveByDeepening(state, board, input);

  // 2. The moves.
  MovePicker picker(board, hashMove, depth, state.iterationDepth);
  const std::int32_t originalAlpha = alpha;
  std::int32_t best = -infiniteScore;
  Move bestMove = noMove;
  bool anyLegal = false;
  bool noneSearched = true;
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

    // 2c. A repetition is a draw; all other moves are searched.
    std::int32_t score = 0;
    const bool repeats = !isCapture && IsRepetition(board);
    if (repeats) {
      childPv.length = 0;
    } else {
      const int extension = CountExtension(searchStats, state, move);
      const Candidate candidate{move, orderScore, extension, isCapture, givesCheck};
      const RootMove rootMove{candidate, number, noneSearched};
      score = SearchRootMove(state, board, NodeInput{alpha, beta, depth}, rootMove, childPv);
      noneSearched = false;
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

  // 3. The result.
  if (!anyLegal) return ScoreWithoutMoves(state, board, depth, pv);
  const bool raised = alpha > originalAlpha;
  if (!Stopped(state)) {
    HashStore(TranspositionTable, key, raised ? bestMove : noMove, best,
              raised ? exactBound : upperBound, depth);
  }
  return best;
}

}  // namespace mirvo
