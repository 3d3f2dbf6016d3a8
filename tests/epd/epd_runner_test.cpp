#include "epd/epd_runner.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "board/bb_move_generator.h"
#include "board/display.h"
#include "board/legal_moves.h"
#include "epd/epd_reader.h"
#include "search/hash/hash_table.h"
#include "search/search_flags.h"
#include "search/search_hooks.h"
#include "search/search_stats.h"
#include "shell/base/clock.h"
#include "shell/base/output.h"
#include "shell/config/config.h"
#include "tests/support/search_support.h"

namespace mirvo {
namespace {

constexpr char mateInOne[] = "6k1/5ppp/8/8/8/8/8/R6K w - - ";
constexpr char smothered[] = "6rk/6pp/8/6N1/8/8/8/K7 w - - ";
constexpr char fork[] = "r3k3/8/p7/3N4/8/8/P4P2/4K3 w - - ";
constexpr char statistics[] =
    "gen> nNodes: N nQSNodes: N branchFactor: N avgDepth: N\n"
    "ext> nExt: N nCheckExt: N nPromExt: N nPawnOnlyExt: N nOneMoveExt: N\n"
    "mp> nSplits: N\n";

int nPolls = 0;
std::uint32_t FrozenClock() { return 5000; }

constexpr char digits[] = "0123456789";

/// The line with N for each number behind a colon.
std::string WithoutNumbers(std::string line) {
  for (std::size_t colon = line.find(": "); colon != std::string::npos;
       colon = line.find(": ", colon + 1)) {
    const std::size_t begin = colon + 2;
    const std::size_t end = std::min(line.find_first_not_of("-.0123456789", begin), line.size());
    if (end != begin) line.replace(begin, end - begin, "N");
  }
  return line;
}

/// A result without its running totals, " (right/all)" at the end.
std::string WithoutTotals(const std::string& line) {
  const std::size_t begin = line.rfind(" (");
  if (begin == std::string::npos || !line.ends_with(')')) return line;
  const std::string totals = line.substr(begin + 2, line.size() - begin - 3);
  const bool areTotals = totals.find_first_not_of("/0123456789") == std::string::npos;
  return areTotals ? line.substr(0, begin) : line;
}

/// An iteration's line without its time, the second word.
std::string WithoutTime(std::string line) {
  const std::size_t depth = line.find_first_not_of(' ');
  const std::size_t gap = line.find(' ', depth);
  if (gap == std::string::npos || line.find_first_not_of(digits, depth) != gap) return line;
  const std::size_t colon = line.find_first_not_of(digits, gap + 1);
  if (colon == std::string::npos || line[colon] != ':') return line;
  return line.erase(gap, line.find(' ', gap + 1) - gap);
}

/// The numbers of the statistics lines become N: they belong to the search.
std::string WithoutStatistics(const std::string& text) {
  std::string result;
  for (const std::string& line : test::SplitLines(text)) {
    const bool counts =
        line.starts_with("gen>") || line.starts_with("ext>") || line.starts_with("mp>");
    result += counts ? WithoutNumbers(line) : line;
    result += "\n";
  }
  return result;
}

std::vector<std::string> ResultLines(const std::string& text) {
  std::vector<std::string> results;
  for (const std::string& line : test::SplitLines(text)) {
    if (line.find(" - Analyzed ") != std::string::npos) results.push_back(line);
  }
  return results;
}

std::string LineWith(const std::string& text, const std::string& part) {
  for (const std::string& line : test::SplitLines(text)) {
    if (line.find(part) != std::string::npos) return line;
  }
  return "";
}

bool HasLegalMove(Board& board, int kind, int to) {
  BBMoveGenerator2 generator(board, board.sideToMove);
  generator.GenerateAll();
  for (int i = 0; i < generator.count; ++i) {
    const Move move = generator.moves[i];
    if (MovingKind(move) == kind && ToSquare(move) == to && IsLegalMove(board, move)) return true;
  }
  return false;
}

/// Runs suites in a new folder, with small tables, no clock and quiet searches to
/// depth 3.
class RunSuiteTest : public testing::Test {
 protected:
  RunSuiteTest()
      : folder_(std::filesystem::temp_directory_path() /
                ("mirvo_runner_" + std::to_string(std::random_device{}()))) {
    std::filesystem::create_directory(folder_);
    test::SetTableSizes(1);
    engineConfig.InfiniteThinkingTime = 1;
    engineConfig.DepthSearch = 3;
    engineConfig.Quiet = true;
    test::ColdStart();
  }

  ~RunSuiteTest() override {
    const EngineConfig defaults;
    test::SetDefaultTableSizes();
    engineConfig.InfiniteThinkingTime = 0;
    engineConfig.DepthSearch = defaults.DepthSearch;
    engineConfig.Quiet = false;
    engineConfig.FixedTimePerMove = noFixedTime;
    searchFlags = SearchFlags{};
    searchHooks = SearchHooks{};
    SetTickSource(nullptr);
    std::filesystem::remove_all(folder_);
  }

  RunSuiteTest(const RunSuiteTest&) = delete;
  RunSuiteTest& operator=(const RunSuiteTest&) = delete;

  std::string Write(const std::string& text, const std::string& name = "suite.epd") const {
    std::string path = (folder_ / name).string();
    std::ofstream(path, std::ios::binary) << text;
    return path;
  }

  /// All that a run over the text prints.
  std::string Run(const std::string& text, int first = 0, int count = 100000) const {
    return RunFile(Write(text), first, count);
  }

  static std::string RunFile(const std::string& path, int first = 0, int count = 100000) {
    testing::internal::CaptureStdout();
    RunSuite(path.c_str(), first, count);
    return testing::internal::GetCapturedStdout();
  }

  std::string Path(const std::string& name) const { return (folder_ / name).string(); }

 private:
  std::filesystem::path folder_;
};

TEST_F(RunSuiteTest, AMissingFileGivesItsMessageOnly) {
  const std::string path = Path("none.epd");
  searchFlags.BookInUse = true;
  searchFlags.NoInputPolling = false;
  EXPECT_EQ(RunFile(path), "File \"" + path + "\" not found.\n");
  EXPECT_FALSE(searchFlags.BookInUse);
  EXPECT_TRUE(searchFlags.NoInputPolling);
}

TEST_F(RunSuiteTest, AnnotatedBestMovesAndPointsCountAndPrintAsTheFileHasThem) {
  const std::vector<std::string> results =
      ResultLines(Run(std::string(mateInOne) + "bm Ra8!; c0 \"Ra8!=7\";\n" + smothered +
                      "bm Nf7#!?, Kb2?; c0 \"Nf7!!=4, Kb2?=1\";\n"));
  ASSERT_EQ(results.size(), 2U);
  EXPECT_EQ(results[0], "Pos 1 Ra8 - Correct(Ra8!) - Analyzed 1/2 - Correct 1/1 (100.00% - 7)");
  EXPECT_EQ(results[1],
            "Pos 2 Nf7 - Correct(Nf7#!?, Kb2?) - Analyzed 2/2 - Correct 2/2 (100.00% - 11)");
}

TEST_F(RunSuiteTest, PositionsThatWereReadBeforeGiveWhatTheirFileGives) {
  const std::string path = Write(std::string(mateInOne) + "bm Ra8#;\n" + fork + "bm Nc7+;\n");
  Suite suite;
  ASSERT_TRUE(ReadSuite(path.c_str(), suite));
  testing::internal::CaptureStdout();
  RunSuite(suite, path.c_str(), 1, 5);
  const std::string text = testing::internal::GetCapturedStdout();
  EXPECT_EQ(WithoutStatistics(text), WithoutStatistics(RunFile(path, 1, 5)));
  EXPECT_EQ(ResultLines(text).size(), 1U);
}

TEST_F(RunSuiteTest, QuietRunsPrintOneLineForEachPosition) {
  const std::string path = Write(std::string(mateInOne) + "bm Ra8#; c0 \"Ra8=10\";\n" + smothered +
                                 "bm Kb2; id \"wrong on purpose\";\n");
  EXPECT_EQ(WithoutStatistics(RunFile(path)),
            "Analyzing " + path + " starting at position 0 for 2 position(s)\n" +
                "Pos 1 Ra8 - Correct(Ra8#) - Analyzed 1/2 - Correct 1/1 (100.00% - 10)\n"
                "Pos 2 Nf7 - Wrong(Kb2) - Analyzed 2/2 - Correct 1/2 (50.00% - 10)\n" +
                statistics + "Final Score = 10\nDone.\n");
}

TEST_F(RunSuiteTest, LoudRunsPrintTheBoardTheSearchAndNoNumber) {
  engineConfig.Quiet = false;
  const std::string text = Run(std::string(fork) + "bm Nc7+;");
  const auto board = std::make_unique<Board>();
  SetUpSuitePosition(ParseSuite(std::string(fork) + ";").at(0), *board);
  char diagram[diagramCapacity];
  FormatBoard(*board, BoardLayout::wide, diagram);
  const std::size_t boardAt = text.find(diagram);
  const std::size_t searchAt = text.find("\n 1 0:0 ");
  const std::size_t reportAt = text.find("Eval hash: Cache usage: ");
  const std::size_t resultAt = text.find("\nNc7+ - Correct(Nc7+) - Analyzed 1/1 - ");
  ASSERT_NE(resultAt, std::string::npos) << text;
  EXPECT_LT(boardAt, searchAt);
  EXPECT_LT(searchAt, reportAt);
  EXPECT_LT(reportAt, resultAt);
  EXPECT_EQ(text.find("Pos "), std::string::npos);
}

TEST_F(RunSuiteTest, BestMovesAreListedWithCommas) {
  EXPECT_EQ(ResultLines(Run(std::string(mateInOne) + "bm Ra8 Ra7,Kg1;")).at(0),
            "Pos 1 Ra8 - Correct(Ra8, Ra7, Kg1) - Analyzed 1/1 - Correct 1/1 (100.00% - 0)");
}

TEST_F(RunSuiteTest, APositionWithoutBestMovesIsWrong) {
  EXPECT_EQ(ResultLines(Run(std::string(mateInOne) + "acd 3;")).at(0),
            "Pos 1 Ra8 - Wrong() - Analyzed 1/1 - Correct 0/1 (0.00% - 0)");
}

TEST_F(RunSuiteTest, AvoidMovesCountAsBestMoves) {
  EXPECT_EQ(ResultLines(Run(std::string(mateInOne) + "am Ra8;")).at(0),
            "Pos 1 Ra8 - Correct(Ra8) - Analyzed 1/1 - Correct 1/1 (100.00% - 0)");
}

TEST_F(RunSuiteTest, ABestMoveFromAnotherSquareIsCorrect) {
  EXPECT_EQ(ResultLines(Run(std::string(mateInOne) + "bm Rha8;")).at(0),
            "Pos 1 Ra8 - Correct(Rha8) - Analyzed 1/1 - Correct 1/1 (100.00% - 0)");
}

TEST_F(RunSuiteTest, PointsAddUpOverTheRun) {
  const std::string text = Run(std::string(mateInOne) + "bm Ra8; c0 \"Ra8=12\";" +  // capped: 10
                               mateInOne + "bm Kg1; c0 \"Ra8=12\";" +               // less 10: 2
                               mateInOne + "bm Kg1; c0 \"Ra8=7\";" + mateInOne +    // kept: 7
                               "bm Ra8; c0 \"Ra8=-4\";");
  const std::vector<std::string> lines = ResultLines(text);
  ASSERT_EQ(lines.size(), 4U);
  EXPECT_TRUE(lines[0].ends_with("Correct 1/1 (100.00% - 10)"));
  EXPECT_TRUE(lines[1].ends_with("Correct 1/2 (50.00% - 12)"));
  EXPECT_TRUE(lines[2].ends_with("Correct 1/3 (33.33% - 19)"));
  EXPECT_TRUE(lines[3].ends_with("Correct 2/4 (50.00% - 15)"));
  EXPECT_EQ(LineWith(text, "Final"), "Final Score = 15");
}

struct RangeCase {
  const char* name;
  int first, count;
  const char* printedCount;
  std::vector<std::string> results;  // "Pos %d" and "Analyzed ... Correct ..."
};

class RunSuiteRange : public RunSuiteTest, public testing::WithParamInterface<RangeCase> {};

TEST_P(RunSuiteRange, SearchesThePositionsAskedFor) {
  const RangeCase& range = GetParam();
  const std::string suite =
      std::string(mateInOne) + "bm Ra8;\n" + mateInOne + "bm Kg1;\n" + mateInOne + "bm Ra8;\n";
  const std::string text = Run(suite, range.first, range.count);
  EXPECT_TRUE(test::SplitLines(text)[0].ends_with("starting at position " +
                                                  std::to_string(range.first) + " for " +
                                                  range.printedCount + " position(s)"));
  std::vector<std::string> results;
  for (const std::string& line : ResultLines(text)) {
    results.push_back(line.substr(0, line.find(" Ra8")) + line.substr(line.find(" - Analyzed")));
  }
  EXPECT_EQ(results, range.results);
  EXPECT_TRUE(
      WithoutStatistics(text).ends_with(std::string(statistics) + "Final Score = 0\nDone.\n"));
}
INSTANTIATE_TEST_SUITE_P(
    Ranges, RunSuiteRange,
    testing::Values(
        RangeCase{"All",
                  0,
                  100000,
                  "3",
                  {"Pos 1 - Analyzed 1/3 - Correct 1/1 (100.00% - 0)",
                   "Pos 2 - Analyzed 2/3 - Correct 1/2 (50.00% - 0)",
                   "Pos 3 - Analyzed 3/3 - Correct 2/3 (66.67% - 0)"}},
        RangeCase{"Middle", 1, 1, "1", {"Pos 2 - Analyzed 1/1 - Correct 0/1 (0.00% - 0)"}},
        RangeCase{"PastTheEnd", 2, 7, "3", {"Pos 3 - Analyzed 1/3 - Correct 1/1 (100.00% - 0)"}},
        RangeCase{
            "BeforeTheStart", -1, 2, "2", {"Pos 1 - Analyzed 2/2 - Correct 1/2 (50.00% - 0)"}},
        RangeCase{"WhollyOutside", 3, 3, "3", {}},
        RangeCase{"GreatestFirst", 2147483647, 3, "3", {}},
        RangeCase{"SmallestFirst", -2147483647 - 1, 3, "3", {}},
        RangeCase{"CountZero", 0, 0, "0", {}}, RangeCase{"CountNegative", 0, -5, "-5", {}}),
    [](const auto& test) { return test.param.name; });

TEST_F(RunSuiteTest, NothingToSearchPrintsZeroQuotients) {
  const std::string path = Write("");
  EXPECT_EQ(RunFile(path),
            "Analyzing " + path + " starting at position 0 for 0 position(s)\n" +
                "gen> nNodes: 0 nQSNodes: 0 branchFactor: 0.00 avgDepth: 0.0\n"
                "ext> nExt: 0 nCheckExt: 0 nPromExt: 0 nPawnOnlyExt: 0 nOneMoveExt: 0\n"
                "mp> nSplits: 0\nFinal Score = 0\nDone.\n");
}

TEST_F(RunSuiteTest, OnlyTheFinalScoreStaysOutOfTheLog) {
  std::FILE* const engineLog = output.log;
  std::FILE* const log = std::tmpfile();
  ASSERT_NE(log, nullptr);
  output.log = log;
  std::string printed = Run(std::string(mateInOne) + "bm Ra8;");
  output.log = engineLog;
  std::rewind(log);
  std::string logged;
  for (int c = std::fgetc(log); c != EOF; c = std::fgetc(log)) logged += static_cast<char>(c);
  std::fclose(log);
  const std::string finalScore = "Final Score = 0\n";
  const std::size_t at = printed.find(finalScore);
  ASSERT_NE(at, std::string::npos);
  EXPECT_EQ(logged, printed.erase(at, finalScore.size()));
}

TEST_F(RunSuiteTest, WhatTheTablesCountedBeforeIsInNoReport) {
  engineConfig.Quiet = false;
  const std::string suite = std::string(fork) + "bm Nc7+;";
  const std::string report = LineWith(Run(suite), "Eval hash: Cache usage: ");
  ASSERT_NE(report, "");
  for (HashTable* table : {&EvalHashTable, &PawnHashTable, &TranspositionTable}) {
    table->hits = table->misses = table->conflicts = table->stores = 100000;
  }
  EXPECT_EQ(LineWith(Run(suite), "Eval hash: Cache usage: "), report);
}

TEST_F(RunSuiteTest, OfThePositionsBeforeNotEvenAMoveIsKept) {
  const std::uint32_t nSlots = TranspositionTable.size;
  for (std::uint32_t i = 0; i < nSlots; ++i) {
    TranspositionTable.entries[i].move = checkMark;
    TranspositionTable.tags[i] = 1;  // in use
  }
  Run("7k/5Q2/6K1/8/8/8/8/8 b - - bm Kg8;");
  std::uint32_t nKept = 0;
  for (std::uint32_t i = 0; i < nSlots; ++i) {
    nKept += TranspositionTable.entries[i].move != noMove ? 1 : 0;
  }
  EXPECT_EQ(nKept, 0U);
}

TEST_F(RunSuiteTest, StalemateAndMateHaveNoMoveAndAreWrong) {
  const std::vector<std::string> lines =
      ResultLines(Run("7k/5Q2/6K1/8/8/8/8/8 b - - bm Kg8; c0 \"a1=5\";"
                      "R5k1/5ppp/8/8/8/8/8/7K b - - bm 0000;"));
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(lines[0], "Pos 1 0000 - Wrong(Kg8) - Analyzed 1/2 - Correct 0/1 (0.00% - 0)");
  EXPECT_EQ(lines[1], "Pos 2 0000 - Wrong(0000) - Analyzed 2/2 - Correct 0/2 (0.00% - 0)");
}

TEST_F(RunSuiteTest, TheBookIsNotAskedAndInputNotPolled) {
  searchFlags.BookInUse = true;
  nPolls = 0;
  searchHooks.pollInput = [] { ++nPolls; };
  engineConfig.FixedTimePerMove = 100;
  Run("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - bm e4;");
  EXPECT_EQ(nPolls, 0);
  EXPECT_FALSE(searchFlags.BookInUse);
  EXPECT_TRUE(searchFlags.NoInputPolling);
  // The first move out of the book would have doubled it.
  EXPECT_EQ(engineConfig.FixedTimePerMove, 100);
}

TEST_F(RunSuiteTest, WithoutLimitsEachSearchEndsAtItsFirstClockReading) {
  engineConfig.InfiniteThinkingTime = 0;
  engineConfig.DepthSearch = 40;
  SetTickSource(FrozenClock);
  const std::string text = Run("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - bm e4;");
  EXPECT_EQ(ResultLines(text).size(), 1U);
  // The clock is read once in 1024 node entries; quiescence moves come on top.
  EXPECT_GT(searchStats.nNodes, 500);
  EXPECT_LT(searchStats.nNodes, 2048);
}

TEST_F(RunSuiteTest, SuiteTextIsNeverAFormat) {
  const std::string path = Write(std::string(mateInOne) + "bm %s%n%s;", "%d%n.epd");
  const std::string text = RunFile(path);
  EXPECT_TRUE(text.starts_with("Analyzing " + path + " starting"));
  EXPECT_NE(text.find("Wrong(%s%n%s)"), std::string::npos);
  EXPECT_EQ(RunFile(Path("%s%n")), "File \"" + Path("%s%n") + "\" not found.\n");
}

TEST_F(RunSuiteTest, LongMoveListsArePrintedWhole) {
  std::string suite = std::string(mateInOne) + "bm Ra8";
  std::string list = "(Ra8";
  for (int i = 0; i < 1000; ++i) {
    suite += " Ra" + std::to_string(i);
    list += ", Ra" + std::to_string(i);
  }
  EXPECT_NE(Run(suite + ";").find("Correct" + list + ") - Analyzed"), std::string::npos);
}

TEST_F(RunSuiteTest, BoardsBeyondAnyGameAreSearchedWithoutHarm) {
  const std::string text =
      Run("8/8/8/8/8/8/8/8 w - - bm Ra8;"
          "8/pppppppp/8/8/8/8/PPPPPPPP/8 b KQkq - bm a5;"
          "R7/8/8/8/8/8/8/7k w - - bm Ra1;"
          "QQQQQQQk/QQQQQQQQ/QQQQQQQQ/8/8/8/8/K7 w - - bm Qb7;"
          "PPPPPPPP/k7/8/8/8/8/K7/pppppppp w - a9 bm a1;"
          "kkkkkkkk/8/8/8/8/8/8/KKKKKKKK b - h3 bm Ka1;"
          "k7/ppppppppp/PPPPPPPPP/8/8/8/8/8/K7 w - b bm b8;");
  EXPECT_EQ(ResultLines(text).size(), 7U);
}

TEST_F(RunSuiteTest, TheShippedSuiteNamesOnlyLegalMoves) {
  Suite suite;
  ASSERT_TRUE(ReadSuite(MIRVO_SOURCE_DIR "/data/mirvo-suite.epd", suite));
  ASSERT_EQ(suite.size(), 25U);
  const auto board = std::make_unique<Board>();
  for (std::size_t i = 0; i < suite.size(); ++i) {
    SetUpSuitePosition(suite[i], *board);
    std::vector<Move> stated;
    for (const BestMove& best : suite[i].bestMoves) stated.push_back(best.move);
    for (const PointEntry& entry : suite[i].pointEntries) stated.push_back(entry.move);
    EXPECT_GE(suite[i].bestMoves.size(), 1U);
    EXPECT_GE(suite[i].pointEntries.size(), suite[i].bestMoves.size());
    for (const Move move : stated) {
      EXPECT_TRUE(HasLegalMove(*board, MovingKind(move), ToSquare(move))) << i << " " << move;
    }
  }
}

// Every search starts from empty tables, so neither the answers nor any
// iteration's depth, score or line may depend on the order of a suite.
TEST_F(RunSuiteTest, ResultsDoNotDependOnThePlaceInTheSuite) {
  std::ifstream file(std::string(MIRVO_SOURCE_DIR) + "/data/mirvo-suite.epd");
  std::vector<std::string> positions;
  for (std::string line; std::getline(file, line);) positions.push_back(line);
  ASSERT_EQ(positions.size(), 25U);
  engineConfig.Quiet = false;
  engineConfig.DepthSearch = 4;

  // By position: the output between its board and its totals.
  const auto reports = [this](const std::vector<std::string>& lines) {
    std::string suite;
    for (const std::string& line : lines) suite += line + "\n";
    std::string text;
    for (const std::string& line : test::SplitLines(Run(suite))) {
      if (!line.starts_with("Pondering: ")) text += WithoutTime(WithoutTotals(line)) + "\n";
    }
    std::map<std::string, std::string> result;
    std::size_t begin = text.find("\n |a b");
    for (const std::string& line : lines) {
      const std::size_t end = text.find(" - Analyzed ", begin);
      result[line] = text.substr(begin, end - begin);
      begin = text.find("\n |a b", end);
    }
    return result;
  };

  const std::map<std::string, std::string> inOrder = reports(positions);
  std::mt19937 random(7);
  for (int round = 0; round < 3; ++round) {
    for (std::size_t i = positions.size() - 1; i > 0; --i) {
      std::swap(positions[i], positions[random() % (i + 1)]);
    }
    EXPECT_EQ(reports(positions), inOrder);
  }
}

}  // namespace
}  // namespace mirvo
