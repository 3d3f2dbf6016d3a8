#include "board/bits.h"

#include <gtest/gtest.h>

#include "tests/support/board_support.h"

namespace mirvo {
namespace {

// Bits counted one by one.
int SlowCount(Bitboard set) {
  int count = 0;
  for (int i = 0; i < 64; ++i) count += static_cast<int>(set >> i & 1);
  return count;
}

int SlowHighest(Bitboard set) {
  int highest = -1;
  for (int i = 0; i < 64; ++i) {
    if ((set >> i & 1) != 0) highest = i;
  }
  return highest;
}

class BitTables : public testing::Test {
 protected:
  BitTables() { test::PrepareTables(); }
};

TEST_F(BitTables, PopCount16CountsTheBitsOfItsIndex) {
  for (int value = 0; value < 65536; ++value) {
    ASSERT_EQ(PopCount16[value], SlowCount(static_cast<Bitboard>(value))) << value;
  }
}

TEST_F(BitTables, HighBit16MapsTheTopChunkToASquare) {
  for (int value = 1; value < 65536; ++value) {
    ASSERT_EQ(HighBit16[value], SlowHighest(static_cast<Bitboard>(value) << 48)) << value;
  }
}

TEST_F(BitTables, HighBit16OfNothingIs63) { EXPECT_EQ(HighBit16[0], 63); }

TEST_F(BitTables, SquareBitAndSquareClearAreComplements) {
  Bitboard expected = 1;
  for (int square = 0; square < nSquares; ++square, expected *= 2) {
    EXPECT_EQ(SquareBit[square], expected);
    EXPECT_EQ(SquareClear[square], 0xFFFFFFFFFFFFFFFFULL - expected);
  }
}

TEST(Bits, HighestSquareAndCountOfSets) {
  test::Random random(7);
  for (int i = 0; i < 2000; ++i) {
    // Sparse and dense sets alike.
    Bitboard set = random.Next() >> random.Below(64);
    if (i % 2 != 0) set &= random.Next() & random.Next();
    ASSERT_EQ(PopCount(set), SlowCount(set));
    if (set != 0) {
      ASSERT_EQ(HighestSquare(set), SlowHighest(set));
    }
  }
  EXPECT_EQ(PopCount(0), 0);
  EXPECT_EQ(PopCount(~Bitboard{0}), 64);
}

TEST(Bits, PopHighestEmptiesASetFromTheTop) {
  Bitboard set = test::Squares("a1 h1 e4 a8 h8");
  std::string order;
  while (set != 0) order += std::to_string(PopHighest(set)) + " ";
  EXPECT_EQ(order, "63 56 28 7 0 ");
}

}  // namespace
}  // namespace mirvo
