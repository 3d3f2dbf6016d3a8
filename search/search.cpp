#include "search/search.h"

#include <algorithm>

#include "board/attacks.h"
#include "board/bits.h"
#include "board/key_history.h"
#include "board/keys.h"
#include "board/make_move.h"
#include "eval/material.h"
#include "search/hash_table.h"
#include "search/interruption.h"
#include "search/king_sight.h"
#include "search/move_order.h"
#include "search/move_picker.h"
#include "search/next_key.h"
#include "search/quiescence.h"
#include "search/reductions.h"
#include "search/search_stats.h"

namespace mirvo {
namespace {

constexpr std::int32_t pruningMargin = 400;  // centipawns, razoring and futility
constexpr std::int32_t captureMargin = 100;  // centipawns, futility of captures

// Undo records that stay free below the main search: the longest run of
// captures and evasions that the quiescence search can make.
constexpr std::int32_t quiescenceRoom = 126;

/// What the transposition table knows about a node.
struct TableHint {
  Move move = noMove;
  bool nullForbidden = false;
  bool cutoff = false;
  std::int32_t score = 0;
};

TableHint ProbeTable(std::uint64_t key, std::int32_t alpha, std::int32_t beta, std::int32_t depth) {
  HashTable& table = TranspositionTable;
  const std::uint32_t index = HashLocate(table, key);
  TableHint hint;
  if (!HashHolds(table, index, key)) {
    ++table.conflicts;
    return hint;
  }
  const HashEntry& slot = table.entries[index];
  hint.move = slot.move;
  if (slot.depth < depth) {
    ++table.misses;
    return hint;
  }
  hint.cutoff = slot.bound == exactBound || (slot.bound == upperBound && slot.score <= alpha) ||
                (slot.bound == lowerBound && slot.score >= beta);
  hint.score = slot.score;
  hint.nullForbidden = slot.score < beta && (slot.bound == upperBound || slot.bound == exactBound);
  ++(hint.cutoff ? table.hits : table.misses);
  return hint;
}

// Own minus enemy material in centipawns.
MIRVO_COUNTS_BITS std::int32_t MaterialEstimate(const Board& board) {
  const std::uint64_t* own = board.pieces + board.sideToMove * nKinds;
  const std::uint64_t* enemy = board.pieces + (board.sideToMove ^ 1) * nKinds;
  const std::int32_t ownPawns = PopCount(own[pawn]);
  const std::int32_t enemyPawns = PopCount(enemy[pawn]);
  return NonPawnMaterial(own, ownPawns) - NonPawnMaterial(enemy, enemyPawns) +
         pawnValue * (ownPawns - enemyPawns);
}

bool HasPieces(const Board& board, int side) {
  const std::uint64_t* own = board.pieces + side * nKinds;
  return (own[knight] | own[bishop] | own[rook] | own[queen]) != 0;
}

// The table that a node of this depth asks first. Each load of a slot that
// nobody asks for holds up the processor as much as one that somebody does.
const HashTable& TableAskedAt(std::int32_t depth) {
  return depth > 0 ? TranspositionTable : EvalHashTable;
}

void CountNode(SearchState& state) {
  ++state.nodeCount;
  ++searchStats.nNodes;
}

// Without a hash move a shallower search of the same node finds one to begin
// with.
Move FindMoveByDeepening(SearchState& state, Board& board, const NodeInput& node) {
  NodeInput inner = node;
  inner.depth = node.depth / 2;
  const std::int32_t score = Search(state, board, inner, nullptr);
  if (score <= node.alpha && !Stopped(state)) {
    inner.alpha = -infiniteScore;
    Search(state, board, inner, nullptr);
  }
  Move move = noMove;
  if (!Stopped(state)) {
    std::int32_t ignored = 0;
    HashProbe(TranspositionTable, board.positionKey, move, ignored, node.alpha, node.beta,
              node.depth);
  }
  return move;
}

}  // namespace

std::int32_t SearchChild(SearchState& state, Board& board, std::int32_t alpha, std::int32_t beta,
                         std::int32_t depth, bool afterCapture, PvLine* childPv) {
  if (childPv != nullptr) childPv->length = 0;
  return -Search(state, board, NodeInput{-beta, -alpha, depth, noMove, afterCapture}, childPv);
}

bool WantsExtension(Move move) {
  const int rank = RankOf(ToSquare(move));
  const bool wanted = IsPromotion(move) || (MovingKind(move) == pawn && (rank == 1 || rank == 6));
  if (wanted) {
    ++searchStats.nPromExt;
    ++searchStats.nExt;
  }
  return wanted;
}

int AllowedExtension(const SearchState& state, bool wanted) {
  return wanted && state.extensions + 1 < state.extensionLimit ? 1 : 0;
}

void WritePv(PvLine& pv, Move move, const PvLine& child) {
  const int nCopied = std::min(child.length, pvCapacity - 1);
  pv.moves[0] = move;
  std::copy(child.moves, child.moves + nCopied, pv.moves + 1);
  pv.length = nCopied + 1;
}

void RewardQuietCutoff(const SearchState& state, const Board& board, Move move, int depth,
                       const Move* tried, int nTried) {
  AddKiller(board.plyCount, move, state.nodeCount);
  AddHistoryBonus(move, depth, board.sideToMove);
  AddHistoryMalus(tried, nTried, move, depth, board.sideToMove);
}

std::int32_t Search(SearchState& state, Board& board, const NodeInput& input, PvLine* pv) {
  std::int32_t alpha = input.alpha;
  const std::int32_t beta = input.beta;
  const std::int32_t depth = input.depth;

  // 1. Clock and input.
  if (OutOfTime(state)) return Quiesce(state, board, alpha, beta, 0);
  PollWhenDue(state);
  if (searchFlags.StopSearch != 0) return Quiesce(state, board, alpha, beta, 0);

  // 2. A position seen once before is a draw; a capture cannot lead to one.
  if (!input.afterCapture && IsRepetition(board)) return 0;

  // 3. Horizon.
  if (depth <= 0 || board.undoDepth >= undoCapacity - quiescenceRoom) {
    return Quiesce(state, board, alpha, beta, 0);
  }

  // 4. Transposition table.
  const int side = board.sideToMove;
  const bool isPv = beta - alpha > 1;
  const std::uint64_t key = board.positionKey;
  const TableHint hint = ProbeTable(key, alpha, beta, depth);
  if (hint.cutoff && !isPv) return hint.score;
  Move hashMove = hint.move;

  const bool inCheck = InCheck(board, side);

  // 5. Razoring: far behind just above the horizon, captures decide. The
  // window is the negated one although no move was made, on purpose.
  std::int32_t material = 0;
  if (depth <= 2) material = MaterialEstimate(board);
  if (depth == 2 && hashMove == noMove && !inCheck && material + pruningMargin < alpha) {
    const std::int32_t score = Quiesce(state, board, -alpha - 1, -alpha, 0);
    if (score < alpha) return score;
  }

  // 6. Null move: still at or above beta after passing.
  const std::int32_t nullReduction = depth > 5 ? 3 : 2;
  if (!isPv && !hint.nullForbidden && depth > nullReduction + 1 && !inCheck &&
      HasPieces(board, side)) {
    const std::int32_t nullDepth = depth - nullReduction - 1;
    HashPrefetch(TableAskedAt(nullDepth), key ^ SideKey());
    MakeNullMove(board);
    const std::int32_t score = SearchChild(state, board, beta - 1, beta, nullDepth, false, nullptr);
    UnmakeNullMove(board);
    if (score >= beta && !Stopped(state)) {
      HashStore(TranspositionTable, key, noMove, score, lowerBound, depth);
      return score;
    }
    if (Stopped(state)) return score;
  }

  // 7. Futility: one ply from the horizon and far behind.
  const bool futile = depth == 1 && !isPv && !inCheck && material + pruningMargin < alpha;

  // 8. Internal iterative deepening.
  if (hashMove == noMove && depth > 2 && isPv) {
    hashMove = FindMoveByDeepening(state, board, input);
    if (Stopped(state)) return alpha;
  }

  // 9. The moves. The one to begin with is known long before it is made.
  Move awaited = hashMove;  // whose child's slot is being loaded already
  if (hashMove != noMove) HashPrefetch(TableAskedAt(depth - 1), NextKey(board, hashMove));
  MovePicker picker(board, hashMove, depth, state.iterationDepth);
  const KingSight sight(board, inCheck);
  const std::int32_t originalAlpha = alpha;
  std::int32_t best = -infiniteScore;
  Move bestMove = noMove;
  std::int32_t bestDepth = depth;
  bool anyLegal = false;
  std::int32_t nMoves = 0;  // searched, the current one included
  Move quiets[moveListCapacity];
  std::int32_t nQuiets = 0;
  PvLine childPv;
  PvLine* const childPvOrNone = pv != nullptr ? &childPv : nullptr;
  Move move = noMove;
  std::int32_t orderScore = 0;
  while (picker.Next(move, orderScore)) {
    if (input.excluded != noMove && SameMove(move, input.excluded)) {
      ++nMoves;
      continue;
    }
    const bool isCapture = IsCapture(move);
    const int extension = AllowedExtension(state, WantsExtension(move));
    const Foresight foresight = sight.Foresee(move);
    if (foresight == Foresight::illegal) continue;
    const bool foreseen = foresight == Foresight::legal;
    bool givesCheck = foreseen && sight.GivesCheck(move);

    // 9a. Futility pruning. It needs no making of a move that is legal for sure.
    const auto isFutile = [&] {
      if (!futile) return false;
      if (isCapture) return orderScore + material + captureMargin < alpha;
      const int kind = MovingKind(move);
      return extension == 0 && !givesCheck && kind != pawn && kind != king && nMoves != 0 &&
             ((move ^ hashMove) & fromToMask) != 0;
    };
    if (foreseen && isFutile()) {
      anyLegal = true;
      CountNode(state);
      continue;
    }
    // A load takes longer than making a move: where many moves are searched
    // for a short time each, the next one's is started as well.
    const std::int32_t childDepth = depth + extension - 1;
    const HashTable& childTable = TableAskedAt(childDepth);
    if (move != awaited) HashPrefetch(childTable, NextKey(board, move));
    awaited = nMoves > 0 && childDepth < 3 ? picker.Peek() : noMove;
    if (awaited != noMove) HashPrefetch(childTable, NextKey(board, awaited));
    MakeMove(board, move);
    if (!foreseen && MoverLeftInCheck(board)) {
      UnmakeMove(board);
      continue;
    }
    anyLegal = true;
    CountNode(state);
    if (foreseen) {
      board.inCheckCache = givesCheck ? 1 : 0;
    } else {
      givesCheck = InCheck(board, board.sideToMove);
      if (isFutile()) {
        UnmakeMove(board);
        continue;
      }
    }
    ++nMoves;
    state.extensions += extension;
    std::int32_t score = 0;

    // 9b. The first move takes the full window, later ones have to prove
    // themselves in a null window, late ones at reduced depth before that.
    if (nMoves == 1) {
      score = SearchChild(state, board, alpha, beta, childDepth, isCapture, childPvOrNone);
    } else {
      const bool reduce = depth >= 3 && nMoves >= (isPv ? 6 : 4) && picker.Stage() >= stageUnused &&
                          extension == 0 && !(isCapture && orderScore >= 0) && !givesCheck;
      bool promising = true;
      if (reduce) {
        const std::int32_t reduced = depth - Reduction(isPv, depth, nMoves) - 1;
        if (reduced <= 0) HashPrefetch(EvalHashTable, board.positionKey);
        score = SearchChild(state, board, alpha, alpha + 1, reduced, isCapture, nullptr);
        promising = score > alpha;
      }
      if (promising && !Stopped(state)) {
        score = SearchChild(state, board, alpha, alpha + 1, childDepth, isCapture, nullptr);
        if (isPv && score > alpha && !Stopped(state)) {
          score = SearchChild(state, board, alpha, beta, childDepth, isCapture, childPvOrNone);
        }
      }
    }
    state.extensions -= extension;
    UnmakeMove(board);
    if (Stopped(state)) return best > originalAlpha ? best : alpha;

    // 9c. Cut-off, new best, new line.
    if (score > best) {
      if (score >= beta) {
        if (!isCapture) RewardQuietCutoff(state, board, move, depth, quiets, nQuiets);
        HashStore(TranspositionTable, key, move, score, lowerBound, depth + extension);
        return score;
      }
      best = score;
      bestMove = move;
      bestDepth = depth + extension;
      if (score > alpha) {
        alpha = score;
        if (pv != nullptr) WritePv(*pv, move, childPv);
      }
    }
    if (!isCapture && nQuiets < moveListCapacity) quiets[nQuiets++] = move;
  }

  // 10. Mate and stalemate.
  if (!anyLegal) {
    const std::int32_t score = inCheck ? depth - mateScore : 0;
    HashStore(TranspositionTable, key, noMove, score, inCheck ? exactBound : upperBound, depth);
    return score;
  }

  // 11. The node's result. With every legal move pruned it fails low.
  if (alpha == originalAlpha) {
    if (nMoves == 0) best = alpha;
    HashStore(TranspositionTable, key, noMove, best, upperBound, depth);
    return best;
  }
  HashStore(TranspositionTable, key, bestMove, best, exactBound, bestDepth);
  return best;
}

}  // namespace mirvo
