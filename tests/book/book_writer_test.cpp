#include "book/book_writer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "book/book_file.h"
#include "tests/book/book_fixture.h"

namespace mirvo {
namespace {

class BookWriterTest : public BookTest {
 protected:
  // An entry whose moves are a1a1 to a1h1, which differ in the target square.
  BookEntry& Entry(std::uint64_t key, const std::vector<std::pair<int, int>>& hitsAndWeights) {
    BookEntry& entry = book.entries[book.count++];
    entry.key = key;
    entry.moveCount = 0;
    int to = 0;
    for (const auto& [hits, weight] : hitsAndWeights) {
      AppendMove(entry, BuildMove(0, to++, white, rook), hits, weight);
    }
    return entry;
  }
  static std::vector<int> Targets(const BookEntry& entry) {
    std::vector<int> targets;
    for (int i = 0; i < entry.moveCount; ++i) targets.push_back(ToSquare(entry.moves[i]));
    return targets;
  }
  static std::vector<std::int32_t> Weights(const BookEntry& entry) {
    return {entry.weights, entry.weights + entry.moveCount};
  }
};

TEST_F(BookWriterTest, CleaningDropsMovesWithFewHits) {
  book.minHits = 3;
  BookEntry& entry = Entry(1, {{2, 9}, {3, 9}, {2, 9}, {4, 9}});
  CleanBook(book);
  EXPECT_EQ(Targets(entry), (std::vector<int>{1, 3}));
  EXPECT_EQ(entry.hits[0], 3);
  EXPECT_EQ(entry.hits[1], 4);
}

TEST_F(BookWriterTest, CleaningDropsMovesWithoutWeight) {
  BookEntry& entry = Entry(1, {{1, 5}, {1, 0}, {1, 7}});
  CleanBook(book);
  EXPECT_EQ(Targets(entry), (std::vector<int>{0, 2}));
  EXPECT_EQ(Weights(entry), (std::vector<std::int32_t>{5, 7}));
}

TEST_F(BookWriterTest, CleaningDoesNotExamineTheMoveThatSlidIn) {
  book.minHits = 2;
  BookEntry& entry = Entry(1, {{1, 5}, {1, 6}, {1, 7}, {1, 8}, {9, 9}});
  CleanBook(book);
  // CleanBook examines places 0, 1 and 2, where moves 0, 2 and 4 are by then.
  EXPECT_EQ(Targets(entry), (std::vector<int>{1, 3, 4}));
}

TEST_F(BookWriterTest, TheMoveThatSlidInIsStillLeftOutOfTheFile) {
  book.minHits = 2;
  Entry(1, {{1, 5}, {1, 6}, {2, 7}});
  CleanBook(book);
  EXPECT_EQ(book.entries[0].moveCount, 2);
  const std::string path = scratch.Path("a.bk");
  EXPECT_EQ(WriteBook(book, path.c_str()), 1);
  EXPECT_EQ(ReadBytes(path), RecordBytes(1, FileMove("a1c1"), 7));
}

TEST_F(BookWriterTest, AMoveWithoutWeightThatSlidInIsWritten) {
  Entry(1, {{1, 0}, {1, 0}});
  CleanBook(book);
  const std::string path = scratch.Path("a.bk");
  EXPECT_EQ(WriteBook(book, path.c_str()), 1);
  EXPECT_EQ(ReadBytes(path), RecordBytes(1, FileMove("a1b1"), 0));
}

TEST_F(BookWriterTest, CleaningDropsAllPositionsWithoutMoves) {
  Entry(1, {});
  Entry(2, {{1, 1}});
  Entry(3, {});
  Entry(4, {{1, 0}});
  Entry(5, {{1, 5}});
  EXPECT_EQ(FindEntry(book, 5), 4);
  CleanBook(book);
  ASSERT_EQ(book.count, 2);
  EXPECT_EQ(book.entries[0].key, 2U);
  EXPECT_EQ(book.entries[1].key, 5U);
  EXPECT_EQ(book.entries[1].weights[0], 5);
  // The index follows.
  EXPECT_EQ(FindEntry(book, 5), 1);
  EXPECT_EQ(FindEntry(book, 1), -1);
}

// As many positions as before are no reason to trust the index: the empty entry
// that merging begins with may have taken the place of one that was dropped.
TEST_F(BookWriterTest, CleaningMovesPositionsInTheIndexToo) {
  Entry(1, {{1, 0}});
  Entry(2, {{1, 5}});
  Entry(3, {{1, 6}});
  EXPECT_EQ(FindEntry(book, 3), 2);
  CleanBook(book);
  Entry(4, {{1, 7}});
  ASSERT_EQ(book.count, 3);
  EXPECT_EQ(FindEntry(book, 1), -1);
  EXPECT_EQ(FindEntry(book, 2), 0);
  EXPECT_EQ(FindEntry(book, 3), 1);
  EXPECT_EQ(FindEntry(book, 4), 2);
}

TEST_F(BookWriterTest, CleaningAnEmptyBookLeavesItEmpty) {
  CleanBook(book);
  EXPECT_EQ(book.count, 0);
}

struct NormalCase {
  const char* name;
  std::vector<std::int32_t> before;
  std::vector<std::int32_t> after;
};

class NormalizeTest : public BookWriterTest, public testing::WithParamInterface<NormalCase> {};

TEST_P(NormalizeTest, ScalesToTheFullWeight) {
  BookEntry& entry = Entry(1, {});
  for (const std::int32_t weight : GetParam().before) AppendMove(entry, noMove, 1, weight);
  NormalizeBook(book);
  EXPECT_EQ(Weights(entry), GetParam().after);
}

// By hand: weight / total in single precision, times 65535, truncated. For
// 1/3 the nearest single is 0.3333333433, which gives 21845.0007, rounded to
// 21845; for 2/3 it is 0.6666666865, giving 43690.0013.
INSTANTIATE_TEST_SUITE_P(
    Totals, NormalizeTest,
    testing::Values(NormalCase{"Alone", {2}, {65535}}, NormalCase{"Halves", {7, 7}, {32767, 32767}},
                    NormalCase{"Thirds", {1, 2}, {21845, 43690}},
                    NormalCase{"Truncates", {1, 3}, {16383, 49151}},
                    NormalCase{"Zeros", {0, 0}, {0, 0}},
                    NormalCase{"Small", {1, 65535}, {0, 65534}},
                    NormalCase{"Large", {2147483647, 2147483647}, {32767, 32767}},
                    NormalCase{"Empty", {}, {}}),
    CaseName());

TEST_F(BookWriterTest, SortsByUnsignedKey) {
  Entry(0x8000000000000000ULL, {{1, 1}});
  Entry(5, {{1, 2}});
  Entry(0xFFFFFFFFFFFFFFFFULL, {{1, 3}});
  Entry(0, {{1, 4}});
  SortBook(book);
  const std::vector<std::int32_t> expected = {4, 2, 1, 3};
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(book.entries[i].weights[0], expected[static_cast<std::size_t>(i)]) << i;
  }
  EXPECT_EQ(FindEntry(book, 5), 1);
}

TEST_F(BookWriterTest, SortsAsTheExchangeSortDoes) {
  std::mt19937 random(11);
  std::vector<std::pair<std::uint64_t, std::int32_t>> expected;
  for (std::int32_t i = 0; i < 700; ++i) {
    const std::uint64_t key = random() % 150;
    Entry(key, {{1, i}});
    expected.emplace_back(key, i);
  }
  for (std::size_t pass = 0; pass < expected.size(); ++pass) {
    for (std::size_t i = 0; i + 1 < expected.size(); ++i) {
      if (expected[i].first > expected[i + 1].first) std::swap(expected[i], expected[i + 1]);
    }
  }
  SortBook(book);
  for (std::size_t i = 0; i < expected.size(); ++i) {
    ASSERT_EQ(book.entries[i].key, expected[i].first) << i;
    ASSERT_EQ(book.entries[i].weights[0], expected[i].second) << i;
  }
}

TEST_F(BookWriterTest, SortsAFullBook) {
  std::mt19937_64 random(12);
  for (std::int32_t i = 0; i < bookCapacity; ++i) Entry(random(), {{1, i}});
  SortBook(book);
  for (std::int32_t i = 1; i < bookCapacity; ++i) {
    ASSERT_LT(book.entries[i - 1].key, book.entries[i].key) << i;
  }
}

TEST_F(BookWriterTest, WritesRecordsInOrder) {
  Entry(7, {{1, 1}, {1, 65536 + 2}});
  AppendEntry(9, Word("e8g8", black, king), 1, 65535);
  const std::string path = scratch.Path("a.bk");
  EXPECT_EQ(WriteBook(book, path.c_str()), 3);
  EXPECT_EQ(ReadBytes(path), RecordBytes(7, FileMove("a1a1"), 1) +
                                 RecordBytes(7, FileMove("a1b1"), 2) +
                                 RecordBytes(9, FileMove("e8h8"), 65535));
}

TEST_F(BookWriterTest, AnOutputFileThatCannotBeOpenedIsNotReported) {
  Entry(7, {{1, 1}});
  const std::string printed =
      Printed([&] { EXPECT_EQ(WriteBook(book, scratch.Path("no/such/folder/a.bk").c_str()), 0); });
  EXPECT_EQ(printed, "");
}

TEST_F(BookWriterTest, ReadsBackWhatItWrote) {
  std::mt19937_64 random(13);
  for (std::uint64_t key = 1; key <= 300; ++key) {
    BookEntry& entry = Entry(key * 0x0123456789ABCDEFULL, {});
    const int nMoves = 1 + static_cast<int>(random() % 20);
    for (int i = 0; i < nMoves; ++i) {
      const int from = static_cast<int>(random() % 63) + 1;
      AppendMove(entry, BuildMove(from == At("e1") || from == At("e8") ? 0 : from, i, white, pawn),
                 1, static_cast<std::int32_t>(random() % 65536));
    }
  }
  const std::string path = scratch.Path("a.bk");
  WriteBook(book, path.c_str());
  OpeningBook copy;
  ASSERT_TRUE(CreateOpeningBook(copy));
  ASSERT_TRUE(LoadBook(copy, path.c_str(), true));
  ASSERT_EQ(copy.count, book.count);
  for (std::int32_t i = 0; i < book.count; ++i) {
    EXPECT_EQ(copy.entries[i].key, book.entries[i].key);
    EXPECT_EQ(Targets(copy.entries[i]), Targets(book.entries[i]));
    EXPECT_EQ(Weights(copy.entries[i]), Weights(book.entries[i]));
  }
  DestroyOpeningBook(copy);
}

}  // namespace
}  // namespace mirvo
