#include "protocol/game_record.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

#include "protocol/xboard_game.h"
#include "shell/config/config.h"
#include "tests/protocol/xboard_test_kit.h"

#ifdef __linux__
#include <sys/resource.h>

#include <csignal>
#endif

namespace mirvo {
namespace {

namespace fs = std::filesystem;

/// Runs each test in a new, empty directory.
class GameFiles : public XBoardTest {
 protected:
  void SetUp() override {
    XBoardTest::SetUp();
    home = fs::current_path();
    const auto* info = testing::UnitTest::GetInstance()->current_test_info();
    folder = fs::temp_directory_path() / (std::string("mirvo_games_") + info->name());
    fs::remove_all(folder);
    fs::create_directories(folder);
    fs::current_path(folder);
  }

  void TearDown() override {
    fs::current_path(home);
    fs::remove_all(folder);
    engineConfig.LoggingMode = 0;
    XBoardTest::TearDown();
  }

  static std::string Read(const char* name) {
    std::ifstream file(name);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  /// Makes a symbolic link; false if the system cannot.
  static bool Link(const char* target, const char* name) {
    std::error_code error;
    fs::create_symlink(target, name, error);
    return !error;
  }

  static std::size_t FileCount() {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator("."), fs::directory_iterator()));
  }

  void PlayOneGame(const char* result) {
    script = {{{}, "e7e5"}};
    Play({"new\n", "e2e4\n", result});
  }

  fs::path home;
  fs::path folder;
};

TEST_F(GameFiles, NothingIsSavedWithoutLoggingMode) {
  PlayOneGame("result 1-0\n");
  EXPECT_EQ(FileCount(), 0U);
}

TEST_F(GameFiles, AFinishedGameIsTheTagSectionAndBlankLines) {
  engineConfig.LoggingMode = 1;
  script = {{{}, "e7e5"}};
  Play({"new\n", "name Rival 2\n", "ics freechess.org\n", "rating 2000 1800\n", "e2e4\n",
        "result 1/2-1/2 {Draw by agreement}\n"});
  EXPECT_EQ(Read("game000000.pgn"),
            "[Event \"\"]\n[Site \"freechess.org\"]\n[Date \"\"]\n[Round \"-\"]\n"
            "[White \"Rival 2\"]\n[Black \"Mirvo 0.2.7_d\"]\n[Result \"1/2-1/2\"]\n"
            "[WhiteElo \"1800\"]\n[BlackElo \"2000\"]\n[WhiteType \"human\"]\n"
            "[BlackType \"program\"]\n\n\n\n\n\n");
}

TEST_F(GameFiles, WithoutRoomForMovesTheTagsAreSaved) {
  FinishedGame record;
  const GameTags tags;
  record.tags = &tags;
  SaveGame(record, 1);
  const std::string text = Read("game000000.pgn");
  EXPECT_TRUE(text.starts_with("[Event \"\"]\n"));
  EXPECT_TRUE(text.ends_with("[BlackType \"\"]\n\n\n\n\n\n"));
}

TEST_F(GameFiles, AGameWithoutIcsHasAnEmptySite) {
  engineConfig.LoggingMode = 1;
  PlayOneGame("result 0-1\n");
  EXPECT_NE(Read("game000000.pgn").find("[Site \"\"]\n"), std::string::npos);
}

TEST_F(GameFiles, EveryGameTakesTheFirstFreeName) {
  engineConfig.LoggingMode = 1;
  std::ofstream("game000000.pgn") << "mine";
  std::ofstream("game000002.pgn") << "mine";
  PlayOneGame("result 1-0\n");
  PlayOneGame("result *\n");
  EXPECT_EQ(Read("game000000.pgn"), "mine");
  EXPECT_EQ(Read("game000002.pgn"), "mine");
  EXPECT_NE(Read("game000001.pgn").find("[Result \"1-0\"]"), std::string::npos);
  EXPECT_NE(Read("game000003.pgn").find("[Result \"*\"]"), std::string::npos);
}

TEST_F(GameFiles, AResultOutsideAGameSavesNothing) {
  engineConfig.LoggingMode = 1;
  Play({"new\n", "force\n", "e2e4\n", "result 1-0\n"});
  EXPECT_EQ(FileCount(), 0U);
  PlayOneGame("result 1-0\n");
  Play({"result 1-0\n"});
  EXPECT_EQ(FileCount(), 1U);
}

TEST_F(GameFiles, ANameInUseForADirectoryIsNotFree) {
  engineConfig.LoggingMode = 1;
  fs::create_directory("game000000.pgn");
  PlayOneGame("result 1-0\n");
  EXPECT_TRUE(fs::exists("game000001.pgn"));
}

TEST_F(GameFiles, ANameThatCannotBeOpenedIsNotFree) {
  engineConfig.LoggingMode = 1;
  // A link to itself: opening it fails, but not because the file is missing.
  if (!Link("game000000.pgn", "game000000.pgn")) GTEST_SKIP() << "no links here";
  PlayOneGame("result 1-0\n");
  EXPECT_TRUE(fs::exists("game000001.pgn"));
}

TEST_F(GameFiles, AFileThatCannotBeWrittenIsSkipped) {
  engineConfig.LoggingMode = 1;
  // A dangling link: opening it for reading says "no such file", and so does writing
  // if its folder is missing.
  if (!Link("missing/folder", "game000000.pgn")) GTEST_SKIP() << "no links here";
  PlayOneGame("result 1-0\n");
  EXPECT_EQ(FileCount(), 1U);
  EXPECT_EQ(xboardGame.record.file, nullptr);
}

#ifdef __linux__
// If a path uses a file as a folder, opening fails, but not because the file is
// missing: no name is free.
TEST_F(GameFiles, WhenAllNamesAreTakenTheLastOneIsChosen) {
  std::ofstream("file") << "no folder";
  char path[gamePathCapacity];
  EXPECT_FALSE(ChooseGameFile("file/game", "pgn", path));
  EXPECT_STREQ(path, "file/game099999.pgn");
}

/// During its lifetime no file can grow, as on a full disk.
class FullDisk {
 public:
  FullDisk() {
    getrlimit(RLIMIT_FSIZE, &before);
    signalBefore = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit none{0, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &none);
  }
  ~FullDisk() {
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, signalBefore);
  }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;

 private:
  rlimit before{};
  void (*signalBefore)(int) = SIG_DFL;
};

TEST_F(GameFiles, AFullDiskLeavesNoEmptyFileAndUsesNoNumberUp) {
  std::ofstream("game000000.pgn") << "mine";
  FinishedGame record;
  const GameTags tags;
  record.tags = &tags;
  {
    const FullDisk full;
    SaveGame(record, 1);
  }
  EXPECT_EQ(record.file, nullptr);
  EXPECT_EQ(FileCount(), 1U);
  EXPECT_EQ(Read("game000000.pgn"), "mine");
  SaveGame(record, 1);
  EXPECT_TRUE(Read("game000001.pgn").starts_with("[Event"));
}

// When all names are taken the last file, which already exists, is overwritten.
TEST_F(GameFiles, AFullDiskRemovesNoFileThatWasThereBefore) {
  std::ofstream("game099999.pgn") << "mine";
  FinishedGame record;
  const GameTags tags;
  record.tags = &tags;
  const FullDisk full;
  WriteGameFile(record, "game099999.pgn", false);
  EXPECT_EQ(record.file, nullptr);
  EXPECT_TRUE(fs::exists("game099999.pgn"));
}
#endif

TEST(GameRecordHeader, HoldsElevenFullTags) {
  GameTags tags;
  for (char* tag : {tags.event, tags.site, tags.date, tags.white, tags.black, tags.result,
                    tags.whiteElo, tags.blackElo, tags.whiteType, tags.blackType}) {
    std::memset(tag, 'x', tagCapacity - 1);
  }
  char text[headerCapacity];
  BuildHeader(tags, text);
  const std::string header = text;
  EXPECT_LT(header.size(), headerCapacity - 1);
  EXPECT_EQ(header.substr(header.size() - 4), "x\"]\n");
}

TEST(GameRecordState, AStartedRecordIsOpenAndItsMoveTextEmpty) {
  FinishedGame record;
  GameTags tags;
  StartRecord(record, tags);
  EXPECT_TRUE(record.headerOpen);
  EXPECT_TRUE(record.movesOpen);
  EXPECT_EQ(record.tags, &tags);
  ASSERT_NE(record.moveText, nullptr);
  EXPECT_EQ(record.moveText[0], 0);
  EXPECT_EQ(record.moveText[moveTextBytes - 1], 0);
  StartRecord(record, tags);
  ReleaseRecord(record);
}

TEST(GameRecordState, SavingBeforeAnyGameDoesNothing) {
  FinishedGame record;
  SaveGame(record, 1);
  EXPECT_EQ(record.file, nullptr);
}

}  // namespace
}  // namespace mirvo
