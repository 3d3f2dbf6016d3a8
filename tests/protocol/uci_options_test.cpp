#include "protocol/uci_options.h"

#include "search/hash/hash_allocation.h"
#include "search/hash/hash_table.h"
#include "tests/protocol/uci_test_kit.h"

namespace mirvo {
namespace {

class UciOptions : public UciTest {
 protected:
  void TearDown() override {
    for (HashTable* table : {&TranspositionTable, &PawnHashTable, &EvalHashTable}) {
      HashRelease(*table);
    }
    engineConfig.UseOpeningBook = 1;
    engineConfig.PawnHashSize = 30;
    engineConfig.EvalHashSize = 100;
    engineConfig.TTHashSize = 100;
    engineConfig.Contempt = 0;
    UciTest::TearDown();
  }
};

struct NumberCase {
  const char* name;
  const char* text;
  std::int32_t value;
};

class ContemptValue : public UciOptions, public ::testing::WithParamInterface<NumberCase> {};

TEST_P(ContemptValue, IsReadAtItsDistance) {
  engineConfig.Contempt = 99;
  SetUciOption(GetParam().text);
  EXPECT_EQ(engineConfig.Contempt, GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(
    All, ContemptValue,
    ::testing::Values(NumberCase{"Plain", "Contempt value 12", 12},
                      NumberCase{"Negative", "Contempt value -12", -12},
                      NumberCase{"NotANumber", "Contempt value many", 0},
                      NumberCase{"NoValue", "Contempt value", 0},
                      NumberCase{"NoValueWord", "Contempt", 0},
                      NumberCase{"ShortText", "Contempt val", 0},
                      NumberCase{"AnyWordOfThatLength", "Contempt xxxxx 12", 12},
                      NumberCase{"ValueWordIsCounted", "Contempt  value 12", 12},
                      NumberCase{"LineEnd", "Contempt value 7\r\n", 7},
                      NumberCase{"LowerCaseIsUnknown", "contempt value 12", 99}),
    [](const ::testing::TestParamInfo<NumberCase>& testCase) { return testCase.param.name; });

TEST_F(UciOptions, ChecksKnowTrueOnly) {
  for (const char* value : {"false", "True", "1", "tru", ""}) {
    engineConfig.Ponder = 1;
    engineConfig.UseOpeningBook = 1;
    SetUciOption((std::string("Ponder value ") + value).c_str());
    SetUciOption((std::string("Use Opening Book value ") + value).c_str());
    EXPECT_EQ(engineConfig.Ponder, 0) << value;
    EXPECT_EQ(engineConfig.UseOpeningBook, 0) << value;
  }
  for (const char* value : {"true", "true\n", "trueish"}) {
    engineConfig.Ponder = 0;
    engineConfig.UseOpeningBook = 0;
    SetUciOption((std::string("Ponder value ") + value).c_str());
    SetUciOption((std::string("Use Opening Book value ") + value).c_str());
    EXPECT_EQ(engineConfig.Ponder, 1) << value;
    EXPECT_EQ(engineConfig.UseOpeningBook, 1) << value;
  }
}

TEST_F(UciOptions, UseOpeningBookLeavesTheGameInItsBook) {
  searchFlags.BookInUse = true;
  SetUciOption("Use Opening Book value false");
  EXPECT_TRUE(searchFlags.BookInUse);
  searchFlags.BookInUse = false;
  SetUciOption("Use Opening Book value true");
  EXPECT_FALSE(searchFlags.BookInUse);
}

struct SizeCase {
  const char* name;
  const char* option;
  HashTable* table;
  std::int32_t EngineConfig::*setting;
};

class HashSizeOption : public UciOptions, public ::testing::WithParamInterface<SizeCase> {};

// A megabyte holds 16384 slots of 64 bytes.
TEST_P(HashSizeOption, ReallocatesItsTable) {
  const SizeCase& option = GetParam();
  PlayUci(std::string("setoption name ") + option.option + " value 2\n");
  ASSERT_NE(option.table->entries, nullptr);
  EXPECT_EQ(option.table->size, 2U * 16384U);
  EXPECT_EQ(engineConfig.*option.setting, 2);
  HashSlot(*option.table, 5).key = 5;
  PlayUci(std::string("setoption name ") + option.option + " value 3\n");
  EXPECT_EQ(option.table->size, 3U * 16384U);
  EXPECT_EQ(HashSlot(*option.table, 5).key, 0U);
}

TEST_P(HashSizeOption, IsNotHeldToItsLimits) {
  const SizeCase& option = GetParam();
  PlayUci(std::string("setoption name ") + option.option + " value 101\n");
  EXPECT_EQ(option.table->size, 101U * 16384U);
  EXPECT_EQ(engineConfig.*option.setting, 101);
  for (const char* value : {"0", "-5", "lots", ""}) {
    PlayUci(std::string("setoption name ") + option.option + " value " + value + "\n");
    ASSERT_NE(option.table->entries, nullptr) << value;
    EXPECT_GT(option.table->size, 0U) << value;
    HashSlot(*option.table, ~0ULL).key = 1;
  }
}

INSTANTIATE_TEST_SUITE_P(
    All, HashSizeOption,
    ::testing::Values(
        SizeCase{"Pawn", "Pawn Hash Size", &PawnHashTable, &EngineConfig::PawnHashSize},
        SizeCase{"Eval", "Eval Hash Size", &EvalHashTable, &EngineConfig::EvalHashSize},
        SizeCase{"TT", "TT Hash Size", &TranspositionTable, &EngineConfig::TTHashSize}),
    [](const ::testing::TestParamInfo<SizeCase>& testCase) { return testCase.param.name; });

TEST_F(UciOptions, BookFileAndUnknownNamesChangeNothing) {
  const std::string bookName = engineConfig.BookName;
  const std::string optionText = bookFileOptionText;
  const auto tableSize = engineConfig.TTHashSize;
  EXPECT_EQ(PlayUci("setoption name Book File value other.bk\n"
                    "setoption name Hash value 5\nsetoption name\nsetoption name \n"
                    "setoption value 5\nsetoption\n"),
            "");
  EXPECT_EQ(engineConfig.BookName, bookName);
  EXPECT_EQ(bookFileOptionText, optionText);
  EXPECT_EQ(engineConfig.TTHashSize, tableSize);
}

TEST_F(UciOptions, PonderSwitchesTheExpectedReplyOff) {
  script = {{{}, "e2e4", "e7e5"}};
  EXPECT_EQ(PlayUci("setoption name Ponder value false\ngo\n"),
            "Allowing 0 ms for move (0, 0, 0)\nbestmove e2e4 \n");
}

}  // namespace
}  // namespace mirvo
