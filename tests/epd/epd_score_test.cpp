#include "epd/epd_score.h"

#include <string>

#include "gtest/gtest.h"

namespace mirvo {
namespace {

// White rook on a1, king on h1. Every answer below is a move of this position.
Verdict Judge(const char* operations, Move answer) {
  const Suite suite = ParseSuite(std::string("6k1/4Pppp/8/8/8/8/8/R6K w - - ") + operations);
  return JudgeAnswer(suite.at(0), answer);
}

const Move ra8 = BuildMove(0, 56, white, rook);
const Move kg1 = BuildMove(7, 6, white, king);
const Move e8 = BuildMove(52, 60, white, pawn) | PromotionBits(queen);

struct VerdictCase {
  const char* name;
  const char* operations;
  Move answer;
  bool correct;
  int points;
};

class Scoring : public testing::TestWithParam<VerdictCase> {};

TEST_P(Scoring, Judges) {
  const Verdict verdict = Judge(GetParam().operations, GetParam().answer);
  EXPECT_EQ(verdict.correct, GetParam().correct);
  EXPECT_EQ(verdict.points, GetParam().points);
}
INSTANTIATE_TEST_SUITE_P(
    Answers, Scoring,
    testing::Values(
        VerdictCase{"BestMove", "bm Ra8;", ra8, true, 0},
        VerdictCase{"OneOfSeveral", "bm Kg1 Ra8;", ra8, true, 0},
        VerdictCase{"OtherMove", "bm Kg1;", ra8, false, 0},
        VerdictCase{"NoBestMove", "acd 12;", ra8, false, 0},
        VerdictCase{"MoveToAvoidIsScoredAsBest", "am Ra8;", ra8, true, 0},
        VerdictCase{"FromAnotherSquare", "bm Ra8;", BuildMove(60, 56, white, rook), true, 0},
        VerdictCase{"NamedFromFileIsNotCompared", "bm Rda8;", ra8, true, 0},
        VerdictCase{"OtherPieceSameSquare", "bm Qa8;", ra8, false, 0},
        VerdictCase{"CheckAndMateSignsAreNotCompared", "bm Ra8#;", ra8 | checkMark | mateMark, true,
                    0},
        VerdictCase{"PromotionKindIsNotCompared", "bm e8=N;", e8, true, 0},
        VerdictCase{"CaptureIsNotCompared", "bm Rxa8;", ra8, true, 0},
        VerdictCase{"PointsOfTheBestMove", "bm Ra8; c0 \"Ra8=10, Kg1=3\";", ra8, true, 10},
        VerdictCase{"PointsOfAnotherMove", "bm Ra8; c0 \"Ra8=10, Kg1=3\";", kg1, false, 3},
        VerdictCase{"NoPointsForTheMove", "bm Ra8; c0 \"Ra7=10\";", kg1, false, 0},
        VerdictCase{"MatchingEntriesAddUp", "bm Ra8; c0 \"Ra8=3, Rda8=4\";", ra8, true, 7},
        VerdictCase{"CorrectIsCappedAtTen", "bm Ra8; c0 \"Ra8=25\";", ra8, true, 10},
        VerdictCase{"CorrectSumIsCappedAtTen", "bm Ra8; c0 \"Ra8=6, Ra8=6\";", ra8, true, 10},
        VerdictCase{"WrongWithTenKeepsThem", "bm Kg1; c0 \"Ra8=10\";", ra8, false, 10},
        VerdictCase{"WrongWithElevenLosesTen", "bm Kg1; c0 \"Ra8=11\";", ra8, false, 1},
        VerdictCase{"WrongWithTwelveLosesTen", "bm Kg1; c0 \"Ra8=12\";", ra8, false, 2},
        VerdictCase{"WrongWithThirtyLosesTenOnce", "bm Kg1; c0 \"Ra8=30\";", ra8, false, 20},
        VerdictCase{"NegativePointsStand", "bm Ra8; c0 \"Ra8=-5\";", ra8, true, -5},
        VerdictCase{"SumsSaturate", "bm Kg1; c0 \"Ra8=2147483647, Ra8=2147483647\";", ra8, false,
                    2147483637}),
    [](const auto& test) { return test.param.name; });

TEST(JudgeAnswer, NoMoveIsWrongEvenWhenASuiteTextReadsAsSquareA1) {
  EXPECT_FALSE(Judge("bm !!!;", noMove).correct);
  EXPECT_EQ(Judge("bm !!!; c0 \"!!!=5\";", noMove).points, 0);
}

}  // namespace
}  // namespace mirvo
