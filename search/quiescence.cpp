#include "search/quiescence.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <utility>

#include "board/attacks.h"
#include "board/bb_move_generator.h"
#include "board/make_move.h"
#include "eval/evaluate.h"
#include "search/hash_table.h"
#include "search/interruption.h"
#include "search/king_sight.h"
#include "search/move_keys.h"
#include "search/move_order.h"
#include "search/next_key.h"
#include "search/search_stats.h"
#include "search/static_exchange.h"

namespace mirvo {
namespace {

constexpr std::int32_t deltaMargin = 100;

bool IsLegal(Board& board, Move move) {
  MakeMove(board, move);
  const bool legal = !MoverLeftInCheck(board);
  UnmakeMove(board);
  return legal;
}

// Gives every move its score, captures as if none lost; quiet moves, searched
// only in check, take their history. Writes each capture's victim into its word.
void ScoreMoves(const Board& board, BBMoveGenerator2& generator, MoveKeys& list) {
  MoveKeys::Filler keys(list);
  for (int i = 0; i < generator.count; ++i) {
    Move& move = generator.moves[i];
    if (!IsCapture(move)) {
      keys.Add(HistoryTable[board.sideToMove][FromSquare(move)][ToSquare(move)]);
      continue;
    }
    const int victim = CaptureVictim(board, move);
    move = WithCaptured(move, victim);
    keys.Add(CaptureScore(move, victim));
  }
  keys.Close();
}

// Enemy pieces that are worth `needed` or more.
Bitboard PiecesWorth(const Board& board, std::int32_t needed) {
  const std::uint64_t* enemy = board.pieces + (board.sideToMove ^ 1) * nKinds;
  Bitboard set = 0;
  for (int kind = pawn; kind < king; ++kind) {
    if (exchangeValue[kind] >= needed) set |= enemy[kind];
  }
  return set;
}

// Puts the captures whose victim is worth less than `needed`, which is more than
// a pawn, behind the others: the search would leave them out anyway. How many
// there are.
int PutHopelessLast(const Board& board, std::int32_t needed, BBMoveGenerator2& generator) {
  const Bitboard wanted = PiecesWorth(board, needed);
  int nKept = 0;
  for (int i = 0; i < generator.count; ++i) {
    if ((wanted & Bit(ToSquare(generator.moves[i]))) != 0) {
      std::swap(generator.moves[nKept++], generator.moves[i]);
    }
  }
  return generator.count - nKept;
}

// Whether one of the captures is legal, out of check. One by another piece than
// the king that stands on no line with its king is.
bool AnyLegalCapture(Board& board, const Move* captures, int count) {
  const int kingSquare = KingSquare(board, board.sideToMove);
  const Bitboard lines = RookLines(kingSquare) | BishopLines(kingSquare);
  for (const Move move : std::span(captures, static_cast<std::size_t>(count))) {
    const bool free = MovingKind(move) != king && (lines & Bit(FromSquare(move))) == 0 &&
                      (board.occupied & Bit(ToSquare(move))) != 0;
    if (free || IsLegal(board, move)) return true;
  }
  return false;
}

// Drops what is illegal for sure: in check most moves are.
void DropIllegal(const KingSight& sight, BBMoveGenerator2& generator) {
  int nKept = 0;
  for (int i = 0; i < generator.count; ++i) {
    const Move move = generator.moves[i];
    generator.moves[nKept] = move;
    nKept += sight.Foresee(move) != Foresight::illegal ? 1 : 0;
  }
  generator.count = nKept;
}

// Whether the side has a pawn one step from promotion. Promotions are never
// left out.
bool MayPromote(const Board& board, int side) {
  constexpr Bitboard seventh[nSides] = {0x00FF000000000000ULL, 0x000000000000FF00ULL};
  return (board.pieces[PieceIndex(side, pawn)] & seventh[side]) != 0;
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

  // 2. Captures, or every move when in check. Nothing to try keeps the static
  // score, even in check.
  BBMoveGenerator2 generator(board, side);
  generator.GenerateCaptures();
  if (inCheck) generator.GenerateNonCaptures();
  if (generator.count == 0) return best;
  const bool mayLeaveOut = !inCheck && !isPv;
  const std::int32_t needed = alpha - margin;
  int nHopeless = 0;
  if (mayLeaveOut && needed > exchangeValue[pawn] && !board.hasOverlaps &&
      !MayPromote(board, side)) {
    nHopeless = PutHopelessLast(board, needed, generator);
    generator.count -= nHopeless;
    if (generator.count == 0) return AnyLegalCapture(board, generator.moves, nHopeless) ? best : 0;
  }
  const KingSight sight(board, inCheck);
  if (inCheck) DropIllegal(sight, generator);
  bool anyLegal = false;
  MoveKeys keys;
  ScoreMoves(board, generator, keys);

  // 3. Best first. Whether a capture loses is found out when its turn comes, and
  // a move that is left out is made only when its legality is needed and cannot
  // be told otherwise.
  int awaited = -1;  // place of the move whose child's slot is being loaded already
  std::int32_t orderScore = 0;
  for (int index = 0; (index = keys.TakeBest(-MoveKeys::maxScore, orderScore)) >= 0;) {
    const Move move = generator.moves[index];
    const Foresight foresight = sight.Foresee(move);
    if (foresight == Foresight::illegal) continue;
    const bool foreseen = foresight == Foresight::legal;
    if (mayLeaveOut && !IsPromotion(move)) {
      if (margin + exchangeValue[CapturedKind(move)] < alpha || ExchangeLoss(board, move) < 0) {
        anyLegal = anyLegal || foreseen || IsLegal(board, move);
        continue;
      }
    } else if (orderScore >= 0 && IsCapture(move)) {
      if (const std::int32_t loss = ExchangeLoss(board, move); loss < 0) {
        keys.Return(index, loss);
        continue;
      }
    }
    if (index != awaited) HashPrefetch(EvalHashTable, NextKey(board, move));
    awaited = anyLegal ? keys.PeekBest(0) : -1;
    if (awaited >= 0) HashPrefetch(EvalHashTable, NextKey(board, generator.moves[awaited]));
    MakeMove(board, move);
    if (foreseen) {
      board.inCheckCache = sight.GivesCheck(move) ? 1 : 0;
    } else if (MoverLeftInCheck(board)) {
      UnmakeMove(board);
      continue;
    }
    anyLegal = true;
    ++state.nodeCount;
    ++searchStats.nQSNodes;
    if (IsPollOverdue(state)) [[unlikely]]
      PollOverdue(state);
    const std::int32_t score = -Quiesce(state, board, -beta, -alpha, qply + 1);
    UnmakeMove(board);
    if (state.abandonQuiescence != 0) [[unlikely]]
      return best;
    if (score > best) {
      if (score >= beta) return score;
      best = score;
      alpha = std::max(alpha, score);
    }
  }

  // 4. Moves were there but none was legal: mate, or 0 when not in check.
  if (anyLegal || AnyLegalCapture(board, generator.moves + generator.count, nHopeless)) return best;
  return inCheck ? qply - mateScore : 0;
}

}  // namespace mirvo
