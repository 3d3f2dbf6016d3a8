#include "search/reductions.h"

#include <gtest/gtest.h>

#include <cmath>

namespace mirvo {
namespace {

TEST(Reductions, FollowTheirFormulaInDoublePrecision) {
  BuildReductionTables();
  for (int row = 0; row < 64; ++row) {
    for (int column = 0; column < 64; ++column) {
      const double product = std::log(2.0 * row + 1.0) * std::log(column + 1.0);
      const double nonPv = product / 3.0 + 0.5;
      const double pv = product / 6.0 + 0.5;
      // Single precision may round differently only next to an integer.
      if (std::abs(nonPv - std::round(nonPv)) > 1e-5) {
        EXPECT_EQ(NonPvReductions[row][column], static_cast<int>(std::floor(nonPv)));
      }
      if (std::abs(pv - std::round(pv)) > 1e-5) {
        EXPECT_EQ(PvReductions[row][column], static_cast<int>(std::floor(pv)));
      }
    }
  }
}

// C libraries differ in the last bit of some logarithms, an error of about 1e-6
// here. No entry is that close to an integer, so the tables are equal everywhere.
TEST(Reductions, NoEntryDependsOnTheLastBitOfALogarithm) {
  for (int row = 1; row < 64; ++row) {
    for (int column = 1; column < 64; ++column) {
      const double product = std::log(2.0 * row + 1.0) * std::log(column + 1.0);
      for (const double value : {product / 3.0 + 0.5, product / 6.0 + 0.5}) {
        EXPECT_GT(std::abs(value - std::round(value)), 1e-5) << row << " " << column;
      }
    }
  }
}

TEST(Reductions, KnownEntries) {
  BuildReductionTables();
  EXPECT_EQ(NonPvReductions[0][63], 0);   // log 1 = 0
  EXPECT_EQ(NonPvReductions[3][3], 1);    // log 7 * log 4 / 3 = 0.90
  EXPECT_EQ(NonPvReductions[7][9], 2);    // log 15 * log 10 / 3 = 2.08
  EXPECT_EQ(NonPvReductions[63][63], 7);  // log 127 * log 64 / 3 = 6.72
  EXPECT_EQ(PvReductions[63][63], 3);     // half of it, 3.36
}

// A reduction of 0 means "not reduced", so no late move may have one, from the
// first move on that the searches reduce.
TEST(Reductions, EveryLateMoveIsReducedByAtLeastOnePly) {
  BuildReductionTables();
  for (int depth = 3; depth < 70; ++depth) {
    for (int number = 4; number < 70; ++number) EXPECT_GE(Reduction(false, depth, number), 1);
    for (int number = 6; number < 70; ++number) EXPECT_GE(Reduction(true, depth, number), 1);
  }
}

TEST(Reductions, DepthsAndMoveNumbersPastTheTableUseItsEdge) {
  BuildReductionTables();
  EXPECT_EQ(Reduction(false, 400, 250), NonPvReductions[63][63]);
  EXPECT_EQ(Reduction(true, 64, 3), PvReductions[63][3]);
  EXPECT_EQ(Reduction(true, -4, -1), PvReductions[0][0]);
}

}  // namespace
}  // namespace mirvo
