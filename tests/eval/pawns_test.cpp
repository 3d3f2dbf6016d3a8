// Pawn structure: each rule in a small position worked out by hand.
#include "eval/pawns.h"
#include "tests/eval/eval_fixture.h"

namespace mirvo {
namespace {

class Pawns : public EvalTest {
 protected:
  /// The pawn term alone, from an empty record.
  ScorePair Term(const std::string& placement, int side = white) {
    SetUp3(placement + " w -");
    record = EvalRecord{};
    record.board = &board;
    return EvaluatePawns(record, side);
  }
};

struct PawnCase {
  const char* name;
  const char* placement;
  ScorePair expected;
};

TEST_F(Pawns, WhiteStructuresWorkedOutByHand) {
  const PawnCase cases[] = {
      // Square 20/20, isolated -25, unopposed 10.
      {"lone e pawn", "8/8/8/8/4P3/8/8/8", {5, 5}},
      // d3 0/15, e4 20/20; both unopposed and not isolated (20 each); e4 protected 10.
      {"protected pair", "8/8/8/8/4P3/3P4/8/8", {70, 85}},
      {"unprotected pair", "8/8/8/8/3PP3/8/8/8", {80, 80}},
      // e4 5/5; e2 square -20, -25 by count, -5 no rook, -25 isolated, -10 both,
      // unopposed 3.
      {"doubled and isolated", "8/8/8/8/4P3/8/4P3/8", {-77, -77}},
      {"doubled with a rook", "8/8/8/8/4P3/8/4P3/R7", {-72, -72}},
      {"doubled with a queen only", "8/8/8/8/4P3/8/4P3/Q7", {-77, -77}},
      // e3 0/15 instead of -20/-20, and -5 for leaving the second rank.
      {"doubled pawn advanced", "8/8/8/8/4P3/4P3/8/8", {-62, -47}},
      // Both opposed (-13), an enemy pawn ahead of the rear one (-10).
      {"doubled behind an enemy pawn", "8/8/4p3/8/4P3/8/4P3/8", {-100, -100}},
      // a4 0/20 -15 +10; a2 5/5 -25 -5 -15 +3 without the extra -10.
      {"doubled and isolated on the a file", "8/8/8/8/P7/8/P7/8", {-42, -22}},
      {"doubled and isolated on the h file", "8/8/8/8/7P/8/7P/8", {-42, -22}},
      // b4 0/20 -20 +10; b2 10/10 -25 -5 -20 -10 +3.
      {"doubled and isolated on the b file", "8/8/8/8/1P6/8/1P6/8", {-57, -37}},
      {"doubled and isolated on the g file", "8/8/8/8/6P1/8/6P1/8", {-57, -37}},
      // Ranks 10/10 and 0/15; eight pawns unopposed (20), the rear e pawn 3 + 10 and
      // -5 as with eight pawns; e3 protected 10.
      {"nine pawns count as eight", "8/8/8/8/8/4P3/PPPPPPPP/R7", {188, 203}},
      // Isolated -25, square 20; d6 opposes the pawn and guards e5.
      {"backward isolated pawn", "8/8/3p4/8/4P3/8/8/8", {-15, -25}},
      {"next square not guarded", "8/3p4/8/8/4P3/8/8/8", {-5, -5}},
      {"next square defended", "8/8/3p4/8/3PP3/8/8/8", {40, 40}},
      {"own pawn behind", "8/8/3p4/8/4P3/3P4/8/8", {30, 45}},
      // e4 20 -10/-20; f5 10/25 protected 10, free 10 + 10.
      {"own neighbour ahead does not help", "8/8/3p4/5P2/4P3/8/8/8", {50, 55}},
      {"pawn on its last rank", "4P3/8/8/8/8/8/8/8", {-15, -15}},
      {"pawn on its first rank", "8/8/8/8/8/8/8/4P3", {-15, -15}},
  };
  for (const PawnCase& test : cases) {
    EXPECT_EQ(Term(test.placement), test.expected) << test.name;
  }
}

TEST_F(Pawns, IsolatedAmountDependsOnTheFile) {
  // Square on the fourth rank, isolated, unopposed 10.
  const char* placements[] = {"8/8/8/8/P7/8/8/8",  "8/8/8/8/1P6/8/8/8", "8/8/8/8/2P5/8/8/8",
                              "8/8/8/8/3P4/8/8/8", "8/8/8/8/4P3/8/8/8", "8/8/8/8/5P2/8/8/8",
                              "8/8/8/8/6P1/8/8/8", "8/8/8/8/7P/8/8/8"};
  const ScorePair expected[] = {{-5, 15}, {-10, 10}, {-10, 10}, {5, 5},
                                {5, 5},   {-10, 10}, {-10, 10}, {-5, 15}};
  for (int file = 0; file < 8; ++file) {
    EXPECT_EQ(Term(placements[file]), expected[file]) << file;
  }
}

TEST_F(Pawns, BlackReadsTheSameRulesFromItsOwnSide) {
  EXPECT_EQ(Term("8/8/8/4p3/8/8/8/8", black), (ScorePair{5, 5}));
  EXPECT_EQ(Term("8/4p3/8/4p3/8/8/8/8", black), (ScorePair{-77, -77}));
  EXPECT_EQ(Term("8/8/4p3/4p3/8/8/8/8", black), (ScorePair{-62, -47}));
  EXPECT_EQ(Term("8/8/8/4p3/8/3P4/8/8", black), (ScorePair{-15, -25}));
  EXPECT_EQ(Term("8/8/8/8/8/8/8/4p3", black), (ScorePair{-15, -15}));
}

TEST_F(Pawns, SetsHoldPassedAndIsolatedPawns) {
  Term("8/8/3p4/8/P3P3/4P3/8/8");
  EXPECT_EQ(record.passed[white], Bit(SquareAt(3, 0)));
  EXPECT_EQ(record.isolated[white],
            Bit(SquareAt(3, 0)) | Bit(SquareAt(3, 4)) | Bit(SquareAt(2, 4)));
  EXPECT_EQ(record.passed[black], 0U);
  EXPECT_EQ(record.isolated[black], 0U);
}

TEST_F(Pawns, OnlyTheFrontPawnOfADoubledPairIsPassed) {
  Term("8/8/8/8/4P3/8/4P3/8");
  EXPECT_EQ(record.passed[white], Bit(SquareAt(3, 4)));
}

TEST_F(Pawns, AnEnemyPawnBesideIsOutsideTheSpan) {
  Term("8/8/8/8/3pP3/8/8/8");
  EXPECT_EQ(record.passed[white], Bit(SquareAt(3, 4)));
  Term("8/8/8/3p4/4P3/8/8/8");
  EXPECT_EQ(record.passed[white], 0U);
}

}  // namespace
}  // namespace mirvo
