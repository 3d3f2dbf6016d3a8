// Compares every table of the evaluation with a second copy of its numbers,
// written from White's first rank upwards.
#include <gtest/gtest.h>

#include <cstdint>

#include "board/coding.h"
#include "eval/eval_tables.h"
#include "eval/king.h"
#include "eval/material.h"

namespace mirvo {
namespace {

using Rows = std::int16_t[8][8];  // [rank][file], rank 1 first

// clang-format off

constexpr Rows pawnMg = {
    {0, 0, 0, 0, 0, 0, 0, 0},
    {5, 10, 10, -20, -20, 10, 10, 5},
    {5, -5, -10, 0, 0, -10, -5, 5},
    {0, 0, 0, 20, 20, 0, 0, 0},
    {5, 5, 10, 25, 25, 10, 5, 5},
    {10, 10, 20, 30, 30, 20, 10, 10},
    {50, 50, 50, 50, 50, 50, 50, 50},
    {0, 0, 0, 0, 0, 0, 0, 0},
};

constexpr Rows knightRows = {
    {-50, -40, -30, -30, -30, -30, -40, -50},
    {-40, -20, 0, 0, 0, 0, -20, -40},
    {-30, 0, 10, 15, 15, 10, 0, -30},
    {-30, 5, 15, 20, 20, 15, 5, -30},
    {-30, 0, 15, 20, 20, 15, 0, -30},
    {-30, 5, 10, 15, 15, 10, 5, -30},
    {-40, -20, 0, 5, 5, 0, -20, -40},
    {-50, -40, -30, -30, -30, -30, -40, -50},
};

constexpr Rows bishopRows = {
    {-20, -10, -10, -10, -10, -10, -10, -20},
    {-10, 5, 0, 0, 0, 0, 5, -10},
    {-10, 10, 10, 10, 10, 10, 10, -10},
    {-10, 0, 10, 10, 10, 10, 0, -10},
    {-10, 5, 5, 10, 10, 5, 5, -10},
    {-10, 0, 5, 10, 10, 5, 0, -10},
    {-10, 0, 0, 0, 0, 0, 0, -10},
    {-20, -10, -10, -10, -10, -10, -10, -20},
};

constexpr Rows queenRows = {
    {-20, -10, -10, -5, -5, -10, -10, -20},
    {-10, 0, 0, 0, 0, 0, 0, -10},
    {-10, 0, 5, 5, 5, 5, 0, -10},
    {-5, 0, 5, 5, 5, 5, 0, -5},
    {0, 0, 5, 5, 5, 5, 0, -5},
    {-10, 5, 5, 5, 5, 5, 0, -10},
    {-10, 0, 5, 0, 0, 0, 0, -10},
    {-20, -10, -10, -5, -5, -10, -10, -20},
};

constexpr Rows kingOpening = {
    {12, 20, 10, 0, 0, 10, 20, 12},
    {8, 8, -4, -8, -8, -4, 8, 8},
    {-12, -14, -18, -24, -24, -18, -14, -12},
    {-24, -28, -32, -36, -36, -32, -28, -24},
    {-36, -40, -40, -40, -40, -40, -40, -36},
    {-40, -40, -40, -40, -40, -40, -40, -40},
    {-40, -40, -40, -40, -40, -40, -40, -40},
    {-40, -40, -40, -40, -40, -40, -40, -40},
};

constexpr Rows kingMiddlegame = {
    {20, 30, 10, 0, 0, 10, 30, 20},
    {20, 20, 0, 0, 0, 0, 20, 20},
    {-10, -20, -20, -20, -20, -20, -20, -10},
    {-20, -30, -30, -40, -40, -30, -30, -20},
    {-30, -40, -40, -50, -50, -40, -40, -30},
    {-30, -40, -40, -50, -50, -40, -40, -30},
    {-30, -40, -40, -50, -50, -40, -40, -30},
    {-30, -40, -40, -50, -50, -40, -40, -30},
};

constexpr Rows kingEndgame = {
    {0, 4, 8, 10, 10, 8, 4, 0},
    {4, 10, 16, 24, 24, 16, 10, 4},
    {8, 14, 28, 40, 40, 28, 14, 8},
    {14, 24, 40, 56, 56, 40, 24, 14},
    {14, 24, 40, 56, 56, 40, 24, 14},
    {8, 14, 28, 40, 40, 28, 14, 8},
    {4, 10, 16, 24, 24, 16, 10, 4},
    {0, 4, 8, 10, 10, 8, 4, 0},
};

constexpr Rows pawnEg = {
    {0, 0, 0, 0, 0, 0, 0, 0},
    {5, 10, 10, -20, -20, 10, 10, 5},
    {15, 15, 15, 15, 15, 15, 15, 15},
    {20, 20, 20, 20, 20, 20, 20, 20},
    {25, 25, 25, 25, 25, 25, 25, 25},
    {30, 30, 30, 30, 30, 30, 30, 30},
    {50, 50, 50, 50, 50, 50, 50, 50},
    {0, 0, 0, 0, 0, 0, 0, 0},
};

constexpr Rows rookRows = {
    {0, 0, 0, 5, 5, 0, 0, 0},
    {-5, 0, 0, 0, 0, 0, 0, -5},
    {-5, 0, 0, 0, 0, 0, 0, -5},
    {-5, 0, 0, 0, 0, 0, 0, -5},
    {-5, 0, 0, 0, 0, 0, 0, -5},
    {-5, 0, 0, 0, 0, 0, 0, -5},
    {5, 10, 10, 10, 10, 10, 10, 5},
    {0, 0, 0, 0, 0, 0, 0, 0},
};

constexpr Rows outpost = {
    {0, 0, 0, 0, 0, 0, 0, 0},
    {0, 0, 0, 0, 0, 0, 0, 0},
    {0, 0, 0, 0, 0, 0, 0, 0},
    {0, 5, 10, 20, 20, 10, 5, 0},
    {0, 5, 10, 24, 24, 10, 5, 0},
    {0, 0, 10, 24, 24, 10, 0, 0},
    {0, 0, 0, 0, 0, 0, 0, 0},
    {0, 0, 0, 0, 0, 0, 0, 0},
};

// clang-format on

enum class BlackReads { mirrored, same };

struct SquareCase {
  const char* name;
  const SquareValues* table;
  const Rows* rows;
  BlackReads black;
  bool negativesDoubled;
};

const SquareCase squareCases[] = {
    {"pawn mg", &PawnSquareMg, &pawnMg, BlackReads::mirrored, false},
    {"pawn eg", &PawnSquareEg, &pawnEg, BlackReads::mirrored, false},
    {"knight", &KnightSquare, &knightRows, BlackReads::mirrored, false},
    {"bishop", &BishopSquare, &bishopRows, BlackReads::mirrored, false},
    {"rook", &RookSquare, &rookRows, BlackReads::mirrored, false},
    {"queen", &QueenSquare, &queenRows, BlackReads::same, false},
    {"king opening", &KingOpeningSquare, &kingOpening, BlackReads::mirrored, false},
    {"king middle game", &KingMiddlegameSquare, &kingMiddlegame, BlackReads::mirrored, true},
    {"king end game", &KingEndgameSquare, &kingEndgame, BlackReads::same, false},
    {"outpost", &KnightOutpost, &outpost, BlackReads::mirrored, false},
};

TEST(EvalTables, SquareTablesHoldTheirNumbersForBothSides) {
  for (const SquareCase& test : squareCases) {
    for (int square = 0; square < nSquares; ++square) {
      int value = (*test.rows)[RankOf(square)][FileOf(square)];
      if (test.negativesDoubled && value < 0) value *= 2;
      const int blackSquare = test.black == BlackReads::mirrored ? Flip(square) : square;
      EXPECT_EQ(test.table->of[white][square], value) << test.name << " " << square;
      EXPECT_EQ(test.table->of[black][blackSquare], value) << test.name << " " << square;
    }
  }
}

TEST(EvalTables, KnightTableIsNotSymmetricBetweenRanks) {
  EXPECT_EQ(KnightSquare.of[white][SquareAt(1, 3)], 0);
  EXPECT_EQ(KnightSquare.of[white][SquareAt(6, 3)], 5);
  EXPECT_EQ(KnightSquare.of[white][SquareAt(2, 1)], 0);
  EXPECT_EQ(KnightSquare.of[white][SquareAt(5, 1)], 5);
}

TEST(EvalTables, KingDangerGrowsWithTheSquareOfThePoints) {
  BuildKingDangerTable();
  const int first[] = {0, 0, 0, 0, 0, 1, 1, 2, 3, 4, 5};
  for (int i = 0; i < 11; ++i) EXPECT_EQ(KingDangerTable[i], first[i]) << i;
  for (int i = 0; i < nKingDanger; ++i) EXPECT_EQ(KingDangerTable[i], i * i / 20) << i;
  EXPECT_EQ(KingDangerTable[99], 490);
}

TEST(EvalTables, PawnCountTables) {
  const int doubled[] = {0, 0, -25, -20, -17, -13, -10, -7, -5};
  const int single[] = {0, 0, -5, -10, -15, -25, -35, -50, -75};
  for (int i = 0; i < 9; ++i) {
    EXPECT_EQ(DoubledByCount[i], doubled[i]) << i;
    EXPECT_EQ(SingleBishop[i], single[i]) << i;
  }
  const int isolated[] = {-15, -20, -20, -25, -25, -20, -20, -15};
  for (int file = 0; file < 8; ++file) EXPECT_EQ(IsolatedByFile[file], isolated[file]) << file;
}

TEST(EvalTables, PassedPawnsByRank) {
  const int mg[] = {0, 0, 20, 60, 80, 100};
  const int eg[] = {0, 5, 25, 70, 90, 110};
  for (int i = 0; i < nPassedRanks; ++i) {
    EXPECT_EQ(PassedByRank[i].mg, mg[i]) << i;
    EXPECT_EQ(PassedByRank[i].eg, eg[i]) << i;
  }
}

TEST(EvalTables, MobilityTables) {
  const int knights[] = {-8, -4, 0, 4, 8, 12, 14, 16, 18};
  for (int i = 0; i < 9; ++i) EXPECT_EQ(KnightMobility[i], knights[i]) << i;
  const int rookMg[] = {-8, -4, 0, 0, 4, 6, 10, 14, 18, 22, 26, 28, 30, 32, 34, 34};
  const int rookEg[] = {-24, -16, -8, 0, 8, 16, 20, 24, 28, 30, 32, 34, 36, 37, 38, 38};
  for (int i = 0; i < 16; ++i) {
    EXPECT_EQ(RookMobilityMg[i], rookMg[i]) << i;
    EXPECT_EQ(RookMobilityEg[i], rookEg[i]) << i;
  }
  const int queenMg[] = {-8, -6, -4, -2, 0,  2,  4,  6,  8,  10, 12,
                         14, 16, 18, 20, 22, 24, 26, 27, 28, 29};
  const int queenEg[] = {-20, -15, -10, -5, 0, 5, 10, 15, 20, 25, 28};
  for (int i = 0; i < 28; ++i) {
    EXPECT_EQ(QueenMobilityMg[i], i < 21 ? queenMg[i] : 30) << i;
    EXPECT_EQ(QueenMobilityEg[i], i < 11 ? queenEg[i] : 30) << i;
  }
}

TEST(EvalTables, ThreatsByAttackerAndVictim) {
  const int threats[5][5] = {{10, 20, 30, 40, 40},
                             {0, 10, 15, 20, 20},
                             {0, 10, 15, 20, 20},
                             {0, 10, 10, 20, 20},
                             {0, 10, 10, 20, 20}};
  for (int attacker = 0; attacker < 5; ++attacker) {
    for (int victim = 0; victim < 5; ++victim) {
      EXPECT_EQ(Threat[attacker][victim], threats[attacker][victim]) << attacker << victim;
    }
  }
}

}  // namespace
}  // namespace mirvo
