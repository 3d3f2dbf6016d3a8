#include "board/keys.h"

#include <gtest/gtest.h>

#include <sstream>

#include "board/board.h"
#include "tests/support/board_support.h"

namespace mirvo {
namespace {

using test::BoardFrom;
using test::startFen;

struct PublishedKey {
  const char* moves;
  std::uint64_t key;
};

// The examples of the Polyglot book format.
const PublishedKey publishedKeys[] = {
    {"", 0x463B96181691FC9CULL},
    {"e2e4", 0x823C9B50FD114196ULL},
    {"e2e4 d7d5", 0x0756B94461C50FB0ULL},
    {"e2e4 d7d5 e4e5", 0x662FAFB965DB29D4ULL},
    {"e2e4 d7d5 e4e5 f7f5", 0x22A48B5A8E47FF78ULL},
    {"e2e4 d7d5 e4e5 f7f5 e1e2", 0x652A607CA3F242C1ULL},
    {"e2e4 d7d5 e4e5 f7f5 e1e2 e8f7", 0x00FDD303C946BDD9ULL},
    {"a2a4 b7b5 h2h4 b5b4 c2c4", 0x3C8123EA7B067637ULL},
    {"a2a4 b7b5 h2h4 b5b4 c2c4 b4c3 a1a3", 0x5C3F9B829B279560ULL},
};

TEST(PositionKey, EqualsThePublishedKeys) {
  for (const PublishedKey& example : publishedKeys) {
    Board board = BoardFrom(startFen);
    test::Play(board, example.moves);
    EXPECT_EQ(board.positionKey, example.key) << example.moves;
    EXPECT_EQ(ComputeKey(board), example.key) << example.moves;
  }
}

// The 64-bit FNV-1a hash over eight bytes per number, lowest first.
std::uint64_t Fold(const std::uint64_t* numbers, int count) {
  std::uint64_t hash = 0xCBF29CE484222325ULL;
  for (int i = 0; i < count; ++i) {
    for (int byte = 0; byte < 8; ++byte) {
      hash ^= numbers[i] >> (8 * byte) & 255;
      hash *= 0x100000001B3ULL;
    }
  }
  return hash;
}

// Polyglot's own books confirm the entries that games reach (below); the hash
// covers the rest.
TEST(Random64, KeepsEveryEntry) {
  EXPECT_EQ(Random64[0], 0x9D39247E33776D41ULL);
  EXPECT_EQ(Random64[780], 0xF8D626AAAF278509ULL);
  EXPECT_EQ(Fold(Random64, nRandom64), 0x6C25BE54E4F62B13ULL);
}

TEST(PieceKeys, FollowThePublishedOrder) {
  for (int kind = 0; kind < nKinds; ++kind) {
    for (int square = 0; square < nSquares; ++square) {
      // Black pawn 0, white pawn 1, black knight 2, ... white king 11.
      EXPECT_EQ(PieceKey(black, kind, square), Random64[64 * (2 * kind) + square]);
      EXPECT_EQ(PieceKey(white, kind, square), Random64[64 * (2 * kind + 1) + square]);
    }
  }
}

// An empty board, whose key has only the parts besides the pieces.
Board EmptyBoard() { return BoardFrom("8/8/8/8/8/8/8/8 b -"); }

TEST(ComputeKey, OfAnEmptyBoardWithBlackToMoveIsZero) { EXPECT_EQ(ComputeKey(EmptyBoard()), 0U); }

TEST(ComputeKey, HoldsTheSideKeyWhenWhiteMoves) {
  Board board = EmptyBoard();
  board.sideToMove = white;
  EXPECT_EQ(ComputeKey(board), Random64[780]);
}

TEST(ComputeKey, HoldsOneKeyForEachCastlingRight) {
  const struct {
    const char* rights;
    std::uint64_t key;
  } cases[] = {{"K", Random64[768]},
               {"Q", Random64[769]},
               {"k", Random64[770]},
               {"q", Random64[771]},
               {"KQkq", Random64[768] ^ Random64[769] ^ Random64[770] ^ Random64[771]},
               {"-", 0}};
  for (const auto& c : cases) {
    const Board board = BoardFrom(std::string("8/8/8/8/8/8/8/8 b ") + c.rights);
    EXPECT_EQ(ComputeKey(board), c.key) << c.rights;
  }
}

TEST(ComputeKey, AMovedKingTakesBothRightsOut) {
  Board board = BoardFrom("8/8/8/8/8/8/8/8 b KQkq");
  board.castling.kingMoved[white] = 1;
  EXPECT_EQ(ComputeKey(board), Random64[770] ^ Random64[771]);
  board.castling.kingMoved[black] = 1;
  EXPECT_EQ(ComputeKey(board), 0U);
}

TEST(ComputeKey, HasCastledTakesNoPart) {
  Board board = BoardFrom("8/8/8/8/8/8/8/8 b KQkq");
  const std::uint64_t before = ComputeKey(board);
  board.castling.hasCastled[white] = 1;
  board.castling.hasCastled[black] = 1;
  EXPECT_EQ(ComputeKey(board), before);
}

TEST(ComputeKey, HoldsTheFileOfTheEnPassantSquare) {
  Board board = EmptyBoard();
  for (int file = 0; file < 8; ++file) {
    board.epFile = static_cast<std::uint8_t>(file);
    board.epRank = 2;
    EXPECT_EQ(ComputeKey(board), Random64[772 + file]);
  }
  board.epFile = 255;
  EXPECT_EQ(ComputeKey(board), 0U);
}

// "KEY position" lines of a data file.
int CheckKeys(const std::string& file) {
  int nChecked = 0;
  for (const std::string& line : test::DataLines(file)) {
    std::istringstream words(line);
    std::uint64_t key = 0;
    words >> std::hex >> key;
    std::string fen;
    std::getline(words >> std::ws, fen);
    EXPECT_EQ(BoardFrom(fen).positionKey, key) << fen;
    ++nChecked;
  }
  return nChecked;
}

TEST(ComputeKey, EqualsTheReferenceKeys) { EXPECT_EQ(CheckKeys("reference/keys.txt"), 43); }

TEST(ComputeKey, EqualsTheKeysOfAPolyglotBook) { EXPECT_EQ(CheckKeys("polyglot_keys.txt"), 167); }

TEST(ComputePawnKey, HoldsThePawnsOnly) {
  EXPECT_EQ(ComputePawnKey(test::BoardFrom("4k3/8/8/8/8/8/8/4K2R w K")), 0U);
  // White pawns are the published table's second piece, black ones its first.
  const std::uint64_t both = Random64[64 + 12] ^ Random64[52];
  EXPECT_EQ(ComputePawnKey(test::BoardFrom("4k3/4p3/8/8/8/8/4P3/4K3 w -")), both);
  EXPECT_EQ(ComputePawnKey(test::BoardFrom("4k2q/4p3/8/8/8/8/4P3/R3K3 b -")), both);
}

}  // namespace
}  // namespace mirvo
