#include "eval/pawns.h"

#include <algorithm>

#include "board/bits.h"
#include "board/geometry_tables.h"
#include "board/square_sets.h"
#include "eval/eval_tables.h"

namespace mirvo {

namespace {

// The sets that the terms of a side's pawns read.
template <int side>
struct PawnView {
  explicit PawnView(const Board& board)
      : own(PiecesOf(board, side)[pawn]),
        enemy(PiecesOf(board, side ^ 1)[pawn]),
        defended(PawnAttackSet(side, own)),
        attacked(PawnAttackSet(side ^ 1, enemy)),
        doubled(DoubledByCount[std::min(PopCount(own), nPawnCounts - 1)]) {
    if (PiecesOf(board, side)[rook] == 0) doubled += doubledWithoutRook;
  }

  Bitboard own;
  Bitboard enemy;
  Bitboard defended;     // by own pawns
  Bitboard attacked;     // by enemy pawns
  std::int32_t doubled;  // amount for a doubled pawn before its own circumstances
};

// Amount for a pawn with another own pawn ahead of it on its file.
template <int side>
std::int32_t DoubledAmount(const PawnView<side>& view, int rank, Bitboard front) {
  std::int32_t amount = view.doubled;
  if ((front & view.enemy) != 0) amount += doubledBehindEnemy;
  if (RelativeRank(side, rank) != rank2) amount += doubledAdvanced;
  return amount;
}

// Whether no own pawn behind it on the files beside can protect the pawn, and an
// enemy pawn attacks the square before it. A pawn on its last rank has none.
template <int side>
bool IsBackward(const PawnView<side>& view, int square, Bitboard adjacent) {
  if ((adjacent & RanksBehind(side, RankOf(square)) & view.own) != 0) return false;
  const Bitboard next = side == white ? Bit(square) << 8 : Bit(square) >> 8;
  return (next & view.attacked & ~view.defended) != 0;
}

template <int side>
ScorePair OnePawn(const PawnView<side>& view, int square, EvalRecord& record) {
  const int file = FileOf(square);
  const int rank = RankOf(square);
  const Bitboard adjacent = AdjacentFileSet(file);
  const Bitboard front = FileSet(file) & RanksAhead(side, rank);
  const bool doubled = (front & view.own) != 0;
  const bool isolated = (adjacent & view.own) == 0;

  ScorePair score = {PawnSquareMg.of[side][square], PawnSquareEg.of[side][square]};
  if (doubled) score.AddBoth(DoubledAmount<side>(view, rank, front));
  if ((view.defended & Bit(square)) != 0) score.AddBoth(protectedPawn);
  if (isolated) {
    score.AddBoth(IsolatedByFile[file]);
    record.isolated[side] |= Bit(square);
    if (doubled && file != fileA && file != fileH) score.AddBoth(doubledIsolated);
  }
  // No enemy pawn can stop it.
  if ((FrontSpan(side, square) & view.enemy) == 0) {
    score.AddBoth(doubled ? unopposedDoubled : unopposedPawn);
    if (!doubled) record.passed[side] |= Bit(square);
    if (!isolated) score.AddBoth(unopposedNotIsolated);
  }
  if (IsBackward<side>(view, square, adjacent)) score += backwardPawn;
  return score;
}

template <int side>
ScorePair PawnsOf(EvalRecord& record) {
  const PawnView<side> view(*record.board);
  ScorePair score{};
  for (Bitboard pawns = view.own; pawns != 0;) {
    score += OnePawn<side>(view, PopHighest(pawns), record);
  }
  return score;
}

}  // namespace

ScorePair EvaluatePawns(EvalRecord& record, int side) {
  return side == white ? PawnsOf<white>(record) : PawnsOf<black>(record);
}

}  // namespace mirvo
