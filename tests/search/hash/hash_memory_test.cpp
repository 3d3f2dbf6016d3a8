#include "search/hash/hash_memory.h"

#include <gtest/gtest.h>

#include "search/hash/hash_allocation.h"
#include "shell/base/large_pages.h"

#ifdef __linux__
#include "tests/support/memory_map.h"
#endif

namespace mirvo {
namespace {

constexpr std::size_t limitPages = prefaultLimit / largePageSize;

// So many nodes earn memory at any rate.
constexpr std::uint32_t manyNodes = 1U << 20;

void Allocate(HashTable& table, std::int32_t megabytes) {
  table.size = static_cast<std::uint32_t>(megabytes);
  HashAllocate(table);
}

/// Prefaults until nothing is left to do; returns the number of slices.
std::size_t CountSlices() {
  std::size_t nSlices = 0;
  while (HashPrefaultSlice()) ++nSlices;
  return nSlices;
}

class HashMemoryTest : public testing::Test {
 protected:
  ~HashMemoryTest() override {
    for (HashTable* table : {&EvalHashTable, &PawnHashTable, &TranspositionTable}) {
      HashRelease(*table);
    }
    CountSlices();
  }
};

std::size_t PagesPresent() {
  std::size_t nPages = 0;
  for (const HashTable* table : {&EvalHashTable, &PawnHashTable, &TranspositionTable}) {
    nPages += table->nPages - table->nMissing;
  }
  return nPages;
}

TEST_F(HashMemoryTest, AllocationOnlyReserves) {
  Allocate(TranspositionTable, 64);
  EXPECT_EQ(TranspositionTable.nPages, 33U);  // slots of 64 MB and tags of 1
  EXPECT_EQ(TranspositionTable.nMissing, 33U);
  EXPECT_TRUE(HashMemoryMissing());
}

TEST_F(HashMemoryTest, ATableSmallerThanALargePageIsThereAtOnce) {
  Allocate(TranspositionTable, 1);
  EXPECT_EQ(TranspositionTable.nPages, 0U);
  EXPECT_FALSE(HashMemoryMissing());
  EXPECT_FALSE(HashPrefaultSlice());
}

TEST_F(HashMemoryTest, AllThatMayBeHadBeforeUseCanBePrefaultedAtOnce) {
  Allocate(EvalHashTable, 64);
  Allocate(TranspositionTable, 64);
  HashPrefaultAll();
  EXPECT_FALSE(HashMemoryMissing());
  Allocate(TranspositionTable, 400);
  HashPrefaultAll();
  EXPECT_TRUE(HashMemoryMissing());
  EXPECT_FALSE(HashPrefaultSlice());
}

TEST_F(HashMemoryTest, ASliceIsOneLargePage) {
  Allocate(TranspositionTable, 8);
  const std::size_t nPages = TranspositionTable.nPages;
  for (std::size_t nMissing = nPages; nMissing-- > 0;) {
    EXPECT_TRUE(HashPrefaultSlice());
    EXPECT_EQ(TranspositionTable.nMissing, nMissing);
  }
  EXPECT_FALSE(HashPrefaultSlice());
  EXPECT_FALSE(HashMemoryMissing());
}

TEST_F(HashMemoryTest, ContentsStay) {
  Allocate(TranspositionTable, 8);
  for (std::uint64_t key = 1; key < TranspositionTable.size; key += 1000) {
    HashStore(TranspositionTable, key, 11, 50, exactBound, 5);
  }
  CountSlices();
  for (std::uint64_t key = 1; key < TranspositionTable.size; key += 1000) {
    Move move = noMove;
    std::int32_t score = 0;
    ASSERT_TRUE(HashProbe(TranspositionTable, key, move, score, -1, 1, 5)) << key;
    EXPECT_EQ(score, 50);
  }
}

TEST_F(HashMemoryTest, AShortTimeIsEnoughForOneSlice) {
  Allocate(TranspositionTable, 64);
  HashPrefaultFor(0);
  EXPECT_EQ(PagesPresent(), 1U);
  HashPrefaultFor(60000);
  EXPECT_FALSE(HashMemoryMissing());
}

TEST_F(HashMemoryTest, TagsOfAllTablesComeFirst) {
  Allocate(EvalHashTable, 1000);
  Allocate(TranspositionTable, 500);
  // The last page with slots of each table has tags as well.
  const std::size_t nTagPages = 8 + 4;
  for (std::size_t i = 0; i < nTagPages; ++i) HashPrefaultSlice();
  for (const HashTable* table : {&EvalHashTable, &TranspositionTable}) {
    EXPECT_LE(table->nMissing * largePageSize, table->size * sizeof(HashEntry));
  }
}

TEST_F(HashMemoryTest, TheSmallestTableIsCompleteFirst) {
  Allocate(EvalHashTable, 20);
  Allocate(PawnHashTable, 4);
  Allocate(TranspositionTable, 12);
  while (TranspositionTable.nMissing != 0) HashPrefaultSlice();
  EXPECT_EQ(PawnHashTable.nMissing, 0U);
  EXPECT_GT(EvalHashTable.nMissing, 8U);
}

TEST_F(HashMemoryTest, TablesOfTheDefaultSizesAreWithinTheLimit) {
  Allocate(EvalHashTable, 100);
  Allocate(PawnHashTable, 30);
  Allocate(TranspositionTable, 100);
  const std::size_t nPages =
      EvalHashTable.nPages + PawnHashTable.nPages + TranspositionTable.nPages;
  EXPECT_LE(nPages, limitPages);
}

TEST_F(HashMemoryTest, NoMoreThanTheLimitComesUnusedAndUseEarnsMore) {
  for (HashTable* table : {&EvalHashTable, &PawnHashTable, &TranspositionTable}) {
    Allocate(*table, 4095);
  }
  EXPECT_EQ(CountSlices(), limitPages);
  EXPECT_EQ(PagesPresent(), limitPages);
  HashNoteUse(10000);
  EXPECT_FALSE(HashPrefaultSlice());
  HashNoteUse(10000);
  const std::size_t nEarned = CountSlices();
  EXPECT_GT(nEarned, 0U);
  EXPECT_LT(nEarned, 40U);
}

TEST_F(HashMemoryTest, WhatWasEarnedEndsWithANewAllocation) {
  Allocate(TranspositionTable, 250);
  HashNoteUse(manyNodes);
  Allocate(EvalHashTable, 1);
  EXPECT_EQ(CountSlices(), limitPages);
  EXPECT_TRUE(HashMemoryMissing());
}

TEST_F(HashMemoryTest, MemoryOfASmallTableIsGivenBackAtOnce) {
  Allocate(TranspositionTable, 8);
  HashRelease(TranspositionTable);
  EXPECT_FALSE(HashPrefaultSlice());
}

TEST_F(HashMemoryTest, MemoryOfALargeTableIsGivenBackInSlicesBeforeAnyComes) {
  Allocate(TranspositionTable, 64);
  Allocate(TranspositionTable, 32);
  const std::size_t nPages = TranspositionTable.nPages;
  std::size_t nSlices = 0;
  while (TranspositionTable.nMissing == nPages) {
    ASSERT_TRUE(HashPrefaultSlice());
    ++nSlices;
  }
  EXPECT_GT(nSlices, 1U);
  EXPECT_EQ(CountSlices(), nPages - 1);
}

TEST_F(HashMemoryTest, AnyNumberOfLargeTablesCanBeGivenBack) {
  for (int i = 0; i < 30; ++i) {
    Allocate(TranspositionTable, 64);
    HashStore(TranspositionTable, 99, 7, 1, exactBound, 3);
  }
  HashRelease(TranspositionTable);
  EXPECT_GT(CountSlices(), 0U);
}

#ifdef __linux__
std::size_t MissingPages(const HashTable& table) {
  return test::MissingPages(table.entries, table.size * sizeof(HashEntry)) +
         test::MissingPages(table.tags, table.size);
}

TEST_F(HashMemoryTest, TheSystemHasProvidedAllSlicesAndNothingElse) {
  Allocate(TranspositionTable, 8);
  const std::size_t nSmallPages = MissingPages(TranspositionTable);
  EXPECT_GT(nSmallPages, 2000U);
  HashClear(TranspositionTable);
  HashResetSearch(TranspositionTable);
  HashStore(TranspositionTable, 99, 7, 1, exactBound, 3);
  // Reading untouched tags maps the system's shared zero page.
  constexpr std::size_t nTagPages = 33;
  EXPECT_GE(MissingPages(TranspositionTable), nSmallPages - nTagPages - 1);
  CountSlices();
  EXPECT_EQ(MissingPages(TranspositionTable), 0U);
}

TEST_F(HashMemoryTest, LargePagesAreAskedForSliceBySlice) {
  if (!test::KnowsLargePages()) GTEST_SKIP() << "no large pages on this system";
  Allocate(TranspositionTable, 64);
  const HashEntry* const first = TranspositionTable.entries;
  const std::uint8_t* const last = TranspositionTable.tags + TranspositionTable.size - 1;
  EXPECT_FALSE(test::AsksForLargePages(last));
  HashPrefaultSlice();
  EXPECT_TRUE(test::AsksForLargePages(last));
  EXPECT_FALSE(test::AsksForLargePages(first));
  CountSlices();
  EXPECT_TRUE(test::AsksForLargePages(first));
}
#endif

}  // namespace
}  // namespace mirvo
