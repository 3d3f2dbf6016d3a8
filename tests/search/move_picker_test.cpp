#include "search/move_picker.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "search/move_order.h"
#include "tests/support/search_support.h"

namespace mirvo {
namespace {

struct Picked {
  std::string text;
  std::int32_t score;
  PickerStage stage;
  Move move;
};

class Picker : public testing::Test {
 protected:
  Picker() { test::ColdStart(); }

  std::vector<Picked> PickAll(const std::string& position, Move hashMove = noMove) {
    test::SetPosition(board, position);
    MovePicker picker(board, hashMove, depth, iterationDepth);
    std::vector<Picked> all;
    Move move = noMove;
    std::int32_t score = 0;
    while (picker.Next(move, score)) {
      all.push_back({test::MoveText(move), score, picker.Stage(), move});
      EXPECT_EQ(picker.AtLateMoves(),
                picker.Stage() == stageQuiets || picker.Stage() == stageBadCaptures);
    }
    EXPECT_EQ(picker.Stage(), stageEnd);
    EXPECT_FALSE(picker.Next(move, score));
    return all;
  }

  static std::vector<std::string> Texts(const std::vector<Picked>& picked) {
    std::vector<std::string> texts;
    for (const Picked& p : picked) texts.push_back(p.text);
    return texts;
  }

  Board board;
  int depth = 3;
  int iterationDepth = 3;
};

// White: Ke1 Nc3 Pe4; black: Ke8 Qd5 Rb5 Pc6. The queen can be taken by pawn
// and knight, the rook by the knight.
constexpr char richPosition[] = "4k3/8/2p5/1r1q4/4P3/2N5/8/4K3 w -";

TEST_F(Picker, GoodCapturesComeByVictimThenAttacker) {
  const std::vector<Picked> all = PickAll(richPosition);
  ASSERT_GE(all.size(), 4U);
  EXPECT_EQ(all[0].text, "e4d5");
  EXPECT_EQ(all[0].score, 95);
  EXPECT_EQ(all[1].text, "c3d5");
  EXPECT_EQ(all[1].score, 94);
  EXPECT_EQ(all[2].text, "c3b5");
  EXPECT_EQ(all[2].score, 84);
  EXPECT_EQ(all[0].stage, stageGoodCaptures);
  EXPECT_EQ(all[3].stage, stageQuiets);
}

TEST_F(Picker, CapturesCarryTheirVictim) {
  const std::vector<Picked> all = PickAll(richPosition);
  EXPECT_EQ(CapturedKind(all[0].move), queen);
  EXPECT_EQ(CapturedKind(all[2].move), rook);
  EXPECT_TRUE(IsCapture(all[0].move));
}

TEST_F(Picker, AnEnPassantCaptureTakesAPawn) {
  const std::vector<Picked> all = PickAll("startpos moves e2e4 a7a6 e4e5 d7d5");
  EXPECT_EQ(all[0].text, "e5d6");
  EXPECT_EQ(all[0].score, 55);
  EXPECT_EQ(CapturedKind(all[0].move), pawn);
}

TEST_F(Picker, EqualCapturesKeepGenerationOrder) {
  // Two knights take two pawns: the higher square's captures come first.
  const std::vector<Picked> all = PickAll("4k3/8/8/1p3p2/3N2N1/8/8/4K3 w -");
  EXPECT_EQ(all[0].text, "d4f5");
  EXPECT_EQ(all[1].text, "d4b5");
}

TEST_F(Picker, LosingCapturesComeAfterQuietMoves) {
  // The rook takes a defended pawn.
  const std::vector<Picked> all = PickAll("4k3/8/2p5/3p4/8/8/8/3RK3 w -");
  EXPECT_EQ(all.back().text, "d1d5");
  EXPECT_EQ(all.back().score, -500);
  EXPECT_EQ(all.back().stage, stageBadCaptures);
}

TEST_F(Picker, LosingCapturesComeBySmallestLoss) {
  // Queen and rook can take a pawn that two others defend.
  const std::vector<Picked> all = PickAll("4k3/8/2p1p3/3p4/8/1Q6/8/3RK3 w -");
  ASSERT_GE(all.size(), 2U);
  EXPECT_EQ(all[all.size() - 2].text, "d1d5");
  EXPECT_EQ(all[all.size() - 2].score, -500);
  EXPECT_EQ(all.back().text, "b3d5");
  EXPECT_EQ(all.back().score, -1000);
}

TEST_F(Picker, ALosingCaptureOfARookComesBehindAPawnForAPawn) {
  // By victim the queen's capture would come first, but the rook is defended.
  const std::vector<Picked> all = PickAll("4k3/8/2p3p1/3r3P/8/8/8/3QK3 w -");
  EXPECT_EQ(all.front().text, "h5g6");
  EXPECT_EQ(all.front().score, 55);
  EXPECT_EQ(all[1].stage, stageQuiets);
  EXPECT_EQ(all.back().text, "d1d5");
  EXPECT_EQ(all.back().score, -500);
}

TEST_F(Picker, EqualLossesKeepGenerationOrder) {
  // Two rooks take two defended pawns: the higher square's capture comes first.
  const std::vector<Picked> all = PickAll("4k3/8/2p2p2/1p4p1/8/8/8/1R2K1R1 w -");
  ASSERT_GE(all.size(), 2U);
  EXPECT_EQ(all[all.size() - 2].text, "g1g5");
  EXPECT_EQ(all.back().text, "b1b5");
  EXPECT_EQ(all.back().score, -500);
}

TEST_F(Picker, TheHashMoveComesFirstAndAgainInItsStage) {
  const Move hashMove = BuildMove(4, 12, white, king);  // e1e2
  const std::vector<Picked> all = PickAll(richPosition, hashMove);
  EXPECT_EQ(all[0].text, "e1e2");
  EXPECT_EQ(all[0].score, 100000);
  EXPECT_EQ(all[0].stage, stageHashMove);
  const std::vector<std::string> texts = Texts(all);
  EXPECT_EQ(std::count(texts.begin(), texts.end(), "e1e2"), 2);
}

TEST_F(Picker, TheTablesOwnWordIsPlayed) {
  // Same squares and piece, another promotion and extra marks.
  const Move hashMove = BuildMove(52, 60, white, pawn) | PromotionBits(knight) | checkMark;
  const std::vector<Picked> all = PickAll("8/4P3/8/8/8/k7/8/4K3 w -", hashMove);
  EXPECT_EQ(all[0].move, hashMove);
}

TEST_F(Picker, AHashMoveThatCannotBePlayedIsDropped) {
  const Move hashMove = BuildMove(4, 20, white, king);  // e1e3
  const std::vector<std::string> texts = Texts(PickAll(richPosition, hashMove));
  EXPECT_EQ(std::count(texts.begin(), texts.end(), "e1e3"), 0);
  EXPECT_EQ(texts[0], "e4d5");
}

TEST_F(Picker, AHashCaptureIsFoundWithoutItsCapturedKind) {
  const Move hashMove = BuildMove(18, 33, white, knight) | captureFlag;  // c3b5
  EXPECT_EQ(PickAll(richPosition, hashMove)[0].text, "c3b5");
}

TEST_F(Picker, QuietMovesFollowHistory) {
  HistoryTable[white][4][12] = 50;   // e1e2
  HistoryTable[white][4][3] = 60;    // e1d1
  HistoryTable[white][4][13] = -70;  // e1f2
  const std::vector<Picked> all = PickAll("4k3/8/8/8/8/8/8/4K3 w -");
  EXPECT_EQ(all[0].text, "e1d1");
  EXPECT_EQ(all[0].score, 60);
  EXPECT_EQ(all[1].text, "e1e2");
  EXPECT_EQ(all.back().text, "e1f2");
  EXPECT_EQ(all.back().score, -70);
}

TEST_F(Picker, EqualQuietMovesKeepGenerationOrder) {
  EXPECT_EQ(Texts(PickAll("4k3/8/8/8/8/8/8/4K3 w -")),
            (std::vector<std::string>{"e1f2", "e1e2", "e1d2", "e1f1", "e1d1"}));
}

TEST_F(Picker, KillersStandAboveHistoryAndBelowThePreviousLine) {
  AddKiller(0, BuildMove(4, 12, white, king), 1);  // e1e2
  HistoryTable[white][4][3] = 9999;                // e1d1
  previousPv.length = 1;
  previousPv.moves[0] = BuildMove(4, 5, white, king);  // e1f1
  const std::vector<Picked> all = PickAll("4k3/8/8/8/8/8/8/4K3 w -");
  EXPECT_EQ(all[0].text, "e1f1");
  EXPECT_EQ(all[0].score, 10250);
  EXPECT_EQ(all[1].text, "e1e2");
  EXPECT_EQ(all[1].score, 10000);
  EXPECT_EQ(all[2].text, "e1d1");
}

TEST_F(Picker, AKillerThatIsAlsoThePreviousLineScoresAsKiller) {
  const Move move = BuildMove(4, 12, white, king);
  AddKiller(0, move, 1);
  previousPv.length = 1;
  previousPv.moves[0] = move;
  EXPECT_EQ(PickAll("4k3/8/8/8/8/8/8/4K3 w -")[0].score, 10000);
}

TEST_F(Picker, ThePreviousLineIsReadAtIterationDepthMinusNodeDepth) {
  previousPv.length = 3;
  previousPv.moves[2] = BuildMove(4, 5, white, king);
  iterationDepth = 5;
  EXPECT_EQ(PickAll("4k3/8/8/8/8/8/8/4K3 w -")[0].score, 10250);
  iterationDepth = 6;  // past the end
  EXPECT_EQ(PickAll("4k3/8/8/8/8/8/8/4K3 w -")[0].score, 0);
  iterationDepth = 2;  // before the beginning
  EXPECT_EQ(PickAll("4k3/8/8/8/8/8/8/4K3 w -")[0].score, 0);
}

TEST_F(Picker, PromotionsWithoutCaptureAreQuietMoves) {
  const std::vector<Picked> all = PickAll("8/4P3/8/8/8/k7/8/4K3 w -");
  for (const Picked& p : all) EXPECT_EQ(p.stage, stageQuiets);
  EXPECT_EQ(all[5].text, "e7e8q");
}

TEST_F(Picker, PeekingTellsTheNextMoveOfTheSameStageOnly) {
  test::SetPosition(board, richPosition);
  MovePicker picker(board, noMove, depth, iterationDepth);
  EXPECT_EQ(picker.Peek(), noMove);
  const std::vector<Picked> all = PickAll(richPosition);
  Move move = noMove;
  std::int32_t score = 0;
  for (std::size_t i = 0; i < all.size(); ++i) {
    ASSERT_TRUE(picker.Next(move, score));
    ASSERT_EQ(move, all[i].move);
    const bool stageGoesOn = i + 1 < all.size() && all[i + 1].stage == all[i].stage;
    EXPECT_EQ(picker.Peek(), stageGoesOn ? all[i + 1].move : noMove) << all[i].text;
  }
  EXPECT_FALSE(picker.Next(move, score));
  EXPECT_EQ(picker.Peek(), noMove);
}

TEST_F(Picker, NothingIsLostOfTheLongestMoveList) {
  const std::vector<Picked> all = PickAll("R6R/3Q4/1Q4Q1/4Q3/2Q4Q/Q4Q2/pp1Q4/kBNN1KB1 w -");
  EXPECT_EQ(all.size(), 218U);
}

TEST_F(Picker, MoreThanAHundredCapturesAreAllHandedOut) {
  // Queens among queens: every attacked square is occupied.
  const std::vector<Picked> all =
      PickAll("QqQqQqQq/qQqQqQqQ/QqQqQqQq/qQqQqQqQ/QqQqQqQq/qQqQqQqQ/QqQqQqQq/KQqQqQqk w -");
  EXPECT_GT(all.size(), 100U);
}

}  // namespace
}  // namespace mirvo
