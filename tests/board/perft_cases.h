// Perft cases from the data files: name | position | depth | count.
#pragma once

#include <gtest/gtest.h>

#include <cctype>
#include <cstdint>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "board/perft.h"
#include "tests/support/board_support.h"

namespace mirvo::test {

struct PerftCase {
  std::string name;
  std::string fen;
  int depth = 0;
  std::uint64_t count = 0;
};

inline void PrintTo(const PerftCase& c, std::ostream* out) {
  *out << c.fen << " depth " << c.depth;
}

inline std::vector<PerftCase> PerftCases(const std::string& file) {
  std::vector<PerftCase> cases;
  for (const std::string& line : DataLines(file)) {
    std::vector<std::string> fields;
    std::size_t begin = 0;
    for (std::size_t bar; (bar = line.find(" | ", begin)) != std::string::npos; begin = bar + 3) {
      fields.push_back(line.substr(begin, bar - begin));
    }
    fields.push_back(line.substr(begin));
    cases.push_back(
        {fields.at(0), fields.at(1), std::stoi(fields.at(2)), std::stoull(fields.at(3))});
  }
  return cases;
}

/// "en passant gives check", 3 -> "EnPassantGivesCheck_3".
inline std::string PerftCaseName(const testing::TestParamInfo<PerftCase>& info) {
  std::string name;
  bool startOfWord = true;
  for (const char c : info.param.name) {
    const auto letter = static_cast<unsigned char>(c);
    if (std::isalnum(letter) != 0)
      name += static_cast<char>(startOfWord ? std::toupper(letter) : c);
    startOfWord = std::isalnum(letter) == 0;
  }
  return name + "_" + std::to_string(info.param.depth);
}

/// Counts the case; the position must come out as it went in.
inline void ExpectPerft(const PerftCase& c) {
  const auto board = std::make_unique<Board>(BoardFrom(c.fen));
  const Snapshot before(*board);
  for (std::uint64_t& count : PerftCounts) count = 0;
  PerftTargetDepth = c.depth;
  PerftCount(*board, 0);
  EXPECT_EQ(PerftCounts[c.depth - 1], c.count);
  board->inCheckCache = -1;
  EXPECT_TRUE(before.SameAs(*board));
}

}  // namespace mirvo::test
