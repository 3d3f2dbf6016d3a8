#include "search/hash/hash_table.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "search/hash/hash_allocation.h"

namespace mirvo {
namespace {

class HashTableTest : public testing::Test {
 protected:
  HashTableTest() {
    table.size = 1;
    HashAllocate(table);
  }
  ~HashTableTest() override { HashRelease(table); }

  bool Probe(std::uint64_t wanted, std::int32_t alpha, std::int32_t beta, std::int32_t depth) {
    move = untouchedMove;
    score = untouchedScore;
    return HashProbe(table, wanted, move, score, alpha, beta, depth);
  }

  static constexpr Move untouchedMove = 0x7777;
  static constexpr std::int32_t untouchedScore = 4242;
  static constexpr std::uint64_t key = 0x123456789ABCDEF0ULL;
  // Another key of the same slot: 16384 slots, low word unchanged.
  static constexpr std::uint64_t rival = key ^ (1ULL << 40);

  HashTable table{};
  Move move = untouchedMove;
  std::int32_t score = untouchedScore;
};

std::uint32_t SlotsOf(std::int32_t megabytes) {
  HashTable table{};
  table.size = static_cast<std::uint32_t>(megabytes);
  HashAllocate(table);
  const std::uint32_t slots = table.size;
  const bool aligned = reinterpret_cast<std::uintptr_t>(table.entries) % 64 == 0;
  EXPECT_TRUE(aligned);
  EXPECT_NE(table.entries, nullptr);
  HashRelease(table);
  return slots;
}

TEST(MultiplyHigh, AgreesWithPlainArithmetic) {
  constexpr std::uint64_t words[] = {0, 1, 0xFFFFFFFF, 0x100000000, 0x8000000000000000, ~0ULL};
  constexpr std::uint32_t sizes[] = {0, 1, 16384, 1638400, 0x80000000, 0xFFFFFFFF};
  for (const std::uint64_t word : words) {
    for (const std::uint32_t size : sizes) {
      EXPECT_EQ(MultiplyHigh(word, size), MultiplyHighPlain(word, size)) << word << ' ' << size;
    }
  }
  std::uint64_t word = 0x9E3779B97F4A7C15;
  for (int i = 0; i < 10000; ++i) {
    word = word * 6364136223846793005ULL + 1442695040888963407ULL;
    const auto size = static_cast<std::uint32_t>(word >> 17);
    ASSERT_EQ(MultiplyHigh(word, size), MultiplyHighPlain(word, size)) << word << ' ' << size;
  }
}

TEST(HashAllocation, MegabytesGiveSlotsOf64Bytes) {
  EXPECT_EQ(SlotsOf(1), 16384U);
  EXPECT_EQ(SlotsOf(64), 1048576U);
  EXPECT_EQ(SlotsOf(100), 1638400U);
}

TEST(HashAllocation, SizesAreCountedIn32Bits) {
  EXPECT_EQ(SlotsOf(4097), 16384U);  // wraps to 1 MB
  EXPECT_EQ(SlotsOf(100000), ((100000U << 20) >> 6));
}

TEST(HashAllocation, ASizeThatGivesNoSlotsGivesASmallTable) {
  EXPECT_EQ(SlotsOf(0), minHashSlots);
  EXPECT_EQ(SlotsOf(4096), minHashSlots);
}

TEST(HashAllocation, NegativeSizesGetATable) { EXPECT_GT(SlotsOf(-5), 0U); }

TEST(HashAllocation, ReallocationEmptiesTheTable) {
  HashTable table{};
  table.size = 1;
  HashAllocate(table);
  HashStore(table, 99, 7, 1, exactBound, 3);
  table.size = 2;
  HashAllocate(table);
  EXPECT_EQ(table.size, 32768U);
  Move move = noMove;
  std::int32_t score = 0;
  EXPECT_FALSE(HashProbe(table, 99, move, score, -1, 1, 0));
  EXPECT_EQ(table.conflicts, 1U);
  HashRelease(table);
}

TEST(HashAllocation, AReleasedTableHasNoSlots) {
  HashTable table{};
  table.size = 1;
  HashAllocate(table);
  HashRelease(table);
  EXPECT_EQ(table.size, 0U);
  EXPECT_EQ(table.block, nullptr);
  EXPECT_EQ(table.entries, nullptr);
}

TEST(HashAllocation, InitialisingForgetsSlotsAndCounters) {
  HashTable table{};
  table.size = 1;
  HashAllocate(table);
  HashStore(table, 99, 7, 1, exactBound, 3);
  Move move = noMove;
  std::int32_t score = 0;
  EXPECT_FALSE(HashProbe(table, 98, move, score, -1, 1, 0));
  ASSERT_EQ(table.conflicts, 1U);
  HashInitialise(table);
  EXPECT_EQ(table.size, 0U);
  EXPECT_EQ(table.entries, nullptr);
  EXPECT_EQ(table.conflicts, 0U);
  EXPECT_EQ(table.lastKey, 0U);
}

TEST(HashIndexTest, IsTheLowWordModuloTheSlots) {
  for (const std::uint32_t megabytes : {1U, 3U, 7U, 30U, 100U, 4095U}) {
    HashTable table{};
    table.size = megabytes;
    HashAllocate(table);
    const std::uint64_t keys[] = {0,
                                  1,
                                  table.size - 1ULL,
                                  table.size,
                                  table.size + 1ULL,
                                  0xFFFFFFFFULL,
                                  0xFFFFFFFFFFFFFFFFULL,
                                  0x9D39247E33776D41ULL,
                                  0x123456789ABCDEF0ULL};
    for (const std::uint64_t key : keys) {
      EXPECT_EQ(HashIndex(table, key), static_cast<std::uint32_t>(key) % table.size);
    }
    HashRelease(table);
  }
}

TEST_F(HashTableTest, ProbeAndStoreRememberTheirSlot) {
  HashStore(table, key, 1, 2, exactBound, 3);
  EXPECT_EQ(table.lastKey, key);
  EXPECT_EQ(table.lastIndex, static_cast<std::int32_t>(HashIndex(table, key)));
  Probe(0x55, -1, 1, 1);
  EXPECT_EQ(table.lastKey, 0x55U);
  EXPECT_EQ(table.lastIndex, 0x55);
}

TEST_F(HashTableTest, AnUnknownKeyIsAConflictAndTouchesNothing) {
  EXPECT_FALSE(Probe(key, -100, 100, 1));
  EXPECT_EQ(table.conflicts, 1U);
  EXPECT_EQ(table.hits + table.misses, 0U);
  EXPECT_EQ(move, untouchedMove);
  EXPECT_EQ(score, untouchedScore);
}

TEST_F(HashTableTest, KeyZeroIsNeverStoredNorFound) {
  HashStore(table, 0, 5, 10, exactBound, 20);
  EXPECT_FALSE(Probe(0, -100, 100, 1));
  EXPECT_EQ(table.conflicts, 1U);
  EXPECT_EQ(table.entries[0].move, noMove);
}

TEST_F(HashTableTest, TooSmallADepthIsAMissThatHandsTheMoveBack) {
  HashStore(table, key, 11, 50, exactBound, 4);
  EXPECT_FALSE(Probe(key, -100, 100, 5));
  EXPECT_EQ(table.misses, 1U);
  EXPECT_EQ(move, 11U);
  EXPECT_EQ(score, untouchedScore);
}

TEST_F(HashTableTest, AnExactSlotGivesItsScoreWithoutTheMove) {
  HashStore(table, key, 11, 50, exactBound, 5);
  EXPECT_TRUE(Probe(key, -100, 100, 5));
  EXPECT_EQ(table.hits, 1U);
  EXPECT_EQ(score, 50);
  EXPECT_EQ(move, untouchedMove);
}

TEST_F(HashTableTest, AnUpperBoundDecidesAtOrBelowAlpha) {
  HashStore(table, key, 11, -100, upperBound, 5);
  EXPECT_TRUE(Probe(key, -100, 100, 5));
  EXPECT_EQ(score, -100);
  EXPECT_EQ(move, 11U);
  EXPECT_FALSE(Probe(key, -101, 100, 5));
  EXPECT_EQ(table.hits, 1U);
  EXPECT_EQ(table.misses, 1U);
  EXPECT_EQ(move, 11U);
  EXPECT_EQ(score, untouchedScore);
}

TEST_F(HashTableTest, ALowerBoundDecidesAtOrAboveBeta) {
  HashStore(table, key, 11, 100, lowerBound, 5);
  EXPECT_TRUE(Probe(key, -100, 100, 5));
  EXPECT_EQ(score, 100);
  EXPECT_EQ(move, 11U);
  EXPECT_FALSE(Probe(key, -100, 101, 5));
  EXPECT_EQ(table.misses, 1U);
}

TEST_F(HashTableTest, ASlotWithoutABoundOnlyHandsItsMoveBack) {
  HashStore(table, key, 11, 0, noBound, 5);
  EXPECT_FALSE(Probe(key, -100, 100, 5));
  EXPECT_EQ(table.misses, 1U);
  EXPECT_EQ(move, 11U);
}

TEST_F(HashTableTest, KeysOfOneSlotAreToldApartByEachBit) {
  HashStore(table, key, 11, 50, exactBound, 5);
  for (int bit = 32; bit < 64; ++bit) {
    EXPECT_FALSE(Probe(key ^ (1ULL << bit), -100, 100, 5)) << "bit " << bit;
    EXPECT_EQ(move, untouchedMove);
  }
  EXPECT_EQ(table.conflicts, 32U);
  EXPECT_TRUE(Probe(key, -100, 100, 5));
}

TEST_F(HashTableTest, TheNewestKeyOfASlotIsFoundWhicheverBitItDiffersBy) {
  std::uint64_t newest = key;
  HashStore(table, newest, 11, 50, exactBound, 5);
  for (int bit = 32; bit < 64; ++bit) {
    const std::uint64_t before = newest;
    newest ^= 1ULL << bit;
    HashStore(table, newest, 11, bit, exactBound, 5);
    EXPECT_TRUE(Probe(newest, -100, 100, 5)) << "bit " << bit;
    EXPECT_EQ(score, bit);
    EXPECT_FALSE(Probe(before, -100, 100, 5)) << "bit " << bit;
  }
}

TEST_F(HashTableTest, TheLastSlotHasItsTag) {
  const std::uint64_t last = (0xABULL << 56) + table.size - 1;
  HashStore(table, last, 11, 50, exactBound, 5);
  EXPECT_TRUE(Probe(last, -100, 100, 5));
  EXPECT_FALSE(Probe(last ^ (1ULL << 56), -100, 100, 5));
}

TEST_F(HashTableTest, AShallowerResultDoesNotReplaceADeeperOne) {
  HashStore(table, key, 11, 50, exactBound, 5);
  HashStore(table, rival, 12, 60, exactBound, 4);
  EXPECT_EQ(HashSlot(table, key).key, key);
  HashStore(table, rival, 12, 60, exactBound, 5);
  EXPECT_EQ(HashSlot(table, key).key, rival);
}

TEST_F(HashTableTest, ASlotWithoutAMoveIsReplacedWhateverTheDepth) {
  HashStore(table, key, noMove, 50, exactBound, 5);
  HashStore(table, rival, 12, 60, exactBound, 1);
  EXPECT_EQ(HashSlot(table, key).key, rival);
}

TEST_F(HashTableTest, ASlotWithoutAScoreIsReplacedWhateverTheDepth) {
  HashStore(table, key, 11, EmptyScore, exactBound, 5);
  HashStore(table, rival, 12, 60, exactBound, 1);
  EXPECT_EQ(HashSlot(table, key).key, rival);
}

TEST_F(HashTableTest, NoMoveForTheSameKeyKeepsTheEarlierMove) {
  HashStore(table, key, 11, 50, exactBound, 5);
  HashStore(table, key, noMove, 40, upperBound, 6);
  EXPECT_EQ(HashSlot(table, key).move, 11U);
  EXPECT_EQ(HashSlot(table, key).score, 40);
  EXPECT_EQ(HashSlot(table, key).bound, upperBound);
  EXPECT_EQ(HashSlot(table, key).depth, 6);
}

TEST_F(HashTableTest, NoMoveForAnotherKeyClearsTheMove) {
  HashStore(table, key, 11, 50, exactBound, 5);
  HashStore(table, rival, noMove, 40, upperBound, 5);
  EXPECT_EQ(HashSlot(table, key).move, noMove);
}

TEST_F(HashTableTest, ClearingWritesEmptyValuesAndKeepsTheMove) {
  HashStore(table, key, 11, 50, exactBound, 5);
  HashClear(table);
  const HashEntry& slot = HashSlot(table, key);
  EXPECT_EQ(slot.key, 0U);
  EXPECT_EQ(slot.evalScore, -123456);
  EXPECT_EQ(slot.depth, 0);
  EXPECT_EQ(slot.score, -123456);
  EXPECT_EQ(slot.bound, noBound);
  EXPECT_EQ(slot.move, 11U);
}

TEST_F(HashTableTest, TheSearchResetKeepsTheEvaluationAndDropsTheMove) {
  HashStore(table, key, 11, 50, exactBound, 5);
  HashSlot(table, key).evalScore = 77;
  HashResetSearch(table);
  const HashEntry& slot = HashSlot(table, key);
  EXPECT_EQ(slot.key, 0U);
  EXPECT_EQ(slot.evalScore, 77);
  EXPECT_EQ(slot.depth, 0);
  EXPECT_EQ(slot.score, EmptyScore);
  EXPECT_EQ(slot.bound, noBound);
  EXPECT_EQ(slot.move, noMove);
}

TEST_F(HashTableTest, ClearingReachesTheFirstAndTheLastSlot) {
  for (void (*const clear)(HashTable&) : {HashClear, HashResetSearch}) {
    for (std::uint32_t i = 0; i < table.size; ++i) HashClaim(table, i, 1);
    clear(table);
    std::uint32_t nEmpty = 0;
    for (std::uint32_t i = 0; i < table.size; ++i) nEmpty += table.entries[i].key == 0 ? 1 : 0;
    EXPECT_EQ(nEmpty, 16384U);
  }
}

TEST_F(HashTableTest, ClearingTouchesNoUnusedSlot) {
  HashStore(table, key, 11, 50, exactBound, 5);
  HashEntry& unused = HashSlot(table, key + 1);
  unused.score = 31;
  HashClear(table);
  HashResetSearch(table);
  EXPECT_EQ(unused.score, 31);
  EXPECT_EQ(HashSlot(table, key).score, EmptyScore);
}

TEST_F(HashTableTest, WhateverAnEmptySlotHoldsCountsForNothing) {
  HashStore(table, key, 11, 50, exactBound, 5);
  table.tags[HashIndex(table, key)] = 0;
  EXPECT_FALSE(Probe(key, -100, 100, 1));
  EXPECT_EQ(table.conflicts, 1U);
  HashStore(table, key, noMove, 60, lowerBound, 1);  // neither deeper nor with a move
  EXPECT_EQ(HashSlot(table, key).depth, 1);
  EXPECT_EQ(HashSlot(table, key).move, noMove);
  EXPECT_TRUE(Probe(key, -100, 60, 1));
}

// All kinds of top bytes, including 0 and pairs that differ only in the last bit.
TEST_F(HashTableTest, EveryKeyMarksItsSlotAsUsed) {
  for (std::uint64_t top = 0; top < 256; ++top) {
    HashStore(table, (top << 56) + 77, 11, 50, exactBound, 5);
    EXPECT_NE(table.tags[77], 0);
    EXPECT_TRUE(Probe((top << 56) + 77, -100, 100, 5));
    HashClear(table);
    EXPECT_FALSE(Probe((top << 56) + 77, -100, 100, 5));
  }
}

void ExpectEmptiedByTags(void (*clear)(HashTable&)) {
  HashTable table{};
  table.size = 129;
  HashAllocate(table);
  ASSERT_GT(table.size, maxSlotsToWrite);
  const std::uint64_t keys[] = {1, table.size - 1};
  for (const std::uint64_t key : keys) HashStore(table, key, 11, 50, exactBound, 5);
  clear(table);
  for (const std::uint64_t key : keys) {
    EXPECT_EQ(HashSlot(table, key).depth, 5);  // left as it is
    Move move = noMove;
    std::int32_t score = 0;
    EXPECT_FALSE(HashProbe(table, key, move, score, -1, 1, 0));
    EXPECT_EQ(move, noMove);
    HashStore(table, key, noMove, 7, exactBound, 1);
    EXPECT_EQ(HashSlot(table, key).depth, 1);
  }
  HashRelease(table);
}

TEST(HashClearing, ALargeTableIsEmptiedByItsTagsAlone) {
  ExpectEmptiedByTags(HashClear);
  ExpectEmptiedByTags(HashResetSearch);
}

TEST(HashClearing, ATableWithoutMemoryIsLeftAlone) {
  HashTable table{};
  HashClear(table);
  HashResetSearch(table);
  EXPECT_EQ(table.entries, nullptr);
}

TEST(HashMoveLookupTest, CopiesTheScoreAndAlwaysSaysNo) {
  EvalHashTable.size = 1;
  HashAllocate(EvalHashTable);
  HashClaim(EvalHashTable, HashIndex(EvalHashTable, 77), 77);
  HashSlot(EvalHashTable, 77).score = 31;
  std::int32_t score = 5;
  EXPECT_FALSE(HashMoveLookup(77, score));
  EXPECT_EQ(score, 31);
  EXPECT_EQ(EvalHashTable.lastKey, 77U);
  EXPECT_FALSE(HashMoveLookup(78, score));
  EXPECT_EQ(score, 31);
  HashSlot(EvalHashTable, 0).score = 12;  // an empty slot's key is zero
  EXPECT_FALSE(HashMoveLookup(0, score));
  EXPECT_EQ(score, 31);
  HashRelease(EvalHashTable);
}

std::string Captured(void (*print)()) {
  testing::internal::CaptureStdout();
  print();
  return testing::internal::GetCapturedStdout();
}

TEST(HashReport, UsageLineShowsCountsAndPercentages) {
  HashTable table{};
  table.hits = 1;
  table.misses = 2;
  table.conflicts = 5;
  testing::internal::CaptureStdout();
  PrintCacheUsage(table);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "Cache usage: hits=1(12.50%) misses=2(25.00%) conflicts=5(62.50%)\n");
}

TEST(HashReport, AnUnusedTableReadsTheSameOnEverySystem) {
  testing::internal::CaptureStdout();
  PrintCacheUsage(HashTable{});
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "Cache usage: hits=0(-nan%) misses=0(-nan%) conflicts=0(-nan%)\n");
}

TEST(HashReport, NamesTheThreeTablesInOrder) {
  ResetHashCounters();
  EvalHashTable.hits = 1;
  PawnHashTable.conflicts = 1;
  TranspositionTable.misses = 1;
  EXPECT_EQ(Captured([] { PrintHashReport(false); }),
            "Eval hash: Cache usage: hits=1(100.00%) misses=0(0.00%) conflicts=0(0.00%)\n"
            "Pawn hash: Cache usage: hits=0(0.00%) misses=0(0.00%) conflicts=1(100.00%)\n"
            "TT:        Cache usage: hits=0(0.00%) misses=1(100.00%) conflicts=0(0.00%)\n");
  EXPECT_EQ(Captured([] { PrintHashReport(true); }), "");
}

TEST(HashReport, ResettingTheCountersKeepsTheStores) {
  EvalHashTable.hits = 3;
  EvalHashTable.stores = 9;
  PawnHashTable.conflicts = 4;
  TranspositionTable.misses = 5;
  ResetHashCounters();
  EXPECT_EQ(EvalHashTable.hits, 0U);
  EXPECT_EQ(EvalHashTable.stores, 9U);
  EXPECT_EQ(PawnHashTable.conflicts, 0U);
  EXPECT_EQ(TranspositionTable.misses, 0U);
}

}  // namespace
}  // namespace mirvo
