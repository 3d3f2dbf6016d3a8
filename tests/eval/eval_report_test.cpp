// The printed term table: its text, its point of view and when it appears.
#include "eval/eval_report.h"

#include "tests/eval/eval_fixture.h"

namespace mirvo {
namespace {

class EvalReport : public EvalTest {
 protected:
  std::string Report(std::int32_t score, float phase) {
    testing::internal::CaptureStdout();
    PrintEvalReport(record, score, phase);
    return testing::internal::GetCapturedStdout();
  }

  std::string PrintedBy(const std::string& fen) {
    testing::internal::CaptureStdout();
    ColdWithReport(fen);
    return testing::internal::GetCapturedStdout();
  }
};

constexpr char somePosition[] = "r3k3/8/8/8/8/8/P7/Q3K3 w -";

TEST_F(EvalReport, RowsAreInPawnsWithBlackNegated) {
  record.side = white;
  record.terms[0][materialTerm] = {1000, 1100};
  record.terms[1][materialTerm] = {400, 300};
  record.terms[0][develTerm] = {-15, 0};
  record.terms[1][kingsTerm] = {-7, 8};
  // Material: 0.75 x 800 + 0.25 x 600.
  EXPECT_EQ(Report(123, 0.25F),
            "  material:\t7.50\t|\t10.00\t11.00\t|\t-4.00\t-3.00\t|\n"
            "     pawns:\t0.00\t|\t0.00\t0.00\t|\t0.00\t0.00\t|\n"
            "   knights:\t0.00\t|\t0.00\t0.00\t|\t0.00\t0.00\t|\n"
            "   bishops:\t0.00\t|\t0.00\t0.00\t|\t0.00\t0.00\t|\n"
            "     rooks:\t0.00\t|\t0.00\t0.00\t|\t0.00\t0.00\t|\n"
            "    queens:\t0.00\t|\t0.00\t0.00\t|\t0.00\t0.00\t|\n"
            "     kings:\t-0.04\t|\t0.00\t0.00\t|\t0.07\t-0.08\t|\n"
            "     devel:\t-0.04\t|\t-0.15\t0.00\t|\t0.00\t0.00\t|\n"
            "Total:\t+1.23\n\n");
}

TEST_F(EvalReport, BlacksRowsAreSwappedButTheTotalIsNot) {
  record.side = black;
  record.terms[0][pawnsTerm] = {10, 20};
  record.terms[1][pawnsTerm] = {30, 40};
  const std::string report = Report(-250, 0.0F);
  EXPECT_NE(report.find("     pawns:\t0.20\t|\t0.30\t0.40\t|\t-0.10\t-0.20\t|\n"),
            std::string::npos);
  EXPECT_NE(report.find("Total:\t-2.50\n\n"), std::string::npos);
}

TEST_F(EvalReport, EvaluatingPrintsNothing) {
  testing::internal::CaptureStdout();
  Cold(somePosition);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST_F(EvalReport, FollowsAnEvaluationOfTheTerms) {
  const std::int32_t score = Cold(somePosition);
  EXPECT_NE(PrintedBy(somePosition).find("Total:"), std::string::npos);
  EXPECT_EQ(ColdWithReport(somePosition), score);
}

TEST_F(EvalReport, NotOnACacheHitNorWithInsufficientMaterial) {
  PrintedBy(somePosition);
  testing::internal::CaptureStdout();
  EvaluateWithReport(record, board, board.sideToMove);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(PrintedBy("7k/8/8/8/8/8/8/N6K w -"), "");
}

}  // namespace
}  // namespace mirvo
