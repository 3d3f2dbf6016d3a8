#include "search/move_order.h"

#include <gtest/gtest.h>

namespace mirvo {
namespace {

constexpr int e2 = 12;
constexpr int e4 = 28;
constexpr int d2 = 11;
constexpr int d4 = 27;

const Move kingPawn = BuildMove(e2, e4, white, pawn);
const Move queenPawn = BuildMove(d2, d4, white, pawn);
const Move flankKnight = BuildMove(6, 21, white, knight);
const Move otherKnight = BuildMove(1, 18, white, knight);

class MoveOrder : public testing::Test {
 protected:
  MoveOrder() {
    ClearKillers();
    ClearHistory();
  }
};

TEST(MvvLvaTable, FollowsVictimsAndAttackers) {
  for (int victim = 0; victim < 8; ++victim) {
    for (int attacker = 0; attacker < 8; ++attacker) {
      const bool used = victim <= queen && attacker <= king;
      EXPECT_EQ(MvvLva[victim][attacker], used ? 55 + 10 * victim - attacker : 0);
    }
  }
}

TEST_F(MoveOrder, TheFirstKillerGoesToTheSecondSlot) {
  AddKiller(5, kingPawn, 10);  // equal weights of 0: the second one is replaced
  EXPECT_EQ(KillerTable[5].second, kingPawn);
  EXPECT_EQ(KillerTable[5].secondWeight, 10U);
  EXPECT_EQ(KillerTable[5].first, noMove);
}

TEST_F(MoveOrder, TheKillerWithTheSmallerWeightIsReplaced) {
  AddKiller(5, kingPawn, 10);
  AddKiller(5, queenPawn, 20);  // 0 < 10: first slot
  EXPECT_EQ(KillerTable[5].first, queenPawn);
  AddKiller(5, flankKnight, 30);  // 20 >= 10: second slot
  EXPECT_EQ(KillerTable[5].second, flankKnight);
  EXPECT_EQ(KillerTable[5].secondWeight, 30U);
  AddKiller(5, otherKnight, 40);  // 20 < 30: first slot
  EXPECT_EQ(KillerTable[5].first, otherKnight);
}

TEST_F(MoveOrder, AKnownKillerKeepsItsWeight) {
  AddKiller(5, kingPawn, 10);
  AddKiller(5, queenPawn, 20);
  AddKiller(5, queenPawn | checkMark, 30);
  AddKiller(5, kingPawn, 40);
  EXPECT_EQ(KillerTable[5].firstWeight, 20U);
  EXPECT_EQ(KillerTable[5].secondWeight, 10U);
}

TEST_F(MoveOrder, KillersOfPliesPastTheTableShareTheLastEntry) {
  AddKiller(999, kingPawn, 1);
  AddKiller(5000, queenPawn, 2);
  EXPECT_EQ(KillerTable[999].second, kingPawn);
  EXPECT_EQ(KillerTable[999].first, queenPawn);
  AddKiller(-3, flankKnight, 1);
  EXPECT_EQ(KillerTable[0].second, flankKnight);
}

TEST_F(MoveOrder, TheBonusIsTheSquareOfTheDepth) {
  AddHistoryBonus(kingPawn, 7, white);
  EXPECT_EQ(HistoryTable[white][e2][e4], 49);
  EXPECT_EQ(HistoryTable[black][e2][e4], 0);
}

TEST_F(MoveOrder, PassingTheLimitHalvesEveryEntryOfBothSides) {
  HistoryTable[white][e2][e4] = 9999;
  HistoryTable[black][0][1] = -301;
  AddHistoryBonus(kingPawn, 1, white);
  EXPECT_EQ(HistoryTable[white][e2][e4], 10000);  // at the limit nothing happens
  AddHistoryBonus(kingPawn, 1, white);
  EXPECT_EQ(HistoryTable[white][e2][e4], 5000);
  EXPECT_EQ(HistoryTable[black][0][1], -150);  // rounds toward zero
}

TEST_F(MoveOrder, TheMalusSparesTheBestMoveAndCountsRepeats) {
  const Move tried[] = {queenPawn, kingPawn, flankKnight, flankKnight};
  AddHistoryMalus(tried, 4, kingPawn | checkMark, 3, white);
  EXPECT_EQ(HistoryTable[white][d2][d4], -9);
  EXPECT_EQ(HistoryTable[white][e2][e4], 0);
  EXPECT_EQ(HistoryTable[white][6][21], -18);
}

TEST_F(MoveOrder, FallingBelowTheLimitHalvesToo) {
  HistoryTable[white][d2][d4] = -9999;
  HistoryTable[black][3][4] = 100;
  AddHistoryMalus(&queenPawn, 1, noMove, 1, white);
  EXPECT_EQ(HistoryTable[white][d2][d4], -10000);
  AddHistoryMalus(&queenPawn, 1, noMove, 1, white);
  EXPECT_EQ(HistoryTable[white][d2][d4], -5000);
  EXPECT_EQ(HistoryTable[black][3][4], 50);
}

}  // namespace
}  // namespace mirvo
