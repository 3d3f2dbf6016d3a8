// The opening lines that come with the engine: every move is legal and
// unambiguous to the reader.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "board/attacks.h"
#include "board/bb_move_generator.h"
#include "board/make_move.h"
#include "book/book_builder.h"
#include "book/book_file.h"
#include "book/pgn_reader.h"
#include "book/pgn_scanner.h"
#include "tests/book/book_fixture.h"

namespace mirvo {
namespace {

constexpr char linesPath[] = MIRVO_SOURCE_DIR "/data/opening_lines.pgn";

class OpeningLines : public BookTest {
 protected:
  // The lines as words, one list a game.
  static std::vector<std::vector<std::string>> ReadLines() {
    std::vector<std::vector<std::string>> lines;
    std::FILE* file = std::fopen(linesPath, "r");
    if (file == nullptr) return lines;
    PgnScanner scanner(file);
    bool inMoves = true;
    for (PgnToken token = scanner.Next(); token != PgnToken::end; token = scanner.Next()) {
      if (token == PgnToken::tag) {
        if (inMoves) lines.emplace_back();
        inMoves = false;
      } else {
        inMoves = true;
        const char* move = MoveInWord(scanner.Word());
        if (move != nullptr) lines.back().emplace_back(move);
      }
    }
    std::fclose(file);
    return lines;
  }

  static bool IsFile(char c) { return c >= 'a' && c <= 'h'; }

  // Counts generated moves, legal or not, of the matched move's kind to its square
  // that agree with the file stated in the text.
  static int CountCandidates(Board& board, Move matched, const std::string& text) {
    BBMoveGenerator2 generator(board, board.sideToMove);
    generator.GenerateAll();
    int n = 0;
    for (std::int32_t i = 0; i < generator.count; ++i) {
      const Move move = generator.moves[i];
      if (ToSquare(move) != ToSquare(matched) || MovingKind(move) != MovingKind(matched)) continue;
      const int file = FileOf(FromSquare(move));
      const bool named = MovingKind(move) == pawn && text[0] - 'a' == file;
      if (MovingKind(move) == pawn && !named) continue;
      const bool namesFile = MovingKind(move) != pawn && text.size() > 3 && IsFile(text[1]) &&
                             (IsFile(text[2]) || text[2] == 'x');
      if (namesFile && text[1] - 'a' != file) continue;
      ++n;
    }
    return n;
  }
};

TEST_F(OpeningLines, EveryMoveIsLegalAndUnmistakable) {
  const auto lines = ReadLines();
  ASSERT_GE(lines.size(), 300U);
  for (const auto& line : lines) {
    ASSERT_GE(line.size(), 4U);
    BeginFromStart(board);
    std::string played;
    for (const std::string& text : line) {
      played += text + " ";
      Move partial = noMove;
      const Move move = MatchSan(board, text.c_str(), partial);
      ASSERT_NE(move, noMove) << played;
      EXPECT_EQ(CountCandidates(board, move, text), 1) << played;
      MakeMove(board, move);
      ASSERT_FALSE(MoverLeftInCheck(board)) << played;
      const bool check = InCheck(board, board.sideToMove);
      EXPECT_EQ(text.back() == '+', check) << played;
    }
  }
}

TEST_F(OpeningLines, NoLineStandsTwice) {
  std::set<std::vector<std::string>> seen;
  for (const auto& line : ReadLines()) EXPECT_TRUE(seen.insert(line).second) << line.back();
}

TEST_F(OpeningLines, EveryFamilyHasALine) {
  const std::string text = ReadBytes(linesPath);
  for (char letter = 'A'; letter <= 'E'; ++letter) {
    for (char digit = '0'; digit <= '9'; ++digit) {
      const std::string tag = std::string("[ECO \"") + letter + digit;
      EXPECT_NE(text.find(tag), std::string::npos) << letter << digit;
    }
  }
}

TEST_F(OpeningLines, AllAreDrawnSoThatBothSidesKeepTheirMoves) {
  const std::string text = ReadBytes(linesPath);
  EXPECT_EQ(text.find("1-0"), std::string::npos);
  EXPECT_EQ(text.find("0-1"), std::string::npos);
  EXPECT_EQ(text.find('*'), std::string::npos);
}

TEST_F(OpeningLines, MakeABookWithManyFirstMoves) {
  Printed([&] {
    CreateBook(book, linesPath, 40, 1);
    SaveBook(book, scratch.Path("book.bk").c_str());
  });
  ASSERT_TRUE(LoadBook(book, scratch.Path("book.bk").c_str(), true));
  EXPECT_GE(book.count, 2000);
  const std::int32_t start = FindEntry(book, startKey);
  ASSERT_GE(start, 0);
  EXPECT_GE(book.entries[start].moveCount, 8);
}

}  // namespace
}  // namespace mirvo
