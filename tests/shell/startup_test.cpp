#include "shell/startup.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "board/attack_tables.h"
#include "book/book_random.h"
#include "book/opening_book.h"
#include "eval/eval_tables.h"
#include "eval/king.h"
#include "protocol/dispatcher.h"
#include "search/hash/hash_allocation.h"
#include "search/hash/hash_table.h"
#include "search/reductions.h"
#include "search/search_flags.h"
#include "search/search_hooks.h"
#include "shell/base/clock.h"
#include "shell/config/config.h"
#include "shell/config/config_file.h"
#include "tests/shell/temporary_folder.h"

namespace mirvo {
namespace {

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

std::uint32_t fakeTicks = 0;

std::uint32_t FakeTickCount() { return fakeTicks; }

/// Start-up writes the globals; each test begins with default settings.
class StartUpTest : public testing::Test {
 protected:
  StartUpTest() {
    fakeTicks = 0;
    SetTickSource(FakeTickCount);
    std::construct_at(&engineConfig);
  }
  ~StartUpTest() override {
    SetTickSource(nullptr);
    DestroyOpeningBook(openingBook);
    for (HashTable* const table : {&EvalHashTable, &PawnHashTable, &TranspositionTable}) {
      HashRelease(*table);
    }
  }

  /// Starts with this config.txt and these words; returns what was printed.
  static std::string Start(const std::string& settings,
                           std::initializer_list<const char*> words = {}) {
    WriteFile(configFileName, settings);
    std::vector<const char*> arguments{"mirvo"};
    arguments.insert(arguments.end(), words);
    CaptureStdout();
    StartUp(static_cast<int>(arguments.size()), arguments.data());
    return GetCapturedStdout();
  }

  TemporaryFolder folder;
};

TEST_F(StartUpTest, ShowsTwentyOneDotsAndTheSettings) {
  const std::string text = Start("TTHashSize=1 Ponder=0\n");
  EXPECT_EQ(text.substr(0, text.find("    DepthSearch")),
            "Welcome to Mirvo (0.2.7_d) by Tavelin\n"
            "Setup.....................Done.\n"
            "Config:\n");
  EXPECT_NE(text.find("    TTHashSize=1\n"), std::string::npos);
  EXPECT_NE(text.find("    Ponder=0\n"), std::string::npos);
}

TEST_F(StartUpTest, ToolsPrintBehindDotSeventeenAndNoSettingsFollow) {
  EXPECT_EQ(Start("", {"-bookstats", "missing.bk"}),
            "Welcome to Mirvo (0.2.7_d) by Tavelin\n"
            "Setup.................\nNumber positions: 0\nNumber moves: 0\n"
            "....Done.\n");
}

TEST_F(StartUpTest, TheCommandLineOverridesTheFile) {
  Start("DepthSearch=10\nTTHashSize=1\n", {"-depth", "7"});
  EXPECT_EQ(engineConfig.DepthSearch, 7);
}

TEST_F(StartUpTest, TheBookIsInUseOnlyForTheSettingOne) {
  for (const auto& [setting, inUse] : {std::pair{"0", 0}, {"1", 1}, {"2", 0}, {"-1", 0}}) {
    Start(std::string("UseOpeningBook=") + setting);
    EXPECT_EQ(searchFlags.BookInUse, inUse) << setting;
    DestroyOpeningBook(openingBook);
  }
}

TEST_F(StartUpTest, EachTableGetsItsSize) {
  Start("EvalHashSize=1 PawnHashSize=2 TTHashSize=3\n");
  // 64-byte slots: 16384 in a megabyte.
  EXPECT_EQ(EvalHashTable.size, 16384U);
  EXPECT_EQ(PawnHashTable.size, 2 * 16384U);
  EXPECT_EQ(TranspositionTable.size, 3 * 16384U);
}

TEST_F(StartUpTest, TheTablesStartWithoutCounts) {
  EvalHashTable.stores = PawnHashTable.stores = TranspositionTable.stores = 7;
  Start("");
  EXPECT_EQ(EvalHashTable.stores, 0U);
  EXPECT_EQ(PawnHashTable.stores, 0U);
  EXPECT_EQ(TranspositionTable.stores, 0U);
}

TEST_F(StartUpTest, BuildsTheTablesAndTheBook) {
  Start("");
  EXPECT_EQ(KnightAttacks[0], Bit(10) | Bit(17));
  EXPECT_EQ(KingDangerTable[50], 125);
  EXPECT_GT(NonPvReductions[20][40], 0);
  EXPECT_NE(openingBook.entries, nullptr);
  EXPECT_EQ(openingBook.count, 0);
  EXPECT_EQ(openingBook.maxPlies, 40);
}

TEST_F(StartUpTest, LetsTheSearchPollTheDispatcher) {
  Start("");
  EXPECT_EQ(searchHooks.pollInput, &PollInput);
}

TEST_F(StartUpTest, SetsTheRandomSeedWord) {
  Start("");
  EXPECT_EQ(RandomSeed, 0x8709934132ef9cd4ULL);
}

TEST_F(StartUpTest, AdvancesTheBooksGeneratorByTheClock) {
  for (const auto& [ticks, nSteps] :
       {std::pair{0U, 0}, {3U, 3}, {99'999U, 99'999}, {100'000U, 0}, {4'294'967'295U, 67'295}}) {
    ResetRandom();
    for (int i = 0; i < nSteps; ++i) {
      NextRandom();
    }
    const std::uint32_t expected = NextRandom();
    ResetRandom();
    fakeTicks = ticks;
    Start("");
    EXPECT_EQ(NextRandom(), expected) << ticks;
    DestroyOpeningBook(openingBook);
  }
}

}  // namespace
}  // namespace mirvo
