#include "eval/passed_pawns.h"

#include <algorithm>

#include "board/bits.h"
#include "board/geometry_tables.h"
#include "board/square_sets.h"
#include "eval/eval_tables.h"

namespace mirvo {

namespace {

// Rooks and queens on the pawn's file, counted once in front and once behind;
// pieces between do not matter.
template <int side>
std::int32_t MajorsOnFile(const Board& board, Bitboard front, Bitboard behind) {
  const Bitboard ownMajors = PiecesOf(board, side)[rook] | PiecesOf(board, side)[queen];
  const Bitboard enemyMajors = PiecesOf(board, side ^ 1)[rook] | PiecesOf(board, side ^ 1)[queen];
  std::int32_t amount = 0;
  if ((ownMajors & front) != 0) amount += ownMajorInFront;
  if ((ownMajors & behind) != 0) amount += ownMajorBehind;
  if ((enemyMajors & behind) != 0) amount += enemyMajorBehind;
  return amount;
}

// Whether the enemy king, alone with its pawns, is too far from the queening
// square. The tempo counts against the side to move: a cautious estimate
// that this engine keeps.
template <int side>
bool WinsRace(const EvalRecord& record, int square) {
  if (record.nonPawnMaterial[side ^ 1] != 0) return false;
  const Board& board = *record.board;
  const int promotion = RelativeSquare(side, rank8, FileOf(square));
  const int enemyKing = KingSquare(board, side ^ 1);
  const std::int32_t tempo = board.sideToMove == side ? 1 : 0;
  return ChebyshevDistance[square][promotion] - ChebyshevDistance[enemyKing][promotion] + tempo < 0;
}

// End-game amount for a pawn on the a or h file, which a lone minor piece
// hardly stops and a rook or queen stops easily.
template <int side>
std::int32_t RookPawnAmount(const EvalRecord& record) {
  if (record.nonPawnMaterial[side ^ 1] <= rookPawnMaterial) return rookPawnFree;
  const Bitboard* enemy = PiecesOf(*record.board, side ^ 1);
  return (enemy[rook] | enemy[queen]) != 0 ? rookPawnOpposed : 0;
}

template <int side>
ScorePair OnePassedPawn(const EvalRecord& record, int square) {
  const Board& board = *record.board;
  const int file = FileOf(square);
  const int rank = RankOf(square);
  const Bitboard front = FileSet(file) & RanksAhead(side, rank);
  const Bitboard behind = FileSet(file) & ~front;

  ScorePair score = PassedByRank[std::clamp(RelativeRank(side, rank) - rank2, 0, nPassedRanks - 1)];
  score.AddBoth(MajorsOnFile<side>(board, front, behind));
  score.AddBoth(ownBlocker * PopCount(front & board.sideOccupancy[side]));
  score.AddBoth(enemyBlocker * PopCount(front & board.sideOccupancy[side ^ 1]));
  if (WinsRace<side>(record, square)) score += wonRace;
  score.AddBoth(pathControl * (PopCount(front & record.attacks[side][unionAttacks]) -
                               PopCount(front & record.attacks[side ^ 1][unionAttacks])));
  if (file == fileA || file == fileH) score.eg += RookPawnAmount<side>(record);
  return score;
}

template <int side>
ScorePair PassedPawnsOf(const EvalRecord& record) {
  ScorePair score{};
  for (Bitboard pawns = record.passed[side]; pawns != 0;) {
    score += OnePassedPawn<side>(record, PopHighest(pawns));
  }
  return score;
}

}  // namespace

MIRVO_COUNTS_BITS ScorePair EvaluatePassedPawns(EvalRecord& record, int side) {
  return side == white ? PassedPawnsOf<white>(record) : PassedPawnsOf<black>(record);
}

}  // namespace mirvo
