// Helpers for tests of the book: scratch files, byte strings of book records, and
// a fixture with an empty book and a board.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "board/attack_tables.h"
#include "board/board.h"
#include "board/fen.h"
#include "book/opening_book.h"
#include "shell/base/clock.h"

namespace mirvo {

// Published Polyglot keys of the initial position and after 1. e4 and 1. e4 d5.
inline constexpr std::uint64_t startKey = 0x463B96181691FC9CULL;
inline constexpr std::uint64_t afterE4Key = 0x823C9B50FD114196ULL;
inline constexpr std::uint64_t afterE4D5Key = 0x0756B94461C50FB0ULL;

/// Squares of a book-file move.
constexpr std::uint16_t FileMove(const char* text, int promotion = 0) {
  return static_cast<std::uint16_t>((text[2] - 'a') | ((text[3] - '1') << 3) |
                                    ((text[0] - 'a') << 6) | ((text[1] - '1') << 9) |
                                    (promotion << 12));
}
static_assert(FileMove("e2e4") == 0x031C);

/// A square by its name.
constexpr int At(const char* name) { return (name[1] - '1') * 8 + (name[0] - 'a'); }

/// A move word from coordinates, with the moving kind stated.
constexpr Move Word(const char* text, int side, int kind) {
  return BuildMove(At(text), At(text + 2), side, kind);
}

/// The sixteen bytes of a record.
inline std::string RecordBytes(std::uint64_t key, std::uint16_t move, std::uint16_t weight,
                               std::uint32_t learn = 0) {
  std::string bytes;
  for (int shift = 56; shift >= 0; shift -= 8) bytes += static_cast<char>((key >> shift) & 255);
  for (int shift = 8; shift >= 0; shift -= 8) bytes += static_cast<char>((move >> shift) & 255);
  for (int shift = 8; shift >= 0; shift -= 8) bytes += static_cast<char>((weight >> shift) & 255);
  for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>((learn >> shift) & 255);
  return bytes;
}

/// A new directory for each test, removed afterwards.
class ScratchDirectory {
 public:
  ScratchDirectory() {
    const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
    std::string name = std::string("mirvo_") + test->test_suite_name() + "_" + test->name();
    for (char& c : name) {
      if (c == '/') c = '_';
    }
    root = std::filesystem::temp_directory_path() /
           (name + "_" + std::to_string(reinterpret_cast<std::uintptr_t>(this) ^ TickCount()));
    std::filesystem::create_directories(root);
  }
  ~ScratchDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(root, ignored);
  }
  ScratchDirectory(const ScratchDirectory&) = delete;
  ScratchDirectory& operator=(const ScratchDirectory&) = delete;

  std::string Path(const char* name) const { return (root / name).string(); }

  /// Writes a file of exactly these bytes and returns its path.
  std::string Write(const char* name, const std::string& bytes) const {
    std::string path = Path(name);
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
  }

  std::filesystem::path root;
};

inline std::string ReadBytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

/// Everything printed while `action` runs.
template <typename Action>
std::string Printed(Action action) {
  testing::internal::CaptureStdout();
  action();
  std::fflush(stdout);
  return testing::internal::GetCapturedStdout();
}

/// Names the cases of a table by their `name` column.
struct CaseName {
  template <typename Case>
  std::string operator()(const testing::TestParamInfo<Case>& testCase) const {
    return testCase.param.name;
  }
};

class BookTest : public testing::Test {
 protected:
  void SetUp() override {
    InitAttackTables();
    ASSERT_TRUE(CreateOpeningBook(book));
  }
  void TearDown() override { DestroyOpeningBook(book); }

  /// Sets the board up from three FEN fields, without en passant.
  Board& Position(const char* placement, const char* side, const char* castling) {
    BeginFromFen(placement, side, castling, board);
    return board;
  }

  /// Appends an entry with one move, without any checks.
  BookEntry& AppendEntry(std::uint64_t key, Move move, std::int32_t hits, std::int32_t weight) {
    BookEntry& entry = book.entries[book.count++];
    entry.key = key;
    entry.moveCount = 0;
    AppendMove(entry, move, hits, weight);
    return entry;
  }
  static void AppendMove(BookEntry& entry, Move move, std::int32_t hits, std::int32_t weight) {
    entry.moves[entry.moveCount] = move;
    entry.hits[entry.moveCount] = hits;
    entry.weights[entry.moveCount] = weight;
    ++entry.moveCount;
  }

  ScratchDirectory scratch;
  OpeningBook book;
  Board board;
};

}  // namespace mirvo
