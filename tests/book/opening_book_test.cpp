#include "book/opening_book.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <vector>

#include "tests/book/book_fixture.h"

namespace mirvo {
namespace {

using OpeningBookTest = BookTest;

TEST_F(OpeningBookTest, IsEmptyWhenCreated) {
  EXPECT_EQ(book.loaded, 0U);
  EXPECT_EQ(book.count, 0);
  EXPECT_EQ(book.maxPlies, 40);
  EXPECT_EQ(book.minHits, 0);
  EXPECT_EQ(bookCapacity * sizeof(BookEntry), 51200000U);
  EXPECT_EQ(book.entries[bookCapacity - 1].moveCount, 0);
  EXPECT_EQ(FindEntry(book, 0), -1);
}

TEST_F(OpeningBookTest, FindsTheFirstOfEqualKeys) {
  AppendEntry(7, noMove, 1, 1);
  AppendEntry(9, noMove, 1, 1);
  AppendEntry(7, noMove, 1, 1);
  EXPECT_EQ(FindEntry(book, 7), 0);
  EXPECT_EQ(FindEntry(book, 9), 1);
  EXPECT_EQ(FindEntry(book, 8), -1);
}

TEST_F(OpeningBookTest, FindsEntriesAppendedAfterASearch) {
  AppendEntry(7, noMove, 1, 1);
  EXPECT_EQ(FindEntry(book, 11), -1);
  AppendEntry(11, noMove, 1, 1);
  EXPECT_EQ(FindEntry(book, 11), 1);
}

TEST_F(OpeningBookTest, DoesNotFindWhatAShorterBookNoLongerHolds) {
  for (const std::uint64_t key : {7, 11, 13}) AppendEntry(key, noMove, 1, 1);
  EXPECT_EQ(FindEntry(book, 13), 2);
  book.count = 1;
  EXPECT_EQ(FindEntry(book, 13), -1);
  EXPECT_EQ(FindEntry(book, 7), 0);
}

TEST_F(OpeningBookTest, FindsWhatALinearSearchFinds) {
  // Few different keys, so many are equal and many are absent.
  std::mt19937 random(20);
  std::vector<std::uint64_t> keys;
  for (int i = 0; i < 3000; ++i) {
    const std::uint64_t key = random() % 2000;
    keys.push_back(key);
    AppendEntry(key, noMove, 1, 1);
    const std::uint64_t wanted = random() % 2000;
    std::int32_t expected = -1;
    for (std::size_t k = keys.size(); k-- > 0;) {
      if (keys[k] == wanted) expected = static_cast<std::int32_t>(k);
    }
    ASSERT_EQ(FindEntry(book, wanted), expected);
  }
}

TEST_F(OpeningBookTest, TheIndexIsAsLargeAsTheBookNeeds) {
  const std::uint32_t fewest = book.index.nSlots;
  EXPECT_LE(fewest * sizeof(std::int32_t), 4096U);
  for (std::int32_t n = 1; n <= 5000; ++n) {
    AppendEntry(static_cast<std::uint64_t>(n % 4000), noMove, 1, 1);
    FindEntry(book, 0);
    ASSERT_GE(book.index.nSlots, 2U * static_cast<std::uint32_t>(n));
    ASSERT_LE(book.index.nSlots, std::max(fewest, 4U * static_cast<std::uint32_t>(n)));
  }
  for (std::int32_t i = 0; i < 4000; ++i) EXPECT_EQ(FindEntry(book, book.entries[i].key), i);
  ResetBookIndex(book.index);
  EXPECT_EQ(book.index.nSlots, fewest);
  EXPECT_EQ(FindEntry(book, book.entries[4500].key), 500);
}

TEST_F(OpeningBookTest, AnIndexThatWasResetHoldsNothing) {
  for (std::uint64_t key = 1; key <= 1000; ++key) AppendEntry(key, noMove, 1, 1);
  FindEntry(book, 1);
  book.count = 0;
  ResetBookIndex(book.index);
  for (std::uint64_t key = 1; key <= 1000; ++key) AppendEntry(1001 - key, noMove, 1, 1);
  for (std::int32_t i = 0; i < 1000; ++i) EXPECT_EQ(FindEntry(book, book.entries[i].key), i);
  EXPECT_EQ(FindEntry(book, 2000), -1);
}

TEST_F(OpeningBookTest, FindsEveryKeyOfAFullBook) {
  for (std::int32_t i = 0; i < bookCapacity; ++i) {
    AppendEntry(static_cast<std::uint64_t>(i) << 40, noMove, 1, 1);
  }
  for (std::int32_t i = 0; i < bookCapacity; ++i) {
    ASSERT_EQ(FindEntry(book, static_cast<std::uint64_t>(i) << 40), i);
  }
}

TEST_F(OpeningBookTest, AnAddedMoveThatIsThereGainsAHitAndTheWeight) {
  AppendEntry(7, Word("e2e4", white, pawn), 3, 10);
  AddBookMove(book, 0, Word("e2e4", white, pawn), 2);
  EXPECT_EQ(book.entries[0].moveCount, 1);
  EXPECT_EQ(book.entries[0].hits[0], 4);
  EXPECT_EQ(book.entries[0].weights[0], 12);
}

struct MoveIdentityCase {
  const char* name;
  Move first;
  Move second;
  bool same;
};

class MoveIdentity : public BookTest, public testing::WithParamInterface<MoveIdentityCase> {};

TEST_P(MoveIdentity, ComparesSquaresPromotionFlagAndKind) {
  AppendEntry(7, GetParam().first, 1, 5);
  AddBookMove(book, 0, GetParam().second, 1);
  EXPECT_EQ(book.entries[0].moveCount, GetParam().same ? 1 : 2);
}

INSTANTIATE_TEST_SUITE_P(
    Pairs, MoveIdentity,
    testing::Values(
        MoveIdentityCase{"Equal", Word("g1f3", white, knight), Word("g1f3", white, knight), true},
        MoveIdentityCase{"Source", Word("g1f3", white, knight), Word("e1f3", white, knight), false},
        MoveIdentityCase{"Target", Word("g1f3", white, knight), Word("g1h3", white, knight), false},
        MoveIdentityCase{"Kind", Word("g1f3", white, knight), Word("g1f3", white, bishop), false},
        MoveIdentityCase{"Colour", Word("g1f3", white, knight), Word("g1f3", black, knight), true},
        MoveIdentityCase{"CaptureFlag", Word("g1f3", white, knight),
                         Word("g1f3", white, knight) | captureFlag, true},
        MoveIdentityCase{"PromotionFlag", Word("a7a8", white, pawn),
                         Word("a7a8", white, pawn) | PromotionBits(queen), false},
        MoveIdentityCase{"PromotionKind", Word("a7a8", white, pawn) | PromotionBits(knight),
                         Word("a7a8", white, pawn) | PromotionBits(queen), true}),
    CaseName());

TEST_F(OpeningBookTest, ATwentyFirstMoveIsDropped) {
  AppendEntry(7, noMove, 1, 1);
  for (int i = 1; i < 21; ++i) {
    AddBookMove(book, 0, BuildMove(i, i, white, knight), i);
    EXPECT_EQ(book.entries[0].moveCount, i < 20 ? i + 1 : 20);
  }
  // The last place holds the twentieth move, and known moves still count.
  EXPECT_EQ(book.entries[0].weights[19], 19);
  AddBookMove(book, 0, BuildMove(19, 19, white, knight), 1);
  EXPECT_EQ(book.entries[0].weights[19], 20);
}

TEST_F(OpeningBookTest, SumsStopAtTheLargestNumber) {
  constexpr std::int32_t largest = std::numeric_limits<std::int32_t>::max();
  AppendEntry(7, noMove, largest, largest - 1);
  AddBookMove(book, 0, noMove, 65535);
  EXPECT_EQ(book.entries[0].hits[0], largest);
  EXPECT_EQ(book.entries[0].weights[0], largest);
}

TEST_F(OpeningBookTest, GrowingStopsAtTheLastPlaceButOne) {
  for (std::int32_t i = 0; i < 199998; ++i) {
    AppendEntry(static_cast<std::uint64_t>(i) + 1, noMove, 1, 1);
  }
  AddBookPosition(book, 500001, noMove, 1);
  EXPECT_EQ(book.count, 199999);
  AddBookPosition(book, 500002, noMove, 1);
  EXPECT_EQ(book.count, 199999);
  EXPECT_EQ(FindEntry(book, 500002), -1);
  // Known positions still take moves.
  AddBookPosition(book, 500001, noMove, 1);
  EXPECT_EQ(book.entries[199998].hits[0], 2);
}

TEST_F(OpeningBookTest, AnAddedPositionForgetsWhatStoodInItsPlace) {
  AppendEntry(7, noMove, 5, 5);
  book.count = 0;
  AddBookPosition(book, 8, Word("e2e4", white, pawn), 2);
  EXPECT_EQ(book.entries[0].key, 8U);
  EXPECT_EQ(book.entries[0].moveCount, 1);
  EXPECT_EQ(book.entries[0].hits[0], 1);
  EXPECT_EQ(book.entries[0].weights[0], 2);
}

TEST(OpeningBookWithoutMemory, HasNothingAndTakesNothing) {
  OpeningBook book;
  AddBookPosition(book, 7, noMove, 1);
  EXPECT_EQ(book.count, 0);
  EXPECT_EQ(FindEntry(book, 7), -1);
}

}  // namespace
}  // namespace mirvo
