#include "search/key_after.h"

#include <gtest/gtest.h>

#include <string>

#include "board/bb_move_generator.h"
#include "board/make_move.h"
#include "search/static_exchange.h"
#include "tests/support/search_support.h"

namespace mirvo {
namespace {

// Positions without castling rights, en passant, promotions and double steps:
// the key after every move is exact.
class PlainMoves : public testing::TestWithParam<const char*> {};

TEST_P(PlainMoves, HaveTheKeyThatWasComputed) {
  test::ColdStart();
  Board board;
  test::SetPosition(board, GetParam());
  BBMoveGenerator2 generator(board, board.sideToMove);
  generator.GenerateAll();
  ASSERT_GT(generator.count, 0);
  for (int i = 0; i < generator.count; ++i) {
    Move move = generator.moves[i];
    if (IsCapture(move)) move = WithCaptured(move, CaptureVictim(board, move));
    const std::uint64_t told = KeyAfter(board, move);
    MakeMove(board, move);
    EXPECT_EQ(board.positionKey, told) << test::MoveText(move);
    UnmakeMove(board);
  }
}

INSTANTIATE_TEST_SUITE_P(Positions, PlainMoves,
                         testing::Values("4k3/8/2p5/1r1q4/4P3/2N5/8/4K3 w -",
                                         "4k3/8/2p5/1r1q4/4P3/2N5/8/4K3 b -",
                                         "6k1/5ppp/8/3b4/4P3/1B3NPP/8/2R3K1 b -"));

}  // namespace
}  // namespace mirvo
