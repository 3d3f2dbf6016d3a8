#include "eval/eval_tables.h"

namespace mirvo {

namespace {

// A table as it is written below: row 1 is rank 8, files a to h.
using PrintedTable = std::int16_t[nSquares];

// Black reads the vertical mirror of White's table.
constexpr SquareValues Mirrored(const PrintedTable& printed) {
  SquareValues values{};
  for (int square = 0; square < nSquares; ++square) {
    values.of[white][square] = printed[Flip(square)];
    values.of[black][square] = printed[square];
  }
  return values;
}

// Both sides read White's table.
constexpr SquareValues Shared(const PrintedTable& printed) {
  SquareValues values{};
  for (int square = 0; square < nSquares; ++square) {
    values.of[white][square] = printed[Flip(square)];
    values.of[black][square] = printed[Flip(square)];
  }
  return values;
}

// A king that has left the shelter pays twice in the middle game.
constexpr SquareValues NegativesDoubled(SquareValues values) {
  for (auto& side : values.of) {
    for (auto& value : side) {
      if (value < 0) value = static_cast<std::int16_t>(2 * value);
    }
  }
  return values;
}

// clang-format off

constexpr PrintedTable pawnMgRows = {
    0,   0,   0,   0,   0,   0,   0,   0,
   50,  50,  50,  50,  50,  50,  50,  50,
   10,  10,  20,  30,  30,  20,  10,  10,
    5,   5,  10,  25,  25,  10,   5,   5,
    0,   0,   0,  20,  20,   0,   0,   0,
    5,  -5, -10,   0,   0, -10,  -5,   5,
    5,  10,  10, -20, -20,  10,  10,   5,
    0,   0,   0,   0,   0,   0,   0,   0};

constexpr PrintedTable pawnEgRows = {
    0,   0,   0,   0,   0,   0,   0,   0,
   50,  50,  50,  50,  50,  50,  50,  50,
   30,  30,  30,  30,  30,  30,  30,  30,
   25,  25,  25,  25,  25,  25,  25,  25,
   20,  20,  20,  20,  20,  20,  20,  20,
   15,  15,  15,  15,  15,  15,  15,  15,
    5,  10,  10, -20, -20,  10,  10,   5,
    0,   0,   0,   0,   0,   0,   0,   0};

constexpr PrintedTable knightRows = {
  -50, -40, -30, -30, -30, -30, -40, -50,
  -40, -20,   0,   5,   5,   0, -20, -40,
  -30,   5,  10,  15,  15,  10,   5, -30,
  -30,   0,  15,  20,  20,  15,   0, -30,
  -30,   5,  15,  20,  20,  15,   5, -30,
  -30,   0,  10,  15,  15,  10,   0, -30,
  -40, -20,   0,   0,   0,   0, -20, -40,
  -50, -40, -30, -30, -30, -30, -40, -50};

constexpr PrintedTable bishopRows = {
  -20, -10, -10, -10, -10, -10, -10, -20,
  -10,   0,   0,   0,   0,   0,   0, -10,
  -10,   0,   5,  10,  10,   5,   0, -10,
  -10,   5,   5,  10,  10,   5,   5, -10,
  -10,   0,  10,  10,  10,  10,   0, -10,
  -10,  10,  10,  10,  10,  10,  10, -10,
  -10,   5,   0,   0,   0,   0,   5, -10,
  -20, -10, -10, -10, -10, -10, -10, -20};

constexpr PrintedTable rookRows = {
    0,   0,   0,   0,   0,   0,   0,   0,
    5,  10,  10,  10,  10,  10,  10,   5,
   -5,   0,   0,   0,   0,   0,   0,  -5,
   -5,   0,   0,   0,   0,   0,   0,  -5,
   -5,   0,   0,   0,   0,   0,   0,  -5,
   -5,   0,   0,   0,   0,   0,   0,  -5,
   -5,   0,   0,   0,   0,   0,   0,  -5,
    0,   0,   0,   5,   5,   0,   0,   0};

constexpr PrintedTable queenRows = {
  -20, -10, -10,  -5,  -5, -10, -10, -20,
  -10,   0,   5,   0,   0,   0,   0, -10,
  -10,   5,   5,   5,   5,   5,   0, -10,
    0,   0,   5,   5,   5,   5,   0,  -5,
   -5,   0,   5,   5,   5,   5,   0,  -5,
  -10,   0,   5,   5,   5,   5,   0, -10,
  -10,   0,   0,   0,   0,   0,   0, -10,
  -20, -10, -10,  -5,  -5, -10, -10, -20};

constexpr PrintedTable kingOpeningRows = {
  -40, -40, -40, -40, -40, -40, -40, -40,
  -40, -40, -40, -40, -40, -40, -40, -40,
  -40, -40, -40, -40, -40, -40, -40, -40,
  -36, -40, -40, -40, -40, -40, -40, -36,
  -24, -28, -32, -36, -36, -32, -28, -24,
  -12, -14, -18, -24, -24, -18, -14, -12,
    8,   8,  -4,  -8,  -8,  -4,   8,   8,
   12,  20,  10,   0,   0,  10,  20,  12};

constexpr PrintedTable kingMiddlegameRows = {
  -30, -40, -40, -50, -50, -40, -40, -30,
  -30, -40, -40, -50, -50, -40, -40, -30,
  -30, -40, -40, -50, -50, -40, -40, -30,
  -30, -40, -40, -50, -50, -40, -40, -30,
  -20, -30, -30, -40, -40, -30, -30, -20,
  -10, -20, -20, -20, -20, -20, -20, -10,
   20,  20,   0,   0,   0,   0,  20,  20,
   20,  30,  10,   0,   0,  10,  30,  20};

constexpr PrintedTable kingEndgameRows = {
    0,   4,   8,  10,  10,   8,   4,   0,
    4,  10,  16,  24,  24,  16,  10,   4,
    8,  14,  28,  40,  40,  28,  14,   8,
   14,  24,  40,  56,  56,  40,  24,  14,
   14,  24,  40,  56,  56,  40,  24,  14,
    8,  14,  28,  40,  40,  28,  14,   8,
    4,  10,  16,  24,  24,  16,  10,   4,
    0,   4,   8,  10,  10,   8,   4,   0};

constexpr PrintedTable outpostRows = {
    0,   0,   0,   0,   0,   0,   0,   0,
    0,   0,   0,   0,   0,   0,   0,   0,
    0,   0,  10,  24,  24,  10,   0,   0,
    0,   5,  10,  24,  24,  10,   5,   0,
    0,   5,  10,  20,  20,  10,   5,   0,
    0,   0,   0,   0,   0,   0,   0,   0,
    0,   0,   0,   0,   0,   0,   0,   0,
    0,   0,   0,   0,   0,   0,   0,   0};

}  // namespace

constexpr SquareValues PawnSquareMg = Mirrored(pawnMgRows);
constexpr SquareValues PawnSquareEg = Mirrored(pawnEgRows);
constexpr SquareValues KnightSquare = Mirrored(knightRows);
constexpr SquareValues BishopSquare = Mirrored(bishopRows);
constexpr SquareValues RookSquare = Mirrored(rookRows);
constexpr SquareValues QueenSquare = Shared(queenRows);
constexpr SquareValues KingOpeningSquare = Mirrored(kingOpeningRows);
constexpr SquareValues KingMiddlegameSquare = NegativesDoubled(Mirrored(kingMiddlegameRows));
constexpr SquareValues KingEndgameSquare = Shared(kingEndgameRows);
constexpr SquareValues KnightOutpost = Mirrored(outpostRows);

const std::int16_t DoubledByCount[nPawnCounts] = {0, 0, -25, -20, -17, -13, -10, -7, -5};
const std::int16_t IsolatedByFile[8] = {-15, -20, -20, -25, -25, -20, -20, -15};

const ScorePair PassedByRank[nPassedRanks] = {
    {0, 0}, {0, 5}, {20, 25}, {60, 70}, {80, 90}, {100, 110}};

// Kinds in order pawn, knight, bishop, rook, queen, king.
const std::int16_t AttackedByPawn[nKinds] = {0, -20, -20, -30, -40, 0};
const std::int16_t KingAttackWeight[nKinds] = {0, 2, 2, 3, 5, 0};

const std::int16_t KnightMobility[9] = {-8, -4, 0, 4, 8, 12, 14, 16, 18};
const std::int16_t RookMobilityMg[16] = {
   -8,  -4,   0,   0,   4,   6,  10,  14,
   18,  22,  26,  28,  30,  32,  34,  34};
const std::int16_t RookMobilityEg[16] = {
  -24, -16,  -8,   0,   8,  16,  20,  24,
   28,  30,  32,  34,  36,  37,  38,  38};
const std::int16_t QueenMobilityMg[28] = {
   -8,  -6,  -4,  -2,   0,   2,   4,   6,
    8,  10,  12,  14,  16,  18,  20,  22,
   24,  26,  27,  28,  29,  30,  30,  30,
   30,  30,  30,  30};
const std::int16_t QueenMobilityEg[28] = {
  -20, -15, -10,  -5,   0,   5,  10,  15,
   20,  25,  28,  30,  30,  30,  30,  30,
   30,  30,  30,  30,  30,  30,  30,  30,
   30,  30,  30,  30};

// The more own pawns share its colour, the less a lone bishop can do.
const std::int16_t SingleBishop[nPawnCounts] = {0, 0, -5, -10, -15, -25, -35, -50, -75};

constexpr std::int16_t Threat[king][king] = {
  {10, 20, 30, 40, 40},
  { 0, 10, 15, 20, 20},
  { 0, 10, 15, 20, 20},
  { 0, 10, 10, 20, 20},
  { 0, 10, 10, 20, 20}};

// clang-format on

namespace {

constexpr ThreatSums SumThreats() {
  ThreatSums sums{};
  for (int victim = pawn; victim < king; ++victim) {
    for (int attackers = 0; attackers < 1 << king; ++attackers) {
      int sum = 0;
      for (int attacker = pawn; attacker < king; ++attacker) {
        if ((attackers >> attacker & 1) != 0) sum += Threat[attacker][victim];
      }
      sums.of[victim][attackers] = static_cast<std::int16_t>(sum);
    }
  }
  return sums;
}

}  // namespace

constexpr ThreatSums ThreatsBy = SumThreats();

}  // namespace mirvo
