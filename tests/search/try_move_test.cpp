#include "search/try_move.h"

#include <gtest/gtest.h>

#include "board/legal_moves.h"
#include "tests/support/board_support.h"

namespace mirvo {
namespace {

// The result equals that of making the move, whether CheckInfo knows it or not.
TEST(TryMove, TellsLegalityAndCheckInRandomGames) {
  int nUnknown = 0;
  test::PlayRandomGames(16, 24, 120, [&nUnknown](Board& board) {
    const CheckInfo checkInfo(board, InCheck(board, board.sideToMove));
    for (const Move move : test::AllMoves(board)) {
      nUnknown += checkInfo.LegalityOf(move) == Legality::unknown ? 1 : 0;
      const MoveStatus status = TryMove(board, checkInfo, move);
      ASSERT_EQ(status.legal, IsLegal(board, move)) << test::TextOf(move);
      if (!status.legal) continue;
      MakeMove(board, move);
      const bool givesCheck = InCheck(board, board.sideToMove);
      UnmakeMove(board);
      ASSERT_EQ(status.givesCheck, givesCheck) << test::TextOf(move);
    }
  });
  EXPECT_GT(nUnknown, 1000);
}

TEST(TryMove, LeavesTheBoardAsItWas) {
  for (const char* fen : {test::kiwipeteFen, "8/8/8/KPp4r/8/8/8/7k w - c6",
                          "4k3/4r3/8/8/8/8/4N3/4K3 w -", "8/1P6/8/1k6/8/8/8/4K3 w -"}) {
    Board board = test::BoardFrom(fen);
    const CheckInfo checkInfo(board, InCheck(board, board.sideToMove));
    board.inCheckCache = -1;
    const test::Snapshot before(board);
    for (const Move move : test::AllMoves(board)) {
      TryMove(board, checkInfo, move);
      board.inCheckCache = -1;
      ASSERT_TRUE(before.SameAs(board)) << fen << ' ' << test::TextOf(move);
    }
  }
}

TEST(MakeTriedMove, TellsTheBoardWhetherItIsACheck) {
  Board board = test::BoardFrom("4k3/8/8/8/8/8/8/R3K3 w -");
  const CheckInfo checkInfo(board, false);
  for (const auto& [text, inCheck] : {std::pair{"a1a8", 1}, std::pair{"a1a7", 0}}) {
    const Move move = test::FindMove(board, text);
    MakeTriedMove(board, move, TryMove(board, checkInfo, move).givesCheck);
    EXPECT_EQ(board.inCheckCache, inCheck) << text;
    UnmakeMove(board);
  }
}

}  // namespace
}  // namespace mirvo
