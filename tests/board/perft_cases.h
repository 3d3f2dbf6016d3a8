// Perft cases from the data files: name | position | depth | count.
#pragma once

#include <gtest/gtest.h>

#include <cctype>
#include <cstdint>
#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "board/perft.h"
#include "tests/support/board_support.h"

namespace mirvo::test {

/// One position; depths rise, and one run to the deepest gives every count.
struct PerftCase {
  std::string name;
  std::string fen;
  std::vector<std::pair<int, std::uint64_t>> counts;  // depth, count
};

inline void PrintTo(const PerftCase& c, std::ostream* out) { *out << c.fen; }

/// The cases of a file; consecutive lines with the same name are one case.
inline std::vector<PerftCase> PerftCases(const std::string& file) {
  std::vector<PerftCase> cases;
  for (const std::string& line : DataLines(file)) {
    std::vector<std::string> fields;
    std::size_t begin = 0;
    for (std::size_t bar; (bar = line.find(" | ", begin)) != std::string::npos; begin = bar + 3) {
      fields.push_back(line.substr(begin, bar - begin));
    }
    fields.push_back(line.substr(begin));
    if (cases.empty() || cases.back().name != fields.at(0)) {
      cases.push_back({fields.at(0), fields.at(1), {}});
    }
    cases.back().counts.emplace_back(std::stoi(fields.at(2)), std::stoull(fields.at(3)));
  }
  return cases;
}

/// "en passant gives check" -> "EnPassantGivesCheck".
inline std::string PerftCaseName(const testing::TestParamInfo<PerftCase>& info) {
  std::string name;
  bool startOfWord = true;
  for (const char c : info.param.name) {
    const auto letter = static_cast<unsigned char>(c);
    if (std::isalnum(letter) != 0) {
      name += static_cast<char>(startOfWord ? std::toupper(letter) : c);
    }
    startOfWord = std::isalnum(letter) == 0;
  }
  return name;
}

/// Counts the case; the position must be unchanged afterwards.
inline void ExpectPerft(const PerftCase& c) {
  const auto board = std::make_unique<Board>(BoardFrom(c.fen));
  const Snapshot before(*board);
  for (std::uint64_t& count : PerftCounts) count = 0;
  PerftTargetDepth = c.counts.back().first;
  PerftCount(*board, 0);
  for (const auto& [depth, count] : c.counts) {
    EXPECT_EQ(PerftCounts[depth - 1], count) << "depth " << depth;
  }
  board->inCheckCache = -1;
  EXPECT_TRUE(before.SameAs(*board));
}

}  // namespace mirvo::test
