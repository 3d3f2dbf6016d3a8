#include "board/geometry_tables.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/support/board_support.h"

namespace mirvo {
namespace {

class GeometryTables : public testing::Test {
 protected:
  GeometryTables() { test::PrepareTables(); }
};

int Files(int a, int b) { return std::abs(a % 8 - b % 8); }
int Ranks(int a, int b) { return std::abs(a / 8 - b / 8); }

TEST_F(GeometryTables, DistancesBetweenAllSquares) {
  for (int a = 0; a < nSquares; ++a) {
    for (int b = 0; b < nSquares; ++b) {
      ASSERT_EQ(ManhattanDistance[a][b], Files(a, b) + Ranks(a, b));
      ASSERT_EQ(ChebyshevDistance[a][b], Files(a, b) > Ranks(a, b) ? Files(a, b) : Ranks(a, b));
    }
  }
  EXPECT_EQ(ManhattanDistance[0][63], 14);
  EXPECT_EQ(ChebyshevDistance[0][63], 7);
  EXPECT_EQ(ManhattanDistance[27][27], 0);
}

TEST_F(GeometryTables, ManhattanWithinHoldsTheSquareItself) {
  for (int square = 0; square < nSquares; ++square) {
    for (int radius = 1; radius <= 7; ++radius) {
      Bitboard expected = 0;
      for (int other = 0; other < nSquares; ++other) {
        if (Files(square, other) + Ranks(square, other) <= radius) expected |= Bit(other);
      }
      ASSERT_EQ(ManhattanWithin[square][radius], expected) << square << " radius " << radius;
    }
  }
  EXPECT_EQ(test::NamesOf(ManhattanWithin[0][1]), "a1 b1 a2");
}

TEST_F(GeometryTables, FrontSpansReachTheBoardEdges) {
  for (int square = 0; square < nSquares; ++square) {
    Bitboard above = 0;
    Bitboard below = 0;
    for (int other = 0; other < nSquares; ++other) {
      if (Files(square, other) > 1) continue;
      if (other / 8 > square / 8) above |= Bit(other);
      if (other / 8 < square / 8) below |= Bit(other);
    }
    EXPECT_EQ(FrontSpanWhite[square], above);
    EXPECT_EQ(FrontSpanBlack[square], below);
    EXPECT_EQ(FrontSpan(white, square), above);
    EXPECT_EQ(FrontSpan(black, square), below);
  }
  EXPECT_EQ(test::NamesOf(FrontSpanWhite[test::Square("a6")]), "a7 b7 a8 b8");
  EXPECT_EQ(FrontSpanWhite[test::Square("d8")], 0U);
  EXPECT_EQ(FrontSpanBlack[test::Square("d1")], 0U);
}

// A square lies on the path from a to b when it is on their line, b itself or
// between the two.
bool Between(int a, int square, int b) {
  const auto betweenOrEnd = [](int from, int x, int to) {
    return (from <= x && x <= to) || (to <= x && x <= from);
  };
  return betweenOrEnd(a % 8, square % 8, b % 8) && betweenOrEnd(a / 8, square / 8, b / 8);
}

TEST_F(GeometryTables, PathsLeaveOutTheStartAndKeepTheEnd) {
  for (int a = 0; a < nSquares; ++a) {
    for (int b = 0; b < nSquares; ++b) {
      Bitboard straight = 0;
      Bitboard diagonal = 0;
      for (int square = 0; square < nSquares; ++square) {
        if (square == a || !Between(a, square, b)) continue;
        if (Files(a, b) == 0 || Ranks(a, b) == 0) straight |= Bit(square);
        if (Files(a, b) == Ranks(a, b) && Files(a, square) == Ranks(a, square)) {
          diagonal |= Bit(square);
        }
      }
      ASSERT_EQ(RookPath[a][b], straight) << a << " " << b;
      ASSERT_EQ(BishopPath[a][b], diagonal) << a << " " << b;
    }
  }
  EXPECT_EQ(test::NamesOf(RookPath[0][3]), "b1 c1 d1");
  EXPECT_EQ(test::NamesOf(BishopPath[0][27]), "b2 c3 d4");
  EXPECT_EQ(RookPath[0][9], 0U);
  EXPECT_EQ(BishopPath[0][0], 0U);
}

}  // namespace
}  // namespace mirvo
