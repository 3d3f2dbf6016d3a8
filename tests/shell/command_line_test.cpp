#include "shell/command_line.h"
#include "shell/base/process.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "board/attack_tables.h"
#include "board/fen.h"
#include "book/opening_book.h"
#include "tests/shell/temporary_folder.h"

namespace mirvo {
namespace {

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

using Words = std::initializer_list<const char*>;

/// The settings after a command line of the program's name and `words`. The vector
/// has no terminator, so sanitizers catch a read past the end.
std::unique_ptr<EngineConfig> Parse(Words words) {
  auto config = std::make_unique<EngineConfig>();
  std::vector<const char*> arguments{"mirvo"};
  arguments.insert(arguments.end(), words);
  ParseCommandLine(*config, static_cast<int>(arguments.size()), arguments.data());
  UndoEndWithClosedPipe();
  return config;
}

/// Whether all settings but the board are the defaults.
bool IsUnchanged(const EngineConfig& config) {
  const auto fresh = std::make_unique<EngineConfig>();
  return config.RunMode == fresh->RunMode && config.PerftDepth == fresh->PerftDepth &&
         std::strcmp(config.AnalyzeFile, fresh->AnalyzeFile) == 0 &&
         config.AnalyzeFirst == fresh->AnalyzeFirst && config.AnalyzeCount == fresh->AnalyzeCount &&
         config.Quiet == fresh->Quiet && config.DepthSearch == fresh->DepthSearch &&
         config.InfiniteThinkingTime == fresh->InfiniteThinkingTime &&
         config.FixedTimePerMove == fresh->FixedTimePerMove &&
         config.CmdLineBook == fresh->CmdLineBook &&
         std::strcmp(config.CmdLineBookName, fresh->CmdLineBookName) == 0 &&
         config.ToolRunOnly == fresh->ToolRunOnly;
}

bool IsInitialPosition(const Board& board) {
  const auto initial = std::make_unique<Board>();
  return std::equal(board.pieces, board.pieces + nPieces, initial->pieces) &&
         board.sideToMove == white &&
         std::memcmp(&board.castling, &initial->castling, sizeof(CastlingFlags)) == 0;
}

bool HasNoCastlingRight(const Board& board) {
  const std::uint8_t lost[sizeof(CastlingFlags)] = {1, 1, 1, 1, 1, 1, 1, 1};
  return std::memcmp(&board.castling, lost, sizeof lost) == 0;
}

/// White king a1, black king h8, white pawn e2.
constexpr char placement[] = "7k/8/8/8/8/8/4P3/K7";

void ExpectTestPosition(const Board& board, int side) {
  EXPECT_EQ(board.pieces[PieceIndex(white, king)], Bit(0));
  EXPECT_EQ(board.pieces[PieceIndex(black, king)], Bit(63));
  EXPECT_EQ(board.pieces[PieceIndex(white, pawn)], Bit(12));
  EXPECT_EQ(board.occupied, Bit(0) | Bit(63) | Bit(12));
  EXPECT_EQ(board.sideToMove, side);
}

TEST(CommandLine, ChangesNothingWithoutOptions) {
  const auto config = Parse({});
  EXPECT_TRUE(IsUnchanged(*config));
  EXPECT_TRUE(IsInitialPosition(config->CommandLineBoard));
}

TEST(CommandLine, CopesWithoutAnyWord) {
  auto config = std::make_unique<EngineConfig>();
  ParseCommandLine(*config, 0, nullptr);
  EXPECT_TRUE(IsUnchanged(*config));
}

TEST(CommandLine, TakesAMissingTextForAnEmptyWord) {
  auto config = std::make_unique<EngineConfig>();
  const char* const words[] = {"mirvo", nullptr, "-usebook", nullptr, "-quiet"};
  ParseCommandLine(*config, 5, words);
  EXPECT_STREQ(config->CmdLineBookName, "");
  EXPECT_TRUE(config->Quiet);
}

TEST(CommandLine, ExaminesTheProgramsNameToo) {
  auto config = std::make_unique<EngineConfig>();
  const char* const words[] = {"-quiet"};
  ParseCommandLine(*config, 1, words);
  EXPECT_TRUE(config->Quiet);
}

TEST(CommandLine, SkipsUnknownWords) {
  CaptureStdout();
  const auto config = Parse({"-unknown", "perft", "--x", "", "-", "--", "e2e4", "3", "-Perft",
                             "-QUIET", "-Eval", "-perftx", "-perf", "--perft", "-p", " -quiet"});
  EXPECT_EQ(GetCapturedStdout(), "");
  EXPECT_TRUE(IsUnchanged(*config));
}

TEST(CommandLine, ReadsOptionsBehindUnknownWords) {
  EXPECT_EQ(Parse({"-Quiet", "what", "-quiet"})->Quiet, 1);
}

TEST(CommandLine, PerftTakesADepth) {
  for (const char* const option : {"-perft", "--p"}) {
    const auto config = Parse({option, "5"});
    EXPECT_EQ(config->RunMode, RunModeCode::perft);
    EXPECT_EQ(config->PerftDepth, 5);
    EXPECT_TRUE(IsInitialPosition(config->CommandLineBoard));
  }
}

TEST(CommandLine, PerftDepthIsHeldAtTen) {
  const struct {
    const char* word;
    std::int32_t depth;
  } cases[] = {
      {"9", 9},   {"10", 10},  {"11", 10}, {"2147483647", 10}, {"99999999999", 10}, {"0", 0},
      {"-3", -3}, {"deep", 0}, {"", 0},    {"4x", 4}};
  for (const auto& [word, depth] : cases) {
    EXPECT_EQ(Parse({"-perft", word})->PerftDepth, depth) << word;
  }
}

TEST(CommandLine, PerftTakesThreeWordsAsPosition) {
  const auto config = Parse({"-perft", "2", placement, "b", "-", "-quiet"});
  EXPECT_EQ(config->PerftDepth, 2);
  ExpectTestPosition(config->CommandLineBoard, black);
  EXPECT_TRUE(HasNoCastlingRight(config->CommandLineBoard));
  EXPECT_TRUE(config->Quiet);
}

TEST(CommandLine, PerftTakesAnotherOptionForThePosition) {
  const auto config = Parse({"-perft", "2", "-quiet"});
  EXPECT_EQ(config->PerftDepth, 2);
  EXPECT_FALSE(config->Quiet);
  EXPECT_FALSE(IsInitialPosition(config->CommandLineBoard));
}

TEST(CommandLine, PerftAsLastWordHasDepthZero) {
  const auto config = Parse({"-perft"});
  EXPECT_EQ(config->RunMode, RunModeCode::perft);
  EXPECT_EQ(config->PerftDepth, 0);
  EXPECT_TRUE(IsInitialPosition(config->CommandLineBoard));
}

TEST(CommandLine, PerftWithoutPositionGoesBackToTheInitialOne) {
  const auto config = Parse({"-eval", placement, "b", "-", "-perft", "1"});
  EXPECT_TRUE(IsInitialPosition(config->CommandLineBoard));
  EXPECT_EQ(config->RunMode, RunModeCode::perft);
}

TEST(CommandLine, MissingPositionWordsReadAsEmpty) {
  const auto sideMissing = Parse({"-perft", "1", placement});
  ExpectTestPosition(sideMissing->CommandLineBoard, white);
  EXPECT_TRUE(HasNoCastlingRight(sideMissing->CommandLineBoard));
  const auto castlingMissing = Parse({"-eval", placement, "b"});
  ExpectTestPosition(castlingMissing->CommandLineBoard, black);
  EXPECT_TRUE(HasNoCastlingRight(castlingMissing->CommandLineBoard));
  const auto allMissing = Parse({"-eval"});
  EXPECT_EQ(allMissing->RunMode, RunModeCode::eval);
  EXPECT_EQ(allMissing->CommandLineBoard.occupied, 0U);
  EXPECT_EQ(allMissing->CommandLineBoard.sideToMove, white);
  EXPECT_TRUE(HasNoCastlingRight(allMissing->CommandLineBoard));
}

TEST(CommandLine, PositionsHaveTheirKey) {
  // Published key of the position after 1. e4.
  const auto config =
      Parse({"-eval", "rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR", "b", "KQkq"});
  EXPECT_EQ(config->CommandLineBoard.positionKey, 0x823c9b50fd114196ULL);
  EXPECT_FALSE(HasEnPassant(config->CommandLineBoard));
}

TEST(CommandLine, TestLoadsAPosition) {
  const auto config = Parse({"-test", placement, "b", "-", "-quiet"});
  EXPECT_EQ(config->RunMode, RunModeCode::test);
  ExpectTestPosition(config->CommandLineBoard, black);
  EXPECT_TRUE(config->Quiet);
}

TEST(CommandLine, TestAsLastWordKeepsTheBoard) {
  const auto config = Parse({"-quiet", "-test"});
  EXPECT_EQ(config->RunMode, RunModeCode::test);
  EXPECT_TRUE(IsInitialPosition(config->CommandLineBoard));
  EXPECT_TRUE(config->Quiet);
}

TEST(CommandLine, AnalyzeTakesTheWholeFile) {
  for (const char* const option : {"-analyze", "--a"}) {
    const auto config = Parse({option, "suite.epd"});
    EXPECT_EQ(config->RunMode, RunModeCode::analyze);
    EXPECT_STREQ(config->AnalyzeFile, "suite.epd");
    EXPECT_EQ(config->AnalyzeFirst, 0);
    EXPECT_EQ(config->AnalyzeCount, 100000);
  }
}

TEST(CommandLine, AnalyzeTakesFirstAndCount) {
  const auto config = Parse({"-analyze", "suite.epd", "3", "7", "-quiet"});
  EXPECT_EQ(config->AnalyzeFirst, 3);
  EXPECT_EQ(config->AnalyzeCount, 7);
  EXPECT_TRUE(config->Quiet);
}

TEST(CommandLine, AnalyzeForgetsAnEarlierRange) {
  const auto config = Parse({"-analyze", "first.epd", "3", "7", "-analyze", "second.epd"});
  EXPECT_STREQ(config->AnalyzeFile, "second.epd");
  EXPECT_EQ(config->AnalyzeFirst, 0);
  EXPECT_EQ(config->AnalyzeCount, 100000);
}

TEST(CommandLine, AnalyzeTakesWhateverFollowsTheFile) {
  const auto config = Parse({"-analyze", "suite.epd", "-depth", "6", "-quiet"});
  EXPECT_EQ(config->AnalyzeFirst, 0);
  EXPECT_EQ(config->AnalyzeCount, 6);
  EXPECT_EQ(config->DepthSearch, 40);
  EXPECT_TRUE(config->Quiet);
}

TEST(CommandLine, AnalyzeWithoutCountAnalysesNothing) {
  const auto config = Parse({"-analyze", "suite.epd", "3"});
  EXPECT_EQ(config->AnalyzeFirst, 3);
  EXPECT_EQ(config->AnalyzeCount, 0);
}

TEST(CommandLine, AnalyzeWithoutFileHasAnEmptyName) {
  const auto config = Parse({"-analyze"});
  EXPECT_EQ(config->RunMode, RunModeCode::analyze);
  EXPECT_STREQ(config->AnalyzeFile, "");
}

TEST(CommandLine, FileNamesAreCutAtTheirWidth) {
  for (const std::size_t length : {62U, 63U, 64U, 126U, 127U, 128U, 4000U}) {
    const std::string name(length, 'f');
    const auto config = Parse({"-usebook", name.c_str(), "-quiet", "-analyze", name.c_str()});
    EXPECT_EQ(config->AnalyzeFile, name.substr(0, 127)) << length;
    EXPECT_EQ(config->CmdLineBookName, name.substr(0, 63)) << length;
    EXPECT_TRUE(config->Quiet) << length;
  }
}

TEST(CommandLine, QuietIsAFlag) {
  for (const char* const option : {"-quiet", "--q"}) {
    EXPECT_EQ(Parse({option})->Quiet, 1);
  }
}

TEST(CommandLine, EvalLoadsAPosition) {
  const auto config = Parse({"-eval", placement, "w", "-", "-quiet"});
  EXPECT_EQ(config->RunMode, RunModeCode::eval);
  ExpectTestPosition(config->CommandLineBoard, white);
  EXPECT_TRUE(config->Quiet);
}

TEST(CommandLine, UseBookIsOnlyRemembered) {
  const auto config = Parse({"-usebook", "other.bk"});
  EXPECT_EQ(config->CmdLineBook, 1);
  EXPECT_STREQ(config->CmdLineBookName, "other.bk");
  EXPECT_STREQ(config->BookName, "book.bk");
  EXPECT_EQ(config->UseOpeningBook, 1);
  EXPECT_EQ(config->RunMode, RunModeCode::engine);
  EXPECT_FALSE(config->ToolRunOnly);
}

TEST(CommandLine, TimeOfZeroIsInfinite) {
  for (const Words& words :
       {Words{"-time", "0"}, Words{"--t", "0"}, Words{"-time"}, Words{"-time", "long"}}) {
    const auto config = Parse(words);
    EXPECT_EQ(config->InfiniteThinkingTime, 1);
    EXPECT_EQ(config->FixedTimePerMove, -1);
  }
}

TEST(CommandLine, TimeIsFixedInSeconds) {
  const auto config = Parse({"-time", "5"});
  EXPECT_EQ(config->FixedTimePerMove, 5000);
  EXPECT_EQ(config->InfiniteThinkingTime, 0);
  EXPECT_EQ(Parse({"--t", "2147483"})->FixedTimePerMove, 2147483000);
  EXPECT_EQ(Parse({"--t", "2147484"})->FixedTimePerMove, 2147483647);
  EXPECT_EQ(Parse({"--t", "-2"})->FixedTimePerMove, -2000);
}

TEST(CommandLine, DepthIsTheOnlyLimit) {
  for (const char* const option : {"-depth", "--d"}) {
    const auto config = Parse({option, "9"});
    EXPECT_EQ(config->DepthSearch, 9);
    EXPECT_EQ(config->InfiniteThinkingTime, 1);
    EXPECT_EQ(config->FixedTimePerMove, -1);
  }
  EXPECT_EQ(Parse({"-depth"})->DepthSearch, 0);
}

TEST(CommandLine, LaterOptionsOverrideEarlierOnes) {
  const auto config = Parse({"-depth", "9", "-perft", "3", placement, "w", "-", "-depth", "7",
                             "-eval", placement, "b", "-"});
  EXPECT_EQ(config->DepthSearch, 7);
  EXPECT_EQ(config->RunMode, RunModeCode::eval);
  ExpectTestPosition(config->CommandLineBoard, black);
}

TEST(CommandLine, OverridesTheSettingsItIsGiven) {
  EngineConfig config;
  config.DepthSearch = 12;
  config.TTHashSize = 7;
  const char* const words[] = {"mirvo", "-depth", "5"};
  ParseCommandLine(config, 3, words);
  EXPECT_EQ(config.DepthSearch, 5);
  EXPECT_EQ(config.TTHashSize, 7);
}

/// The book tools run while the command line is read.
class BookTools : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    InitAttackTables();
    CreateOpeningBook(openingBook);
  }
  static void TearDownTestSuite() { DestroyOpeningBook(openingBook); }

  std::string Run(Words words) {
    CaptureStdout();
    config = Parse(words);
    return GetCapturedStdout();
  }

  TemporaryFolder folder;
  std::unique_ptr<EngineConfig> config;
};

/// A draw, so that the moves of both sides have points.
constexpr char drawnGame[] = "[Result \"1/2-1/2\"]\n\n1. e4 e5 1/2-1/2\n";

TEST_F(BookTools, CreateBookBuildsAndWrites) {
  WriteFile("games.pgn", drawnGame);
  const std::string text = Run({"-createbook", "games.pgn", "20", "1", "new.bk", "-quiet"});
  EXPECT_NE(text.find("done. (Number games: 1)\n"), std::string::npos) << text;
  EXPECT_NE(text.find("done. (Valid lines 2)\n"), std::string::npos) << text;
  EXPECT_TRUE(config->ToolRunOnly);
  EXPECT_EQ(config->RunMode, RunModeCode::createBook);
  EXPECT_TRUE(config->Quiet);
  EXPECT_EQ(openingBook.maxPlies, 20);
  EXPECT_EQ(openingBook.minHits, 1);
  EXPECT_EQ(std::filesystem::file_size("new.bk"), 32U);
}

TEST_F(BookTools, CreateBookWithoutGamesWritesNothing) {
  WriteFile("new.bk", "kept");
  const std::string text = Run({"-createbook", "missing.pgn", "20", "1", "new.bk"});
  EXPECT_NE(text.find("Problem reading opening file!!\n"), std::string::npos) << text;
  EXPECT_EQ(text.substr(text.size() - 5), "done.");
  EXPECT_EQ(ReadFile("new.bk"), "kept");
}

TEST_F(BookTools, StatisticsAndMovesOfABook) {
  WriteFile("games.pgn", drawnGame);
  Run({"-createbook", "games.pgn", "20", "1", "new.bk"});
  EXPECT_EQ(Run({"-bookstats", "new.bk"}), "\nNumber positions: 2\nNumber moves: 2\n");
  EXPECT_TRUE(config->ToolRunOnly);
  EXPECT_EQ(config->RunMode, RunModeCode::engine);
  EXPECT_EQ(Run({"-listmoves", "new.bk", "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR", "w", "KQkq",
                 "-quiet"}),
            "\n e2e4 100.00% (65535)\n");
  EXPECT_TRUE(config->ToolRunOnly);
  EXPECT_TRUE(config->Quiet);
}

TEST_F(BookTools, MergeBooksJoinsTwoFiles) {
  WriteFile("games.pgn", drawnGame);
  Run({"-createbook", "games.pgn", "20", "1", "new.bk"});
  const std::string text = Run({"-mergebooks", "new.bk", "new.bk", "joined.bk", "-quiet"});
  EXPECT_NE(text.find("* Saving.............done. (Valid lines 2)\n"), std::string::npos) << text;
  EXPECT_TRUE(config->ToolRunOnly);
  EXPECT_TRUE(config->Quiet);
  EXPECT_TRUE(std::filesystem::exists("joined.bk"));
}

TEST_F(BookTools, SurviveMissingWords) {
  for (const Words& words :
       {Words{"-createbook"}, Words{"-createbook", "a"}, Words{"-createbook", "a", "1"},
        Words{"-createbook", "a", "1", "1"}, Words{"-mergebooks"}, Words{"-mergebooks", "a"},
        Words{"-mergebooks", "a", "b"}, Words{"-listmoves"}, Words{"-listmoves", "a"},
        Words{"-listmoves", "a", placement}, Words{"-listmoves", "a", placement, "w"},
        Words{"-bookstats"}}) {
    Run(words);
    EXPECT_TRUE(config->ToolRunOnly);
  }
}

}  // namespace
}  // namespace mirvo
