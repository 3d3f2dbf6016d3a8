// Properties that hold in every position of random games.
#include <gtest/gtest.h>

#include <memory>
#include <set>

#include "board/attack_tables.h"
#include "board/attacks.h"
#include "board/fen.h"
#include "board/make_move.h"
#include "board/notation.h"
#include "tests/support/board_support.h"
#include "tests/support/mailbox.h"
#include "tests/support/repetitions.h"

namespace mirvo {
namespace {

constexpr int nGames = test::Repetitions(48, 12);
constexpr int maxPlies = 120;

TEST(RandomGames, DerivedFieldsAndKeyFollowThePieces) {
  test::PlayRandomGames(1, nGames, maxPlies,
                        [](const Board& board) { test::ExpectConsistent(board); });
}

TEST(RandomGames, UnmakingRestoresEveryByte) {
  test::PlayRandomGames(2, nGames, maxPlies, [](Board& board) {
    const std::vector<Move> moves = test::AllMoves(board);
    board.inCheckCache = -1;
    const test::Snapshot before(board);
    for (const Move move : moves) {
      MakeMove(board, move);
      UnmakeMove(board);
      ASSERT_TRUE(before.SameAs(board)) << test::TextOf(move);
    }
  });
}

TEST(RandomGames, EveryGeneratedMoveLeavesAConsistentBoard) {
  test::PlayRandomGames(3, 6, 80, [](Board& board) {
    for (const Move move : test::AllMoves(board)) {
      MakeMove(board, move);
      test::ExpectConsistent(board);
      UnmakeMove(board);
    }
  });
}

TEST(RandomGames, WholeGamesCanBeTakenBack) {
  const auto board = std::make_unique<Board>();
  test::Random random(4);
  for (int game = 0; game < 20; ++game) {
    test::SetPosition(*board, game % 2 == 0 ? test::startFen : test::kiwipeteFen);
    std::vector<test::Snapshot> positions;
    for (int ply = 0; ply < 100; ++ply) {
      const std::vector<Move> moves = test::LegalMoves(*board);
      if (moves.empty()) break;
      board->inCheckCache = -1;
      positions.emplace_back(*board);
      MakeMove(*board, moves[random.Below(moves.size())]);
    }
    for (; !positions.empty(); positions.pop_back()) {
      UnmakeMove(*board);
      ASSERT_TRUE(positions.back().SameAs(*board)) << "game " << game;
    }
  }
}

// The mailbox plays the same moves by its own rules: the legal moves, check and
// the placement agree after every move.
TEST(RandomGames, LegalMovesAreThoseOfTheMailbox) {
  const char* const starts[] = {test::startFen,
                                test::kiwipeteFen,
                                "r3k2r/Pppp1ppp/1b3nbN/nP6/BBP1P3/q4N2/Pp1P2PP/R2Q1RK1 w kq",
                                "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w -",
                                "4k3/1p1p1p1p/8/P1P1P1P1/p1p1p1p1/8/1P1P1P1P/4K3 b -",
                                "k7/3PPPPP/8/8/8/8/3ppppp/K7 w -"};
  const auto board = std::make_unique<Board>();
  test::Random random(5);
  for (int game = 0; game < 24; ++game) {
    const char* const fen = starts[game % 6];
    test::SetPosition(*board, fen);
    test::Mailbox mailbox(fen);
    for (int ply = 0; ply < 100; ++ply) {
      const std::vector<Move> moves = test::LegalMoves(*board);
      std::set<std::string> texts;
      for (const Move move : moves) texts.insert(test::TextOf(move));
      ASSERT_EQ(texts.size(), moves.size());
      ASSERT_EQ(texts, mailbox.LegalMoves()) << fen << " ply " << ply << " " << mailbox.Placement();
      ASSERT_EQ(InCheck(*board, board->sideToMove), mailbox.InCheck()) << mailbox.Placement();
      if (moves.empty()) break;
      const Move move = moves[random.Below(moves.size())];
      MakeMove(*board, move);
      mailbox.Play(test::TextOf(move));
      ASSERT_EQ(test::PlacementOf(*board), mailbox.Placement()) << fen << " ply " << ply;
    }
  }
}

TEST(RandomGames, CoordinateTextsReadBackAsTheMove) {
  test::PlayRandomGames(6, nGames, maxPlies, [](Board& board) {
    for (const Move move : test::AllMoves(board)) {
      const Move read = MoveFromCoordinates(test::TextOf(move).c_str(), board, board.sideToMove);
      ASSERT_EQ(read, move & ~captureFlag) << test::TextOf(move);
    }
  });
}

// A move read from text has no capture flag, and still has the same effect.
TEST(RandomGames, TextMovesHaveTheEffectOfGeneratedOnes) {
  const auto other = std::make_unique<Board>();
  test::PlayRandomGames(7, 6, 80, [&other](Board& board) {
    for (const Move move : test::AllMoves(board)) {
      CopyBoard(*other, board);
      const Move made = PlayCoordinateMove(test::TextOf(move).c_str(), *other, board.sideToMove);
      ASSERT_NE(made, noMove);
      MakeMove(board, move);
      ASSERT_EQ(other->positionKey, board.positionKey) << test::TextOf(move);
      ASSERT_EQ(test::PlacementOf(*other), test::PlacementOf(board));
      ASSERT_EQ(other->historyIndex, board.historyIndex);
      test::ExpectConsistent(*other);
      UnmakeMove(board);
    }
  });
}

TEST(RandomGames, PlacementsReadBackAsTheSamePieces) {
  const auto other = std::make_unique<Board>();
  test::PlayRandomGames(8, nGames, maxPlies, [&other](Board& board) {
    SetupFromFen(test::PlacementOf(board).c_str(), board.sideToMove == white ? "w" : "b", "-",
                 *other);
    for (int piece = 0; piece < nPieces; ++piece) {
      ASSERT_EQ(other->pieces[piece], board.pieces[piece]);
    }
    ASSERT_EQ(other->sideToMove, board.sideToMove);
    ASSERT_EQ(other->occupiedDiagA1H8, board.occupiedDiagA1H8);
  });
}

}  // namespace
}  // namespace mirvo
