#include "shell/config/config_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "shell/base/output.h"
#include "shell/base/text.h"
#include "tests/shell/temporary_folder.h"

namespace mirvo {
namespace {

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

constexpr char missingNotice[] = "config.txt not found, using default values.\n";

class ConfigFileTest : public testing::Test {
 protected:
  ~ConfigFileTest() override {
    CopyText(bookFileOptionText, sizeof bookFileOptionText, "unique2.bin");
  }

  /// Reads a file of these bytes; returns what was printed.
  std::string Read(const std::string& bytes) {
    WriteFile(configFileName, bytes);
    return ReadFromFolder();
  }

  std::string ReadFromFolder() {
    CaptureStdout();
    ReadConfigFile(*config, configFileName);
    return GetCapturedStdout();
  }

  TemporaryFolder folder;
  std::unique_ptr<EngineConfig> config = std::make_unique<EngineConfig>();
};

TEST_F(ConfigFileTest, ReportsAMissingFileAndKeepsTheDefaults) {
  EXPECT_EQ(ReadFromFolder(), missingNotice);
  EXPECT_EQ(config->DepthSearch, 40);
}

TEST_F(ConfigFileTest, KeepsTheNoticeOutOfTheLog) {
  std::FILE* const before = output.log;
  output.log = std::fopen("log.txt", "w+");
  ReadFromFolder();
  EXPECT_EQ(ReadFile("log.txt"), "");
  std::fclose(output.log);
  output.log = before;
}

TEST_F(ConfigFileTest, TakesAFolderInItsPlaceAsMissing) {
  std::filesystem::create_directory(configFileName);
  EXPECT_EQ(ReadFromFolder(), missingNotice);
  EXPECT_EQ(config->DepthSearch, 40);
}

TEST_F(ConfigFileTest, ReadsAnEmptyFileSilently) {
  EXPECT_EQ(Read(""), "");
  EXPECT_EQ(Read(" \r\n\t\n"), "");
  EXPECT_EQ(config->DepthSearch, 40);
}

TEST_F(ConfigFileTest, SetsEveryNumberByItsKey) {
  const struct {
    const char* key;
    std::int32_t EngineConfig::*field;
  } cases[] = {
      {"DepthSearch", &EngineConfig::DepthSearch},
      {"UseOpeningBook", &EngineConfig::UseOpeningBook},
      {"InfiniteThinkingTime", &EngineConfig::InfiniteThinkingTime},
      {"PawnHashSize", &EngineConfig::PawnHashSize},
      {"EvalHashSize", &EngineConfig::EvalHashSize},
      {"TTHashSize", &EngineConfig::TTHashSize},
      {"AspirationWindow", &EngineConfig::AspirationWindow},
      {"FixedTimePerMove", &EngineConfig::FixedTimePerMove},
      {"UseMP", &EngineConfig::UseMP},
      {"NumberThreads", &EngineConfig::NumberThreads},
      {"StartIDDepth", &EngineConfig::StartIDDepth},
      {"LoggingMode", &EngineConfig::LoggingMode},
      {"Contempt", &EngineConfig::Contempt},
      {"MaxNumExtPerDepth", &EngineConfig::MaxNumExtPerDepth},
      {"Ponder", &EngineConfig::Ponder},
      {"MoveOverhead", &EngineConfig::MoveOverhead},
  };
  for (const auto& setting : cases) {
    const auto fresh = std::make_unique<EngineConfig>();
    ApplyConfigToken(*fresh, (std::string(setting.key) + "=4711").c_str());
    for (const auto& other : cases) {
      if (&other == &setting) {
        EXPECT_EQ(fresh.get()->*other.field, 4711) << setting.key;
      } else {
        EXPECT_EQ(fresh.get()->*other.field, config.get()->*other.field) << setting.key;
      }
    }
    EXPECT_STREQ(fresh->BookName, "book.bk");
  }
}

TEST_F(ConfigFileTest, ReadsSeveralSettingsOnOneLine) {
  EXPECT_EQ(Read("TTHashSize=64 Ponder=0\n"), "");
  EXPECT_EQ(config->TTHashSize, 64);
  EXPECT_EQ(config->Ponder, 0);
}

TEST_F(ConfigFileTest, ReadsOneSettingALineWithAnyLineEnd) {
  Read("TTHashSize=64\r\nPonder=0\n\n\tDepthSearch=12\r\nContempt=-7");
  EXPECT_EQ(config->TTHashSize, 64);
  EXPECT_EQ(config->Ponder, 0);
  EXPECT_EQ(config->DepthSearch, 12);
  EXPECT_EQ(config->Contempt, -7);
}

TEST_F(ConfigFileTest, SetsNothingFromASettingWithBlanks) {
  EXPECT_EQ(Read("DepthSearch = 10\n"), "");
  EXPECT_EQ(config->DepthSearch, 40);
}

TEST_F(ConfigFileTest, ComparesKeysWithCase) {
  Read("depthsearch=10 DEPTHSEARCH=11 Depthsearch=12\n");
  EXPECT_EQ(config->DepthSearch, 40);
}

TEST_F(ConfigFileTest, ComparesKeysWhole) {
  Read("DepthSearc=10 DepthSearchX=11 XDepthSearch=12 =13 DepthSearch\n");
  EXPECT_EQ(config->DepthSearch, 40);
}

TEST_F(ConfigFileTest, DoesNotKnowTheReportsShortLabel) {
  Read("HashSize=7\n");
  EXPECT_EQ(config->EvalHashSize, 100);
  EXPECT_EQ(config->TTHashSize, 100);
  EXPECT_EQ(config->PawnHashSize, 30);
}

TEST_F(ConfigFileTest, DoesNotKnowTheFieldsOfTheCommandLine) {
  Read("RunMode=3 PerftDepth=4 Quiet=1 ToolRunOnly=1 BookName=x.bk CmdLineBook=1\n");
  EXPECT_EQ(config->RunMode, RunModeCode::engine);
  EXPECT_EQ(config->PerftDepth, 0);
  EXPECT_FALSE(config->Quiet);
  EXPECT_FALSE(config->ToolRunOnly);
  EXPECT_STREQ(config->BookName, "book.bk");
  EXPECT_EQ(config->CmdLineBook, 0);
}

TEST_F(ConfigFileTest, TakesTheLastValueOfAKey) {
  Read("DepthSearch=10\nPonder=0\nDepthSearch=11\n");
  EXPECT_EQ(config->DepthSearch, 11);
}

TEST_F(ConfigFileTest, ReadsValuesLikeEveryNumber) {
  const struct {
    const char* value;
    std::int32_t expected;
  } cases[] = {{"", 0},
               {"=5", 0},
               {"many", 0},
               {"12x", 12},
               {"-3", -3},
               {"+8", 8},
               {"99999999999", 2147483647},
               {"5=6", 5},
               {"1.9", 1},
               {"-99999999999", -2147483647 - 1}};
  for (const auto& [value, expected] : cases) {
    config->DepthSearch = 40;
    ApplyConfigToken(*config, (std::string("DepthSearch=") + value).c_str());
    EXPECT_EQ(config->DepthSearch, expected) << value;
  }
}

TEST_F(ConfigFileTest, ReadsANumberBehindAnyCountOfZeros) {
  // A token keeps 1023 characters and a value 64 zeros when it is longer.
  for (const std::size_t count : {1U, 63U, 64U, 65U, 1000U, 1008U, 1009U, 1010U, 1011U, 1012U,
                                  1022U, 1023U, 1024U, 1970U, 1971U, 5000U, 1000000U}) {
    const std::string zeros(count, '0');
    Read("DepthSearch=" + zeros + "12345 FixedTimePerMove=-" + zeros + "17x9 Ponder=+" + zeros +
         "8\nLoggingMode=" + zeros + "99999999999 StartIDDepth=" + zeros);
    EXPECT_EQ(config->DepthSearch, 12345) << count;
    EXPECT_EQ(config->FixedTimePerMove, -17) << count;
    EXPECT_EQ(config->Ponder, 8) << count;
    EXPECT_EQ(config->LoggingMode, 2147483647) << count;
    EXPECT_EQ(config->StartIDDepth, 0) << count;
    config = std::make_unique<EngineConfig>();
  }
}

TEST_F(ConfigFileTest, ReadsANumberOfManyDigitsAsTooLarge) {
  for (const std::size_t count : {10U, 1010U, 1011U, 1012U, 5000U}) {
    Read("DepthSearch=" + std::string(count, '9') + "\nContempt=-" + std::string(2000, '0') +
         std::string(count, '9'));
    EXPECT_EQ(config->DepthSearch, 2147483647) << count;
    EXPECT_EQ(config->Contempt, -2147483647 - 1) << count;
  }
}

TEST_F(ConfigFileTest, KeepsTheZerosOfABookNameAndOfNoNumber) {
  for (const std::size_t count : {3U, 62U, 63U, 64U, 1018U, 1019U, 5000U}) {
    const std::string name = std::string(count, '0') + "7.bk";
    Read("Book=" + name + " DepthSearch=0-0" + name + " Ponder==" + name);
    EXPECT_EQ(config->BookName, name.substr(0, 63)) << count;
    EXPECT_EQ(config->DepthSearch, 0) << count;
    EXPECT_EQ(config->Ponder, 0) << count;
    config = std::make_unique<EngineConfig>();
  }
}

TEST_F(ConfigFileTest, StoresHashSizesAsGiven) {
  Read("TTHashSize=-5 EvalHashSize=0 PawnHashSize=100000\n");
  EXPECT_EQ(config->TTHashSize, -5);
  EXPECT_EQ(config->EvalHashSize, 0);
  EXPECT_EQ(config->PawnHashSize, 100000);
}

TEST_F(ConfigFileTest, NamesTheBookInSettingsAndOption) {
  Read("Book=mybook.bk\n");
  EXPECT_STREQ(config->BookName, "mybook.bk");
  EXPECT_STREQ(bookFileOptionText, "mybook.bk");
}

TEST_F(ConfigFileTest, LeavesTheBookOptionAloneWithoutABookKey) {
  Read("DepthSearch=10\nbook=other.bk\n");
  EXPECT_STREQ(config->BookName, "book.bk");
  EXPECT_STREQ(bookFileOptionText, "unique2.bin");
}

TEST_F(ConfigFileTest, CutsBookNamesAtTheirWidth) {
  for (const std::size_t length : {62U, 63U, 64U, 500U, 5000U}) {
    const std::string name(length, 'n');
    Read("Book=" + name + " DepthSearch=17\n");
    EXPECT_EQ(config->BookName, name.substr(0, 63)) << length;
    EXPECT_EQ(bookFileOptionText, name.substr(0, 63)) << length;
    EXPECT_EQ(config->DepthSearch, 17) << length;
    config->DepthSearch = 40;
  }
}

TEST_F(ConfigFileTest, TakesAWordOfAnyLengthAsOneToken) {
  // If it were split, its second half would be a setting.
  for (const std::size_t length : {140U, 149U, 150U, 1022U, 1023U, 1024U, 4095U, 100000U}) {
    Read(std::string(length, 'x') + "DepthSearch=10\nPonder=0\n");
    EXPECT_EQ(config->DepthSearch, 40) << length;
    EXPECT_EQ(config->Ponder, 0) << length;
    config->Ponder = 1;
  }
}

TEST_F(ConfigFileTest, SkipsAByteOrderMarkAtTheStartOnly) {
  Read(
      "\xEF\xBB\xBF"
      "DepthSearch=10\n\xEF\xBB\xBFPonder=0\n");
  EXPECT_EQ(config->DepthSearch, 10);
  EXPECT_EQ(config->Ponder, 1);
}

TEST_F(ConfigFileTest, DropsABlankBehindTheByteOrderMark) {
  Read("\xEF\xBB\xBF\r\n DepthSearch=10\n");
  EXPECT_EQ(config->DepthSearch, 10);
}

TEST_F(ConfigFileTest, TakesHalfAByteOrderMarkAsText) {
  Read(
      "\xEF\xBB"
      "DepthSearch=10 Ponder=0\n");
  EXPECT_EQ(config->DepthSearch, 40);
  EXPECT_EQ(config->Ponder, 0);
  Read("\xEF");
  Read("\xEF DepthSearch=11\n");
  EXPECT_EQ(config->DepthSearch, 11);
}

TEST_F(ConfigFileTest, SurvivesBytesThatAreNoText) {
  const char bytes[] = "DepthSearch=10\0Ponder=0\n=\n==\n\0\n\xFF\xFE=\x80\n";
  EXPECT_EQ(Read(std::string(bytes, sizeof bytes - 1)), "");
  EXPECT_EQ(config->DepthSearch, 10);
  EXPECT_EQ(config->Ponder, 1);
}

TEST_F(ConfigFileTest, PrintsTheReport) {
  config->DepthSearch = 1;
  config->UseOpeningBook = 2;
  config->PawnHashSize = 3;
  config->EvalHashSize = 4;
  config->TTHashSize = 5;
  config->AspirationWindow = 6;
  config->NumberThreads = 7;
  CopyText(config->BookName, sizeof config->BookName, "my%sbook.bk");
  config->MaxNumExtPerDepth = 8;
  config->Ponder = 9;
  config->MoveOverhead = 10;  // not part of the report
  CaptureStdout();
  PrintConfig(*config);
  EXPECT_EQ(GetCapturedStdout(),
            "Config:\n"
            "    DepthSearch=1\n"
            "    UseOpeningBook=2\n"
            "    PawnHashSize=3\n"
            "    HashSize=4\n"
            "    TTHashSize=5\n"
            "    AspirationWindow=6\n"
            "    NumberThreads=7\n"
            "    BookName=my%sbook.bk\n"
            "    MaxNumExtPerDepth=8\n"
            "    Ponder=9\n");
}

}  // namespace
}  // namespace mirvo
