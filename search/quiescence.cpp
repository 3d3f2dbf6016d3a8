#include "search/quiescence.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <utility>

#include "board/attacks.h"
#include "board/bb_move_generator.h"
#include "board/legal_moves.h"
#include "board/make_move.h"
#include "board/square_sets.h"
#include "eval/evaluate.h"
#include "search/check_info.h"
#include "search/child_prefetch.h"
#include "search/hash/hash_table.h"
#include "search/interruption.h"
#include "search/move_order.h"
#include "search/scored_move_list.h"
#include "search/search_stats.h"
#include "search/static_exchange.h"
#include "search/try_move.h"

namespace mirvo {
namespace {

constexpr std::int32_t deltaMargin = 100;  // centipawns
constexpr std::int32_t anyScore = -ScoredMoveList::maxScore;

// Scores every move: captures as if none lost material; quiet moves, which are searched
// only in check, by their history. Writes the victim of each capture into its word.
void ScoreMoves(const Board& board, BBMoveGenerator2& generator, ScoredMoveList& list) {
  ScoredMoveList::Filler scores(list);
  for (int i = 0; i < generator.count; ++i) {
    Move& move = generator.moves[i];
    if (!IsCapture(move)) {
      scores.Add(HistoryTable[board.sideToMove][FromSquare(move)][ToSquare(move)]);
      continue;
    }
    const int victim = CaptureVictim(board, move);
    move = WithCaptured(move, victim);
    scores.Add(CaptureScore(move, victim));
  }
  scores.Close();
}

// Enemy pieces that are worth `needed` or more.
Bitboard PiecesWorth(const Board& board, std::int32_t needed) {
  const Bitboard* enemy = PiecesOf(board, board.sideToMove ^ 1);
  Bitboard set = 0;
  for (int kind = pawn; kind < king; ++kind) {
    if (exchangeValue[kind] >= needed) set |= enemy[kind];
  }
  return set;
}

// Delta pruning before scoring: moves the captures whose victim is worth less than
// `needed`, which is more than a pawn, to the end of the list. Returns their number.
int PutDeltaPrunedLast(const Board& board, std::int32_t needed, BBMoveGenerator2& generator) {
  const Bitboard wanted = PiecesWorth(board, needed);
  int nKept = 0;
  for (int i = 0; i < generator.count; ++i) {
    if ((wanted & Bit(ToSquare(generator.moves[i]))) != 0) {
      std::swap(generator.moves[nKept++], generator.moves[i]);
    }
  }
  return generator.count - nKept;
}

// Whether one of the captures is legal. The side must not be in check; then a capture
// on an occupied square is legal unless the king or a piece on a possible pin line
// makes it.
bool AnyLegalCapture(Board& board, const Move* captures, int count) {
  const int kingSquare = KingSquare(board, board.sideToMove);
  const Bitboard pinLines = RookLines(kingSquare) | BishopLines(kingSquare);
  for (const Move move : std::span(captures, static_cast<std::size_t>(count))) {
    const bool knownLegal = MovingKind(move) != king && (pinLines & Bit(FromSquare(move))) == 0 &&
                            (board.occupied & Bit(ToSquare(move))) != 0;
    if (knownLegal || IsLegal(board, move)) return true;
  }
  return false;
}

// Drops the moves known to be illegal, which in check are most.
void DropIllegal(const CheckInfo& checkInfo, BBMoveGenerator2& generator) {
  int nKept = 0;
  for (int i = 0; i < generator.count; ++i) {
    const Move move = generator.moves[i];
    generator.moves[nKept] = move;
    nKept += checkInfo.LegalityOf(move) != Legality::illegal ? 1 : 0;
  }
  generator.count = nKept;
}

// Whether the side has a pawn one step from promotion. Promotions are never
// pruned.
bool MayPromote(const Board& board, int side) {
  return (PiecesOf(board, side)[pawn] & RelativeRankSet(side, rank7)) != 0;
}

}  // namespace

std::int32_t Quiesce(SearchState& state, Board& board, std::int32_t alpha, std::int32_t beta,
                     std::int32_t qply) {
  // 1. Static score and stand pat.
  const int side = board.sideToMove;
  const bool inCheck = InCheck(board, side);
  const bool isPv = beta - alpha > 1;
  EvalRecord record;
  const std::int32_t eval = Evaluate(record, board, side);
  ++state.clockPolls;
  state.selectiveDepth = std::max(state.selectiveDepth, qply);
  if (eval >= beta && !inCheck) return eval;
  const std::int32_t margin = eval + deltaMargin;
  std::int32_t best = std::max(eval, -infiniteScore);
  if (eval > alpha && !inCheck) alpha = eval;
  if (board.undoDepth >= undoCapacity - 1) return best;  // no room to make a move

  // 2. Captures, or every move when in check. Without any the static score stands, even
  // in check.
  BBMoveGenerator2 generator(board, side);
  generator.GenerateCaptures();
  if (inCheck) generator.GenerateNonCaptures();
  if (generator.count == 0) return best;
  const bool mayPrune = !inCheck && !isPv;
  const std::int32_t needed = alpha - margin;
  int nDeltaPruned = 0;
  if (mayPrune && needed > exchangeValue[pawn] && !board.hasOverlaps && !MayPromote(board, side)) {
    nDeltaPruned = PutDeltaPrunedLast(board, needed, generator);
    generator.count -= nDeltaPruned;
    if (generator.count == 0) {
      return AnyLegalCapture(board, generator.moves, nDeltaPruned) ? best : 0;
    }
  }
  const CheckInfo checkInfo(board, inCheck);
  if (inCheck) DropIllegal(checkInfo, generator);
  ScoredMoveList list;
  ScoreMoves(board, generator, list);

  // 3. Best first.
  ChildPrefetch prefetch(board);
  bool anyLegal = false;
  std::int32_t orderScore = 0;
  for (int index = 0; (index = list.TakeBest(anyScore, orderScore)) >= 0;) {
    const Move move = generator.moves[index];

    // 3a. Prune. Of moves that lose material only the legality matters; if they are not
    // pruned, they come after the others.
    if (mayPrune && !IsPromotion(move)) {
      if (margin + exchangeValue[CapturedKind(move)] < alpha || ExchangeLoss(board, move) < 0) {
        anyLegal = anyLegal || TryMove(board, checkInfo, move).legal;
        continue;
      }
    } else if (orderScore >= 0 && IsCapture(move)) {
      if (const std::int32_t loss = ExchangeLoss(board, move); loss < 0) {
        list.PutBack(index, loss);
        continue;
      }
    }

    // 3b. Try, make, search, unmake.
    const MoveStatus status = TryMove(board, checkInfo, move);
    if (!status.legal) continue;
    prefetch.Start(move, 0);
    const int next = anyLegal ? list.PeekBest(0) : -1;
    prefetch.Start(next >= 0 ? generator.moves[next] : noMove, 0);
    MakeTriedMove(board, move, status.givesCheck);
    anyLegal = true;
    ++state.nodeCount;
    ++searchStats.nQSNodes;
    if (IsPollOverdue(state)) [[unlikely]] {
      PollOverdue(state);
    }
    const std::int32_t score = -Quiesce(state, board, -beta, -alpha, qply + 1);
    UnmakeMove(board);
    if (state.stopCause == StopCause::abandonedExchange) [[unlikely]] {
      return best;
    }

    // 3c. Judge.
    if (score > best) {
      if (score >= beta) return score;
      best = score;
      alpha = std::max(alpha, score);
    }
  }

  // 4. There were moves, but none was legal: mate, or 0 when not in check.
  if (anyLegal || AnyLegalCapture(board, generator.moves + generator.count, nDeltaPruned)) {
    return best;
  }
  return inCheck ? qply - mateScore : 0;
}

}  // namespace mirvo
