#include "search/root.h"

#include "board/attacks.h"
#include "board/bb_move_generator.h"
#include "board/key_history.h"
#include "board/make_move.h"
#include "search/hash_table.h"
#include "search/interruption.h"
#include "search/move_picker.h"
#include "search/quiescence.h"
#include "search/reductions.h"
#include "search/report.h"
#include "search/search.h"
#include "search/search_hooks.h"
#include "search/search_stats.h"
#include "shell/config.h"

namespace mirvo {
namespace {

constexpr int firstReducedMove = 6;  // picker's running number, from 0
constexpr int minReducedDepth = 3;

/// Calls `visit(move)` for each legal move in generator order until it answers
/// true.
template <typename Visitor>
void ForEachLegalMove(Board& board, Visitor visit) {
  BBMoveGenerator2 generator(board, board.sideToMove);
  generator.GenerateAll();
  for (int i = 0; i < generator.count; ++i) {
    MakeMove(board, generator.moves[i]);
    const bool legal = !MoverLeftInCheck(board);
    UnmakeMove(board);
    if (legal && visit(generator.moves[i])) return;
  }
}

std::int32_t ExtensionLimit(std::int32_t depth) {
  const float limit =
      static_cast<float>(engineConfig.MaxNumExtPerDepth) * 0.01F * static_cast<float>(depth);
  constexpr float largest = 1.0e9F;
  if (limit > largest) return static_cast<std::int32_t>(largest);
  if (limit < -largest) return static_cast<std::int32_t>(-largest);
  return static_cast<std::int32_t>(limit);
}

// A shallower search of the root finds a first move when the table has none.
Move FindRootMoveByDeepening(SearchState& state, Board& board, const NodeInput& node) {
  const std::int32_t outerLimit = state.extensionLimit;
  NodeInput inner = node;
  inner.depth = node.depth - 1;
  const std::int32_t score = SearchRoot(state, board, inner, nullptr);
  if (score <= node.alpha && !Stopped(state)) {
    inner.alpha = -infiniteScore;
    SearchRoot(state, board, inner, nullptr);
  }
  state.extensionLimit = outerLimit;
  Move move = noMove;
  if (!Stopped(state)) {
    std::int32_t ignored = 0;
    HashProbe(TranspositionTable, board.positionKey, move, ignored, node.alpha, node.beta,
              node.depth - 2);
  }
  return move;
}

}  // namespace

int CountLegalMoves(Board& board) {
  int count = 0;
  ForEachLegalMove(board, [&count](Move) {
    ++count;
    return false;
  });
  return count;
}

bool IsLegalMove(Board& board, Move move) {
  constexpr Move compared = fromToMask | promotionFlag | (Move{7} << movePromotionShift);
  bool found = false;
  ForEachLegalMove(board, [&found, move](Move legal) {
    found = ((legal ^ move) & compared) == 0;
    return found;
  });
  return found;
}

Move FirstLegalMove(Board& board) {
  Move first = noMove;
  ForEachLegalMove(board, [&first](Move legal) {
    first = legal;
    return true;
  });
  return first;
}

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
  if (hashMove == noMove && depth >= 3) {
    hashMove = FindRootMoveByDeepening(state, board, input);
  }

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
    if (searchFlags.NoInputPolling == 0 && searchHooks.pollInput != nullptr) {
      searchHooks.pollInput();
    }
    if (searchFlags.StopSearch != 0) return Quiesce(state, board, alpha, beta, 0);
    ReportRootMove(board, move, number);
    MakeMove(board, move);
    if (MoverLeftInCheck(board)) {
      UnmakeMove(board);
      continue;
    }
    anyLegal = true;
    ++state.nodeCount;
    ++searchStats.nNodes;

    // 2b. Mate in one needs no search; its move carries no check mark.
    const bool givesCheck = InCheck(board, board.sideToMove);
    if (givesCheck && FirstLegalMove(board) == noMove) {
      UnmakeMove(board);
      if (pv != nullptr && !Stopped(state)) WritePv(*pv, move, PvLine{});
      return mateScore;
    }
    if (givesCheck) move |= checkMark;
    const bool isCapture = IsCapture(move);

    // 2c. A return to an earlier position is a draw; everything else is
    // searched as in the main search.
    std::int32_t score = 0;
    const bool repeats = !isCapture && IsRepetition(board);
    if (!repeats) {
      const int extension = AllowedExtension(state, WantsExtension(move));
      const std::int32_t childDepth = depth + extension - 1;
      state.extensions += extension;
      if (firstSearched) {
        score = SearchChild(state, board, alpha, beta, childDepth, isCapture, &childPv);
      } else {
        bool promising = true;
        if (number >= firstReducedMove && depth >= minReducedDepth && extension == 0 &&
            !(isCapture && orderScore >= 0) && !givesCheck) {
          const std::int32_t reduced = depth - Reduction(true, depth, number) - 1;
          score = SearchChild(state, board, alpha, alpha + 1, reduced, isCapture, nullptr);
          promising = score > alpha;
        }
        if (promising && !Stopped(state)) {
          score = SearchChild(state, board, alpha, alpha + 1, childDepth, isCapture, nullptr);
          if (score > alpha && !Stopped(state)) {
            score = SearchChild(state, board, alpha, beta, childDepth, isCapture, &childPv);
          }
        }
      }
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

  // 3. Mated or stalemated at the root.
  if (!anyLegal) {
    if (!inCheck) {
      if (pv != nullptr) pv->length = 0;
      return 0;
    }
    if (!Stopped(state)) {
      HashStore(TranspositionTable, key, noMove, -mateScore, upperBound, depth);
    }
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
