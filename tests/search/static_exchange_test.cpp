#include "search/static_exchange.h"

#include <gtest/gtest.h>

#include <random>
#include <sstream>
#include <utility>

#include "board/bb_move_generator.h"
#include "search/move_order.h"
#include "tests/support/search_support.h"

namespace mirvo {
namespace {

Move FindMove(Board& board, const std::string& text) {
  BBMoveGenerator2 generator(board, board.sideToMove);
  generator.GenerateAll();
  for (int i = 0; i < generator.count; ++i) {
    if (test::MoveText(generator.moves[i]) == text) return generator.moves[i];
  }
  ADD_FAILURE() << "no move " << text;
  return noMove;
}

std::int32_t Exchange(const std::string& position, const std::string& text) {
  test::PrepareEngine();
  Board board;
  test::SetPosition(board, position);
  const Move move = FindMove(board, text);
  return StaticExchange(board, move, CaptureVictim(board, move));
}

// Every generated capture of the reference positions, in generation order.
TEST(StaticExchange, AgreesWithTheReferenceValues) {
  test::PrepareEngine();
  Board board;
  int nChecked = 0;
  const std::string prefix = "position: ";
  std::string position;
  for (const std::string& line : test::ReferenceLines("see.txt")) {
    if (line.starts_with(prefix)) {
      position = line.substr(prefix.size());
      test::SetPosition(board, position);
      continue;
    }
    if (line.empty()) continue;
    BBMoveGenerator2 generator(board, board.sideToMove);
    generator.GenerateCaptures();
    std::ostringstream values;
    for (int i = 0; i < generator.count; ++i) {
      const Move move = generator.moves[i];
      const std::int32_t value = StaticExchange(board, move, CaptureVictim(board, move));
      if (i > 0) values << ' ';
      values << test::MoveText(move) << ':' << value;
    }
    EXPECT_EQ(values.str(), line) << position;
    ++nChecked;
  }
  EXPECT_GT(nChecked, 20);
}

TEST(StaticExchange, AnUndefendedPieceIsWon) {
  EXPECT_EQ(Exchange("4k3/8/8/3n4/8/8/8/3RK3 w -", "d1d5"), 400);
}

TEST(StaticExchange, ARookForADefendedPawnLoses) {
  EXPECT_EQ(Exchange("4k3/8/2p5/3p4/8/8/8/3RK3 w -", "d1d5"), 100 - 600);
}

TEST(StaticExchange, SlidersBehindSlidersJoinIn) {
  // Rook behind rook: pawn, rook for rook, pawn's defender gone.
  EXPECT_EQ(Exchange("3rk3/8/8/3p4/8/8/3R4/3RK3 w -", "d2d5"), 100);
}

TEST(StaticExchange, ABishopBehindACapturingPawnJoinsIn) {
  // exd5 exd5 Bxd5: a pawn for a pawn and a pawn.
  EXPECT_EQ(Exchange("4k3/8/4p3/3p4/4P3/5B2/8/4K3 w -", "e4d5"), 100);
}

TEST(StaticExchange, TheSideThatWouldLoseStops) {
  // The queen takes a pawn defended by a pawn: Black recaptures.
  EXPECT_EQ(Exchange("4k3/8/2p5/3p4/8/8/3Q4/4K3 w -", "d2d5"), 100 - 1100);
}

TEST(StaticExchange, KingsTakePartEvenIntoAttack) {
  // Kxd5 is met by ...cxd5 in the exchange, legal or not.
  EXPECT_EQ(Exchange("4k3/8/2p5/3p4/3K4/8/8/8 w -", "d4d5"), 100 - 20000);
}

TEST(StaticExchange, EnPassantCountsAPawnAndLeavesItStanding) {
  test::PrepareEngine();
  Board board;
  test::SetPosition(board, "startpos moves e2e4 a7a6 e4e5 d7d5");
  const Move move = FindMove(board, "e5d6");
  EXPECT_EQ(CaptureVictim(board, move), pawn);
  // exd6 exd6: a pawn for a pawn.
  EXPECT_EQ(StaticExchange(board, move, pawn), 0);
}

TEST(StaticExchange, LeavesTheBoardAsItIs) {
  test::PrepareEngine();
  Board board;
  test::SetPosition(board, "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq");
  const std::uint64_t key = board.positionKey;
  const std::uint64_t rotated = board.occupiedRot90;
  const Move move = FindMove(board, "f3f6");
  StaticExchange(board, move, knight);
  EXPECT_EQ(board.positionKey, key);
  EXPECT_EQ(board.occupiedRot90, rotated);
}

TEST(StaticExchange, ABoardFullOfQueensStaysWithinItsList) {
  const std::string position =
      "QQQqQQQQ/QqQqQqQQ/QQqqqQQQ/qqqqqqqq/QQqqqQQk/QqQqQqQQ/qQQqQQqQ/QQQqQQQK w -";
  test::PrepareEngine();
  Board board;
  test::SetPosition(board, position);
  BBMoveGenerator2 generator(board, white);
  generator.GenerateCaptures();
  for (int i = 0; i < generator.count; ++i) StaticExchange(board, generator.moves[i], queen);
  EXPECT_GT(generator.count, 10);
}

TEST(CaptureVictim, IsTheFirstKindThatStandsThere) {
  test::PrepareEngine();
  Board board;
  const std::pair<const char*, int> victims[] = {
      {"4k3/8/8/3p4/8/8/8/3QK3 w -", pawn},   {"4k3/8/8/3n4/8/8/8/3QK3 w -", knight},
      {"4k3/8/8/3b4/8/8/8/3QK3 w -", bishop}, {"4k3/8/8/3r4/8/8/8/3QK3 w -", rook},
      {"4k3/8/8/3q4/8/8/8/3QK3 w -", queen},
  };
  for (const auto& [position, victim] : victims) {
    test::SetPosition(board, position);
    EXPECT_EQ(CaptureVictim(board, FindMove(board, "d1d5")), victim) << position;
  }
  // Text input can put two pieces on a square: the bishop is found before the rook.
  test::SetPosition(board, "4k3/8/8/3r4/8/8/8/3QK3 w -");
  const Move move = FindMove(board, "d1d5");
  board.pieces[PieceIndex(black, bishop)] |= Bit(ToSquare(move));
  DetectOverlaps(board);
  EXPECT_EQ(CaptureVictim(board, move), bishop);
}

TEST(CaptureVictim, IsWhatStandsOnTheTargetOfEveryBoard) {
  test::PrepareEngine();
  std::mt19937_64 random(11);
  Board board;
  int nCaptures[2] = {};
  for (int round = 0; round < 1000; ++round) {
    ClearBoard(board);
    for (int square = 0; square < nSquares; ++square) {
      // Every other board has squares with two pieces, of either side.
      if (random() % 2 == 0) board.pieces[random() % nPieces] |= Bit(square);
      if (round % 2 == 1 && random() % 4 == 0) board.pieces[random() % nPieces] |= Bit(square);
    }
    board.sideToMove = static_cast<std::uint8_t>(random() % 2);
    RebuildOccupancy(board);
    RebuildRotated(board);
    LocateKings(board);
    DetectOverlaps(board);
    ASSERT_EQ(board.hasOverlaps, round % 2);
    BBMoveGenerator2 generator(board, board.sideToMove);
    generator.GenerateCaptures();
    for (int i = 0; i < generator.count; ++i) {
      const Move move = generator.moves[i];
      ASSERT_EQ(CaptureVictim(board, move), PieceOn(board, ToSquare(move), board.sideToMove ^ 1));
      ++nCaptures[round % 2];
    }
  }
  EXPECT_GT(nCaptures[0], 1000);
  EXPECT_GT(nCaptures[1], 1000);
}

TEST(CaptureScore, IsByVictimThenAttacker) {
  test::PrepareEngine();
  Board board;
  test::SetPosition(board, "4k3/8/2p5/3b4/8/4N3/8/4K3 w -");
  EXPECT_EQ(CaptureScore(FindMove(board, "e3d5"), bishop), MvvLva[bishop][knight]);
}

TEST(ExchangeLoss, IsNoneForACheaperOrEqualAttacker) {
  test::PrepareEngine();
  Board board;
  // A knight takes a defended bishop: no exchange is computed.
  test::SetPosition(board, "4k3/8/2p5/3b4/8/4N3/8/4K3 w -");
  EXPECT_EQ(ExchangeLoss(board, WithCaptured(FindMove(board, "e3d5"), bishop)), 0);
}

TEST(ExchangeLoss, IsNoneForABishopAgainstADefendedKnight) {
  test::PrepareEngine();
  Board board;
  test::SetPosition(board, "4k3/8/2p5/3n4/8/5B2/8/4K3 w -");
  const Move move = FindMove(board, "f3d5");
  EXPECT_EQ(StaticExchange(board, move, knight), 0);
  EXPECT_EQ(ExchangeLoss(board, WithCaptured(move, knight)), 0);
}

TEST(ExchangeLoss, IsNoneWhereAnExchangeWins) {
  test::PrepareEngine();
  Board board;
  test::SetPosition(board, "4k3/8/8/3p4/8/8/8/3RK3 w -");
  EXPECT_EQ(ExchangeLoss(board, WithCaptured(FindMove(board, "d1d5"), pawn)), 0);
}

TEST(ExchangeLoss, IsTheExchangeValueOfALosingCapture) {
  test::PrepareEngine();
  Board board;
  test::SetPosition(board, "4k3/8/2p5/3p4/8/8/8/3RK3 w -");
  EXPECT_EQ(ExchangeLoss(board, WithCaptured(FindMove(board, "d1d5"), pawn)), -500);
}

}  // namespace
}  // namespace mirvo
