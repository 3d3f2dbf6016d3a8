#include "search/search.h"

#include <algorithm>

#include "board/attacks.h"
#include "board/bits.h"
#include "board/key_history.h"
#include "board/keys.h"
#include "board/make_move.h"
#include "eval/material.h"
#include "search/check_info.h"
#include "search/child_prefetch.h"
#include "search/hash/hash_table.h"
#include "search/interruption.h"
#include "search/move_order.h"
#include "search/move_picker.h"
#include "search/quiescence.h"
#include "search/reductions.h"
#include "search/search_stats.h"
#include "search/static_exchange.h"
#include "search/try_move.h"

namespace mirvo {
namespace {

constexpr std::int32_t pruningMargin = 400;  // centipawns, razoring and futility
constexpr std::int32_t captureMargin = 100;  // centipawns, futility of captures

// Children up to this depth are searched so fast that the slot for the next move in
// line is prefetched too.
constexpr std::int32_t shallowDepth = 2;

// Late-move reductions: the first move of a node that may be reduced.
constexpr std::int32_t firstReducedMove = 4;
constexpr std::int32_t firstReducedPvMove = 6;

// Undo records that stay free below the main search: the longest run of
// captures and evasions that the quiescence search can make.
constexpr std::int32_t quiescenceRoom = 126;

// What a node learns from the transposition table.
struct TableHint {
  Move move = noMove;
  bool nullForbidden = false;
  bool cutoff = false;
  std::int32_t score = 0;
};

TableHint ProbeTable(std::uint64_t key, std::int32_t alpha, std::int32_t beta, std::int32_t depth) {
  const HashFinding found = HashLookUp(TranspositionTable, key, alpha, beta, depth);
  TableHint hint;
  if (found.slot == nullptr) return hint;
  hint.move = found.slot->move;
  if (!found.deepEnough) return hint;
  const std::int32_t bound = found.slot->bound;
  hint.cutoff = found.decides;
  hint.score = found.slot->score;
  // If the score is known to be below beta, a null move will not reach beta either.
  hint.nullForbidden = hint.score < beta && (bound == upperBound || bound == exactBound);
  return hint;
}

// Own minus enemy material in centipawns.
MIRVO_COUNTS_BITS std::int32_t MaterialBalance(const Board& board) {
  const Bitboard* own = PiecesOf(board, board.sideToMove);
  const Bitboard* enemy = PiecesOf(board, board.sideToMove ^ 1);
  const std::int32_t ownPawns = PopCount(own[pawn]);
  const std::int32_t enemyPawns = PopCount(enemy[pawn]);
  return NonPawnMaterial(own, ownPawns) - NonPawnMaterial(enemy, enemyPawns) +
         pawnValue * (ownPawns - enemyPawns);
}

bool HasPieces(const Board& board, int side) {
  const Bitboard* own = PiecesOf(board, side);
  return (own[knight] | own[bishop] | own[rook] | own[queen]) != 0;
}

void CountNode(SearchState& state) {
  ++state.nodeCount;
  ++searchStats.nNodes;
}

// The data of a node that its moves share.
struct Node {
  std::int32_t alpha;
  std::int32_t beta;
  std::int32_t depth;
  Move excluded;
  std::uint64_t key;
  Move hashMove;
  bool nullForbidden;
  bool isPv;
  bool inCheck;
  bool futile = false;        // moves that cannot raise the score to alpha are pruned
  std::int32_t material = 0;  // own minus enemy; only at depths that prune by it
};

// Razoring: far behind just above the horizon, tries captures only. True with their
// score if it stays below alpha.
bool Razor(SearchState& state, Board& board, const Node& node, std::int32_t& score) {
  if (node.depth != 2 || node.hashMove != noMove || node.inCheck ||
      node.material + pruningMargin >= node.alpha) {
    return false;
  }
  // On purpose the window is negated although no move was made.
  score = Quiesce(state, board, -node.alpha - 1, -node.alpha, 0);
  return score < node.alpha;
}

// Null move: true when the score reaches beta even after passing, or the search was
// stopped.
bool PruneByNullMove(SearchState& state, Board& board, const Node& node, std::int32_t& score) {
  const std::int32_t nullDepth = node.depth - (node.depth > 5 ? 3 : 2) - 1;
  if (node.isPv || node.nullForbidden || nullDepth <= 0 || node.inCheck ||
      !HasPieces(board, board.sideToMove)) {
    return false;
  }
  HashPrefetch(FirstProbedTable(nullDepth), node.key ^ SideKey());
  MakeNullMove(board);
  score = SearchChild(state, board, node.beta - 1, node.beta, nullDepth, false, nullptr);
  UnmakeNullMove(board);
  if (Stopped(state)) return true;
  if (score < node.beta) return false;
  HashStore(TranspositionTable, node.key, noMove, score, lowerBound, node.depth);
  return true;
}

// Futility: whether a move cannot raise the score of a node far behind to alpha.
bool IsFutile(const Node& node, const Candidate& candidate, std::int32_t alpha, bool isFirst) {
  if (candidate.isCapture) return candidate.orderScore + node.material + captureMargin < alpha;
  const int kind = MovingKind(candidate.move);
  return candidate.extension == 0 && !candidate.givesCheck && kind != pawn && kind != king &&
         !isFirst && ((candidate.move ^ node.hashMove) & fromToMask) != 0;
}

}  // namespace

std::int32_t SearchChild(SearchState& state, Board& board, std::int32_t alpha, std::int32_t beta,
                         std::int32_t depth, bool afterCapture, PvLine* childPv) {
  if (childPv != nullptr) childPv->length = 0;
  return -Search(state, board, NodeInput{-beta, -alpha, depth, noMove, afterCapture}, childPv);
}

bool IsExtendedKind(Move move) {
  const int rank = RankOf(ToSquare(move));
  return IsPromotion(move) || (MovingKind(move) == pawn && (rank == 1 || rank == 6));
}

int CountExtension(SearchStats& stats, const SearchState& state, Move move) {
  if (!IsExtendedKind(move)) return 0;
  ++stats.nPromExt;
  ++stats.nExt;
  return state.extensions + 1 < state.extensionLimit ? 1 : 0;
}

Move FindMoveByDeepening(SearchState& state, Board& board, const NodeInput& shallow,
                         std::int32_t probeDepth, NodeSearch* search) {
  const std::int32_t score = search(state, board, shallow, nullptr);
  if (score <= shallow.alpha && !Stopped(state)) {
    NodeInput open = shallow;
    open.alpha = -infiniteScore;
    search(state, board, open, nullptr);
  }
  Move move = noMove;
  if (!Stopped(state)) {
    std::int32_t ignored = 0;
    HashProbe(TranspositionTable, board.positionKey, move, ignored, shallow.alpha, shallow.beta,
              probeDepth);
  }
  return move;
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

namespace {

// Searches the moves of a node, best first, stores and returns the result. Always
// inlined: a call costs 0.6 % of a search's instructions.
[[gnu::always_inline]] inline std::int32_t SearchMoves(SearchState& state, Board& board,
                                                       const Node& node, PvLine* pv) {
  const std::int32_t depth = node.depth;
  ChildPrefetch prefetch(board);
  prefetch.Start(node.hashMove, depth - 1);  // long before the move is made
  MovePicker picker(board, node.hashMove, depth, state.iterationDepth);
  const CheckInfo checkInfo(board, node.inCheck);
  std::int32_t alpha = node.alpha;
  std::int32_t best = -infiniteScore;
  Move bestMove = noMove;
  std::int32_t bestDepth = depth;
  bool anyLegal = false;
  std::int32_t nMoves = 0;  // searched, the current one included
  Move quiets[moveListCapacity];
  std::int32_t nQuiets = 0;
  PvLine childPv;
  Move move = noMove;
  std::int32_t orderScore = 0;
  while (picker.Next(move, orderScore)) {
    if (node.excluded != noMove && SameMove(move, node.excluded)) {
      ++nMoves;
      continue;
    }

    // 1. Try. A move that is pruned counts as a node.
    const int extension = CountExtension(searchStats, state, move);
    const MoveStatus status = TryMove(board, checkInfo, move);
    if (!status.legal) continue;
    anyLegal = true;
    CountNode(state);

    // 2. Prune.
    const bool isCapture = IsCapture(move);
    const Candidate candidate{move, orderScore, extension, isCapture, status.givesCheck};
    if (node.futile && IsFutile(node, candidate, alpha, nMoves == 0)) continue;
    ++nMoves;

    // 3. Extend and reduce.
    MoveSearch search{alpha, node.beta, depth + extension - 1};
    search.isFirst = nMoves == 1;
    search.isPv = node.isPv;
    search.isCapture = isCapture;
    if (depth >= minReducedDepth && nMoves >= (node.isPv ? firstReducedPvMove : firstReducedMove) &&
        picker.AtLateMoves() && MayReduce(candidate)) {
      search.reduction = Reduction(node.isPv, depth, nMoves);
    }

    // 4. Make, search, unmake.
    prefetch.Start(move, search.depth);
    const bool peek = nMoves > 1 && search.depth <= shallowDepth;
    prefetch.Start(peek ? picker.Peek() : noMove, search.depth);
    MakeTriedMove(board, move, status.givesCheck);
    state.extensions += extension;
    const std::int32_t score = SearchMove(state, board, search, pv != nullptr ? &childPv : nullptr);
    state.extensions -= extension;
    UnmakeMove(board);
    if (Stopped(state)) return best > node.alpha ? best : alpha;

    // 5. Judge: cut-off, new best, new line.
    if (score > best) {
      if (score >= node.beta) {
        if (!isCapture) RewardQuietCutoff(state, board, move, depth, quiets, nQuiets);
        HashStore(TranspositionTable, node.key, move, score, lowerBound, depth + extension);
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

  // Mate and stalemate.
  if (!anyLegal) {
    const std::int32_t score = node.inCheck ? depth - mateScore : 0;
    const HashBound bound = node.inCheck ? exactBound : upperBound;
    HashStore(TranspositionTable, node.key, noMove, score, bound, depth);
    return score;
  }

  // No move raised alpha. If every legal move was pruned, alpha is the score.
  if (alpha == node.alpha) {
    if (nMoves == 0) best = alpha;
    HashStore(TranspositionTable, node.key, noMove, best, upperBound, depth);
    return best;
  }
  HashStore(TranspositionTable, node.key, bestMove, best, exactBound, bestDepth);
  return best;
}

}  // namespace

std::int32_t Search(SearchState& state, Board& board, const NodeInput& input, PvLine* pv) {
  const std::int32_t alpha = input.alpha;
  const std::int32_t beta = input.beta;
  const std::int32_t depth = input.depth;

  // 1. Clock and input.
  if (CheckClock(state)) return Quiesce(state, board, alpha, beta, 0);
  PollWhenDue(state);
  if (CheckStopCommand(state)) return Quiesce(state, board, alpha, beta, 0);

  // 2. A position seen once before is a draw; a capture cannot lead to one.
  if (!input.afterCapture && IsRepetition(board)) return 0;

  // 3. Horizon.
  if (depth <= 0 || board.undoDepth >= undoCapacity - quiescenceRoom) {
    return Quiesce(state, board, alpha, beta, 0);
  }

  // 4. Transposition table.
  const bool isPv = beta - alpha > 1;
  const std::uint64_t key = board.positionKey;
  const TableHint hint = ProbeTable(key, alpha, beta, depth);
  if (hint.cutoff && !isPv) return hint.score;

  // 5. Pruning of the whole node.
  const bool inCheck = InCheck(board, board.sideToMove);
  Node node{alpha, beta, depth, input.excluded, key, hint.move, hint.nullForbidden, isPv, inCheck};
  if (depth <= 2) node.material = MaterialBalance(board);
  std::int32_t score = 0;
  if (Razor(state, board, node, score)) return score;
  if (PruneByNullMove(state, board, node, score)) return score;
  node.futile = depth == 1 && !isPv && !inCheck && node.material + pruningMargin < alpha;

  // 6. Internal iterative deepening.
  if (node.hashMove == noMove && depth > 2 && isPv) {
    NodeInput shallow = input;
    shallow.depth = depth / 2;
    node.hashMove = FindMoveByDeepening(state, board, shallow, depth, &Search);
    if (Stopped(state)) return alpha;
  }

  // 7. The moves.
  return SearchMoves(state, board, node, pv);
}

}  // namespace mirvo
