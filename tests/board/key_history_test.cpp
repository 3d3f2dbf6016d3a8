#include "board/key_history.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "board/make_move.h"
#include "tests/support/board_support.h"

namespace mirvo {
namespace {

using test::BoardFrom;
using test::startFen;

// Read before any other code of this program runs.
const std::uint64_t firstKeyOfTheProgram = KeyHistory[0];

// Knights out and back: the position recurs every four plies.
constexpr char shuffle[] = "g1f3 g8f6 f3g1 f6g8";

TEST(IsRepetition, HoldsForTheSecondOccurrenceOnly) {
  Board board = BoardFrom(startFen);
  EXPECT_FALSE(IsRepetition(board));
  test::Play(board, "g1f3 g8f6 f3g1");
  EXPECT_FALSE(IsRepetition(board));
  test::Play(board, "f6g8");
  EXPECT_TRUE(IsRepetition(board));
  test::Play(board, shuffle);
  // Three times: the engine says no.
  EXPECT_FALSE(IsRepetition(board));
  test::Play(board, shuffle);
  EXPECT_FALSE(IsRepetition(board));
}

TEST(IsRepetition, CountsOnlyUpToTheHistoryIndex) {
  Board board = BoardFrom(startFen);
  test::Play(board, shuffle);
  ASSERT_TRUE(IsRepetition(board));
  for (int i = 0; i < 4; ++i) UnmakeMove(board);
  // The later entries still stand behind the index.
  EXPECT_EQ(KeyHistory[4], board.positionKey);
  EXPECT_FALSE(IsRepetition(board));
}

TEST(IsRepetition, NeedsAnIndexThatIsNotNegative) {
  Board board = BoardFrom(startFen);
  test::Play(board, shuffle);
  board.historyIndex = -1;
  EXPECT_FALSE(IsRepetition(board));
}

TEST(IsRepetition, FindsTheSetUpPositionOfAGameFromFen) {
  Board board = BoardFrom("4k3/8/8/8/8/8/8/4K3 b -");
  test::Play(board, "e8d8 e1d1 d8e8 d1e1");
  EXPECT_TRUE(IsRepetition(board));
}

TEST(KeyHistory, GrowsWithReversibleMovesOnly) {
  Board board = BoardFrom("4k3/8/8/3p4/8/4N3/P7/R3K3 w Q");
  const struct {
    const char* move;
    int index;
  } plies[] = {
      {"a2a4", 0},               // pawn
      {"e8e7", 1},               // king
      {"e3d5", 1},               // capture
      {"e7d6", 2}, {"e1c1", 3},  // castling
      {"d6d5", 3},               // capture
  };
  for (const auto& ply : plies) {
    test::Play(board, ply.move);
    EXPECT_EQ(board.historyIndex, ply.index) << ply.move;
    if (ply.index == 3 && std::string(ply.move) == "e1c1") {
      EXPECT_EQ(KeyHistory[3], board.positionKey);
    }
  }
}

TEST(KeyHistory, StartsAfreshAtAPosition) {
  Board board = BoardFrom(startFen);
  test::Play(board, shuffle);
  StartKeyHistory(board);
  EXPECT_EQ(board.historyIndex, 0);
  EXPECT_EQ(KeyHistory[0], board.positionKey);
  EXPECT_FALSE(IsRepetition(board));
}

// When an interface sends no position the engine plays on a board that nothing
// has set up: its history must begin with the initial position.
TEST(KeyHistory, BeginsWithTheInitialPosition) {
  EXPECT_EQ(firstKeyOfTheProgram, ComputeKey(Board()));
}

TEST(KeyHistory, IsLeftAloneByTheConstructionOfABoard) {
  const auto board = std::make_unique<Board>(BoardFrom("4k3/8/8/8/8/8/8/4K3 b -"));
  test::Play(*board, "e8d8 e1d1 d8e8 d1e1");
  const std::uint64_t first = KeyHistory[0];
  const auto other = std::make_unique<Board>();
  EXPECT_EQ(other->historyIndex, 0);
  EXPECT_EQ(KeyHistory[0], first);
  EXPECT_TRUE(IsRepetition(*board));
}

}  // namespace
}  // namespace mirvo
