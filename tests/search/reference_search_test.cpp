// Compares whole searches with the figures of an independent implementation:
// depth, score, nodes and line of every iteration, cache usage and statistics.
#include <gtest/gtest.h>

#include "search/hash/hash_table.h"
#include "tests/support/search_support.h"

namespace mirvo {
namespace {

using test::ReferenceLines;

constexpr int searchDepth = 7;
constexpr int sessionDepth = 6;

struct Case {
  std::string position;
  std::vector<std::string> lines;
};

std::vector<Case> ReadSearchCases() {
  std::vector<Case> cases;
  const std::string prefix = "position: ";
  for (const std::string& line : ReferenceLines("search.txt")) {
    if (line.starts_with(prefix)) {
      cases.push_back({line.substr(prefix.size()), {}});
    } else if (!line.empty()) {
      cases.back().lines.push_back(line);
    }
  }
  return cases;
}

std::string ResultLine(const SearchResult& result) {
  const std::string line = "bestmove " + test::MoveText(result.best);
  return result.ponder == noMove ? line : line + " ponder " + test::MoveText(result.ponder);
}

class ReferenceSearch : public testing::TestWithParam<int> {};

TEST_P(ReferenceSearch, EveryLineAgrees) {
  const Case reference = ReadSearchCases().at(static_cast<std::size_t>(GetParam()));
  SCOPED_TRACE(reference.position);
  test::ColdStart();
  Board board;
  test::SetPosition(board, reference.position);
  SearchResult result{};
  std::vector<std::string> lines = test::SearchToDepth(board, searchDepth, result);
  for (const std::string& line : test::StatisticsLines()) lines.push_back(line);
  lines.push_back(ResultLine(result));
  ASSERT_EQ(lines.size(), reference.lines.size());
  for (std::size_t i = 0; i < lines.size(); ++i) EXPECT_EQ(lines[i], reference.lines[i]);
}

INSTANTIATE_TEST_SUITE_P(Positions, ReferenceSearch, testing::Range(0, 40));

// One running engine: tables, killers and history are kept from move to move.
TEST(ReferenceSession, EverySearchAgrees) {
  std::vector<std::string> commands;
  std::vector<std::string> expected;
  const std::string prefix = "command: position ";
  for (const std::string& line : ReferenceLines("session.txt")) {
    if (line.starts_with(prefix)) {
      commands.push_back(line.substr(prefix.size()));
    } else if (!line.empty()) {
      expected.push_back(line);
    }
  }
  test::ColdStart();
  Board board;
  std::vector<std::string> lines;
  for (const std::string& command : commands) {
    test::SetPosition(board, command);
    SearchResult result{};
    for (const std::string& line : test::SearchToDepth(board, sessionDepth, result)) {
      if (line.starts_with("depth")) lines.push_back(line);
    }
    lines.push_back(ResultLine(result));
  }
  EXPECT_EQ(lines, expected);
}

}  // namespace
}  // namespace mirvo
