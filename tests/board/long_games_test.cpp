// Games longer than the undo stack and the key history.
#include <gtest/gtest.h>

#include <memory>

#include "board/attacks.h"
#include "board/key_history.h"
#include "board/make_move.h"
#include "board/notation.h"
#include "tests/support/board_support.h"

namespace mirvo {
namespace {

class LongGame : public testing::Test {
 protected:
  LongGame() { test::SetPosition(*board, test::startFen); }

  // Knights go out and back; every ply is reversible.
  void Shuffle(int nPlies) {
    static const char* const moves[] = {"g1f3", "g8f6", "f3g1", "f6g8"};
    for (int ply = 0; ply < nPlies; ++ply) {
      const Move move = PlayCoordinateMove(moves[ply % 4], *board, board->sideToMove);
      ASSERT_NE(move, noMove);
    }
  }

  std::unique_ptr<Board> board = std::make_unique<Board>();
};

TEST_F(LongGame, TwelveHundredPliesStayConsistent) {
  const std::uint64_t startKey = board->positionKey;
  for (int i = 0; i < 300; ++i) {
    Shuffle(4);
    test::ExpectConsistent(*board);
    ASSERT_EQ(board->positionKey, startKey);
  }
  EXPECT_EQ(board->plyCount, 1200);
}

TEST_F(LongGame, FiveThousandPliesStayInsideTheirArrays) {
  for (int i = 0; i < 1250; ++i) {
    Shuffle(4);
    ASSERT_LE(board->undoDepth, undoCapacity);
    ASSERT_LT(board->historyIndex, keyHistoryCapacity);
  }
  test::ExpectConsistent(*board);
  EXPECT_EQ(KeyHistory[board->historyIndex], board->positionKey);
}

TEST_F(LongGame, RandomGamesOf1200PliesStayConsistent) {
  test::Random random(50);
  test::SetPosition(*board, "4k3/8/8/2nb4/8/2NB4/8/4K3 w -");
  for (int ply = 0; ply < 1200; ++ply) {
    std::vector<Move> quiet;
    for (const Move move : test::LegalMoves(*board)) {
      if (!IsCapture(move)) quiet.push_back(move);
    }
    ASSERT_FALSE(quiet.empty());
    MakeMove(*board, quiet[random.Below(quiet.size())]);
    test::ExpectConsistent(*board);
  }
  EXPECT_EQ(board->plyCount, 1200);
}

// Undo stack and key history are full before every step of 250 plies.
TEST_F(LongGame, ASearchAlwaysHasRoomFor250PliesMore) {
  for (const int nPlies : {0, 249, 250, 251, 499, 500, 501, 1200, 1796, 1797, 1798, 2047, 2048}) {
    test::SetPosition(*board, test::startFen);
    Shuffle(nPlies);
    // Continue where the shuffle stands, so that every move is possible.
    TrimGameHistory(*board);
    ASSERT_LE(board->undoDepth + searchPlyRoom, undoCapacity) << nPlies;
    ASSERT_LE(board->historyIndex + searchPlyRoom, keyHistoryCapacity - 1) << nPlies;
    board->inCheckCache = -1;
    const test::Snapshot before(*board);
    for (int ply = 0; ply < searchPlyRoom; ++ply) {
      std::vector<Move> knights;
      for (const Move move : test::NonCaptures(*board)) {
        if (MovingKind(move) == knight) knights.push_back(move);
      }
      MakeMove(*board, knights.at(0));
    }
    ASSERT_EQ(KeyHistory[board->historyIndex], board->positionKey) << nPlies;
    for (int ply = 0; ply < searchPlyRoom; ++ply) UnmakeMove(*board);
    ASSERT_TRUE(before.SameAs(*board)) << nPlies;
  }
}

TEST_F(LongGame, TrimmingKeepsTheNewestRecords) {
  Shuffle(402);
  const UndoRecord newest = board->undoStack[401];
  const UndoRecord oldestKept = board->undoStack[402 - 250];
  TrimGameHistory(*board);
  EXPECT_EQ(board->undoDepth, 250);
  EXPECT_EQ(board->undoStack[249].positionKey, newest.positionKey);
  EXPECT_EQ(board->undoStack[249].move, newest.move);
  EXPECT_EQ(board->undoStack[0].positionKey, oldestKept.positionKey);
  EXPECT_EQ(board->plyCount, 402);
}

TEST_F(LongGame, TrimmingLeavesAShortGameAlone) {
  Shuffle(250);
  board->inCheckCache = -1;
  const test::Snapshot before(*board);
  TrimGameHistory(*board);
  EXPECT_TRUE(before.SameAs(*board));
}

TEST_F(LongGame, TrimmingKeepsTheNewestKeys) {
  Shuffle(1900);
  const std::uint64_t last = KeyHistory[board->historyIndex];
  const std::uint64_t before = KeyHistory[board->historyIndex - 1];
  TrimGameHistory(*board);
  EXPECT_EQ(board->historyIndex, keyHistoryCapacity - searchPlyRoom - 1);
  EXPECT_EQ(KeyHistory[board->historyIndex], last);
  EXPECT_EQ(KeyHistory[board->historyIndex - 1], before);
  EXPECT_EQ(last, board->positionKey);
}

// A repetition shortly before and after the limits is still seen.
TEST_F(LongGame, RepetitionsAreSeenAcrossTheLimit) {
  for (const int filler : {2038, 2042, 2044, 2046, 2048}) {
    test::SetPosition(*board, "4k3/8/8/8/8/8/8/R3K2R w KQ");
    // Keys that occur only once take the place of a long game.
    board->historyIndex = filler > 2046 ? 2046 : filler;
    for (int i = 0; i <= board->historyIndex; ++i) {
      KeyHistory[i] = static_cast<std::uint64_t>(i) + 1;
    }
    test::Play(*board, "a1a2 e8e7");
    test::Play(*board, "a2a3 e7e8 a3a2 e8e7");
    ASSERT_LT(board->historyIndex, keyHistoryCapacity);
    EXPECT_TRUE(IsRepetition(*board)) << filler;
  }
}

}  // namespace
}  // namespace mirvo
