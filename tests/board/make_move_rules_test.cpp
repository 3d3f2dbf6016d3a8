// Compares MakeMove with a second implementation: after any move word, legal or
// not, both boards agree in every field, record and key.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "board/fen.h"
#include "board/key_history.h"
#include "board/make_move.h"
#include "board/notation.h"
#include "tests/support/board_support.h"
#include "tests/support/repetitions.h"
#include "tests/support/slow_board.h"

namespace mirvo {
namespace {

using test::SlowBoard;

// Bits of a word that MakeMove ignores, and a stale captured kind.
constexpr Move unreadBits = 0x2F006000 | Move{queen} << moveCapturedShift;
constexpr Move otherColour = Move{1} << moveColourShift;

std::string NameOf(Move word) { return test::TextOf(word) + " " + std::to_string(word); }

// Plays a word on the board and on the slow board and compares them; leaves the
// board as it was.
void ExpectPlaysAlike(const Board& board, Board& scratch, Move word) {
  CopyBoard(scratch, board);
  SlowBoard slow(scratch);
  slow.Play(word);
  MakeMove(scratch, word);
  slow.ExpectSame(scratch);
  ASSERT_FALSE(testing::Test::HasFailure()) << test::PlacementOf(board) << " " << NameOf(word);
}

using MakeFunction = void (*)(Board& board, Move move);

// Makes a word on a copy of `board`; sets fields that nothing reads to one value.
void MakeOnCopy(const Board& board, Board& copy, Move word, MakeFunction make) {
  CopyBoard(copy, board);
  make(copy, word);
  UndoRecord& undo = copy.undoStack[board.undoDepth];
  if (undo.captured == 0) undo.capturedKind = pawn;
}

std::vector<std::uint64_t> HistoryOf(const Board& board) {
  return {KeyHistory, KeyHistory + board.historyIndex + 1};
}

// Makes and unmakes a word as MakeMove chooses and by the general way.
void ExpectBothWaysAgree(const Board& board, Board& fast, Board& general, Move word) {
  MakeOnCopy(board, general, word, MakeAnyMove);
  const std::vector<std::uint64_t> history = HistoryOf(general);
  MakeOnCopy(board, fast, word, MakeMove);
  ASSERT_EQ(HistoryOf(fast), history);
  ASSERT_TRUE(test::SameFields(fast, general));
  ASSERT_EQ(std::memcmp(&fast, &general, sizeof(PositionState)), 0);
  ASSERT_EQ(std::memcmp(&fast.undoStack[board.undoDepth], &general.undoStack[board.undoDepth],
                        sizeof(PositionState)),
            0);
  // Each unmakes its own move; then the general way unmakes a fast move.
  UnmakeMove(general);
  UnmakeMove(fast);
  ASSERT_TRUE(test::SameFields(general, board));
  ASSERT_TRUE(test::SameFields(fast, board));
  MakeMove(fast, word);
  --fast.undoDepth;
  UnmakeAnyMove(fast, fast.undoStack[fast.undoDepth]);
  ASSERT_TRUE(test::SameFields(fast, board));
}

// The general way is the reference for the fast ones.
TEST(MakeMoveRules, TheFastWaysDoWhatTheGeneralWayDoes) {
  const auto fast = std::make_unique<Board>();
  const auto general = std::make_unique<Board>();
  int nMoves = 0;
  test::PlayRandomGames(44, test::Repetitions(48, 8), 120, [&](Board& board) {
    const std::vector<Move> words = test::AllMoves(board);
    board.inCheckCache = -1;  // as it is after a move was unmade
    for (const Move word : words) {
      ExpectBothWaysAgree(board, *fast, *general, word);
      ASSERT_FALSE(testing::Test::HasFailure()) << test::PlacementOf(board) << " " << NameOf(word);
      ++nMoves;
    }
  });
  EXPECT_GT(nMoves, test::Repetitions(50000, 8000));
}

// Makes and unmakes a word, with a test for check in between.
void ExpectUnmade(Board& board, Move word) {
  board.inCheckCache = -1;
  const test::Snapshot before(board);
  MakeMove(board, word);
  board.inCheckCache = 1;
  UnmakeMove(board);
  ASSERT_TRUE(before.SameAs(board)) << test::PlacementOf(board) << " " << NameOf(word);
}

TEST(MakeMoveRules, HoldForGeneratedMovesAndWhatTheirWordsMayLeaveOpen) {
  const auto scratch = std::make_unique<Board>();
  test::PlayRandomGames(41, test::Repetitions(12, 3), 60, [&scratch](Board& board) {
    for (const Move word : test::AllMoves(board)) {
      const Move words[] = {word, word | unreadBits, word & ~captureFlag, word ^ otherColour,
                            word | static_cast<Move>(unknownKind) << moveKindShift};
      for (const Move other : words) ExpectPlaysAlike(board, *scratch, other);
      ExpectUnmade(board, word);
      ExpectUnmade(board, word | unreadBits);
    }
  });
}

// Makes and unmakes moves and null moves at random, so that every undo record is
// written again and again over one of another kind of move.
TEST(MakeMoveRules, HoldAfterManyMovesMadeAndUnmade) {
  constexpr int nSteps = 4000;
  constexpr std::size_t maxDepth = 24;
  const auto board = std::make_unique<Board>();
  test::Random random(42);
  for (const char* fen : {test::kiwipeteFen, "r3k2r/pP1p2pp/8/2pP4/2Pp4/8/Pp1P2PP/R3K2R w KQkq"}) {
    test::SetPosition(*board, fen);
    struct Step {
      SlowBoard before;
      bool passed;
    };
    std::vector<Step> steps;
    for (int i = 0; i < nSteps; ++i) {
      const std::vector<Move> moves = test::LegalMoves(*board);
      const bool full = steps.size() == maxDepth || moves.empty();
      if (!steps.empty() && (full || random.Below(5) < 2)) {
        board->inCheckCache = 0;
        if (steps.back().passed) {
          UnmakeNullMove(*board);
        } else {
          UnmakeMove(*board);
        }
        ASSERT_EQ(board->inCheckCache, -1);
        steps.back().before.ExpectSame(*board);
        steps.pop_back();
      } else {
        steps.push_back({SlowBoard(*board), board->nullMoveMade == 0 && random.Below(8) == 0});
        if (steps.back().passed) {
          MakeNullMove(*board);
        } else {
          const Move word = moves[random.Below(moves.size())];
          SlowBoard slow = steps.back().before;
          slow.Play(word);
          MakeMove(*board, word);
          slow.ExpectSame(*board);
        }
      }
      test::ExpectConsistent(*board);
      ASSERT_FALSE(HasFailure()) << fen << " step " << i;
    }
  }
}

// Every pair of squares, with and without a promotion letter.
class EveryWord : public testing::TestWithParam<const char*> {};

TEST_P(EveryWord, HasTheEffectOfItsRules) {
  const auto start = std::make_unique<Board>(test::BoardFrom(GetParam()));
  const auto board = std::make_unique<Board>();
  for (int from = 0; from < nSquares; ++from) {
    const int kind = PieceOn(*start, from, start->sideToMove);
    if (kind == noPiece) continue;
    for (int to = 0; to < nSquares; ++to) {
      const Move word = BuildMove(from, to, start->sideToMove, kind);
      ExpectPlaysAlike(*start, *board, word);
      ExpectPlaysAlike(*start, *board, word | PromotionBits(rook));
      ASSERT_FALSE(HasFailure());
    }
  }
}

INSTANTIATE_TEST_SUITE_P(
    MakeMoveRules, EveryWord,
    testing::Values(test::kiwipeteFen, "r3k2r/8/8/8/8/8/8/R3K2R w KQkq",
                    "r3k2r/8/8/8/8/8/8/R3K2R b KQkq", "R4K1R/8/8/8/8/8/8/R2K3R w KQ",
                    "r2k3r/8/8/4k3/8/8/8/r4k1r b kq", "R2RKR1R/8/8/8/8/8/8/R2RKR1R w KQ",
                    "P3k2p/1P4p1/8/3Pp3/3pP3/8/1p4P1/P3K2p w - e6",
                    "P3k2p/1P4p1/8/3Pp3/3pP3/8/1p4P1/P3K2p b - e3",
                    // Pawns where no game has any: steps of two ranks end on the last
                    // ones, beside pawns and on the far end of the next rank.
                    "p1p2P1p/P6p/1PP2P1P/p6P/P6p/1pp2p1p/P6p/P1P2p1P w - h6",
                    "p1p2P1p/P6p/1PP2P1P/p6P/P6p/1pp2p1p/P6p/P1P2p1P b - a3",
                    "KQkq4/8/8/8/8/8/8/RNBrnb2 w -", "8/8/8/8/8/8/8/RNBQ4 b -"));

// Games of random words, each compared with the slow board, as are all generated
// moves of the positions reached.
TEST(MakeMoveRules, HoldInGamesOfIllegalMoves) {
  const char* const starts[] = {test::kiwipeteFen, test::startFen,
                                "r3k2r/pP1p2pp/8/2pP4/2Pp4/8/Pp1P2PP/R3K2R w KQkq",
                                "p1p2P1p/P2k3p/1PP2P1P/p6P/P6p/1pp2p1p/P2K3p/P1P2p1P w - h6"};
  test::Random random(43);
  const auto board = std::make_unique<Board>();
  const auto scratch = std::make_unique<Board>();
  for (int game = 0; game < 240; ++game) {
    test::SetPosition(*board, starts[game % 4]);
    for (int ply = 0; ply < 40; ++ply) {
      const int side = board->sideToMove;
      const int from = static_cast<int>(random.Below(nSquares));
      const int kind = PieceOn(*board, from, side);
      if (kind == noPiece) continue;
      Move word = BuildMove(from, static_cast<int>(random.Below(nSquares)), side, kind);
      if (random.Below(3) == 0) word |= PromotionBits(static_cast<int>(1 + random.Below(4)));
      SlowBoard slow(*board);
      slow.Play(word);
      MakeMove(*board, word);
      slow.ExpectSame(*board);
      test::ExpectConsistent(*board);
      ASSERT_FALSE(HasFailure()) << "game " << game << " ply " << ply << " " << NameOf(word);
    }
    for (const Move word : test::AllMoves(*board)) {
      ExpectPlaysAlike(*board, *scratch, word);
      ExpectUnmade(*board, word);
    }
  }
}

}  // namespace
}  // namespace mirvo
