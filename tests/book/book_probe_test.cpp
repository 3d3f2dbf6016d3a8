#include <gtest/gtest.h>

#include <map>
#include <string>

#include "board/notation.h"
#include "book/book_file.h"
#include "book/book_probe.h"
#include "book/book_random.h"
#include "tests/book/book_fixture.h"

namespace mirvo {
namespace {

class ProbeBookTest : public BookTest {
 protected:
  void SetUp() override {
    BookTest::SetUp();
    BeginFromStart(board);
    ResetRandom();
  }

  // An entry for the current position, with moves as a loaded file has them.
  BookEntry& EntryHere() {
    BookEntry& entry = book.entries[book.count++];
    entry.key = ComputeKey(board);
    entry.moveCount = 0;
    return entry;
  }
  static void Offer(BookEntry& entry, const char* text, std::int32_t weight, int promotion = 0) {
    AppendMove(entry, DecodeBookMove(FileMove(text, promotion)), 0, weight);
  }

  bool Probe() {
    found = noMove;
    bool hit = false;
    printed = Printed([&] { hit = ProbeBook(book, board, found); });
    return hit;
  }

  Move found = noMove;
  std::string printed;
};

TEST_F(ProbeBookTest, AnUnknownPositionPrintsNothing) {
  EXPECT_FALSE(Probe());
  EXPECT_EQ(printed, "");
}

TEST_F(ProbeBookTest, ASingleMoveIsPlayedWithoutARandomNumber) {
  Offer(EntryHere(), "g1f3", 7);
  EXPECT_TRUE(Probe());
  EXPECT_EQ(found, Word("g1f3", white, knight));
  EXPECT_EQ(printed, "\n g1f3 100.00% (7)\n");
  EXPECT_EQ(NextRandom(), RandomSeedWords[54] + RandomSeedWords[23]);
}

TEST_F(ProbeBookTest, ASingleMoveIsPlayedWhateverItsWeight) {
  Offer(EntryHere(), "g1f3", 0);
  EXPECT_TRUE(Probe());
  EXPECT_EQ(found, Word("g1f3", white, knight));
  EXPECT_EQ(printed, "\n g1f3  0.00% (0)\n");
}

TEST_F(ProbeBookTest, SharesAreOfTheWeightsOfPlayableMoves) {
  BookEntry& entry = EntryHere();
  Offer(entry, "e2e4", 2);
  Offer(entry, "e2e5", 3);  // no such move
  Offer(entry, "d2d4", 1);
  EXPECT_TRUE(Probe());
  EXPECT_EQ(printed, "\n e2e4 66.67% (2)\n e2e5 100.00% (3)\n d2d4 33.33% (1)\n");
}

TEST_F(ProbeBookTest, WithoutAPlayableMoveTheListIsPrintedAllTheSame) {
  BookEntry& entry = EntryHere();
  Offer(entry, "e2e5", 3);
  Offer(entry, "a1a8", 1);
  EXPECT_FALSE(Probe());
  EXPECT_EQ(printed, "\n e2e5  0.00% (3)\n a1a8  0.00% (1)\n");
}

TEST_F(ProbeBookTest, AnEntryWithoutMovesPrintsAnEmptyLine) {
  EntryHere();
  EXPECT_FALSE(Probe());
  EXPECT_EQ(printed, "\n");
}

TEST_F(ProbeBookTest, WithoutWeightsTheFirstMoveIsPlayed) {
  BookEntry& entry = EntryHere();
  Offer(entry, "e2e5", 0);
  Offer(entry, "d2d4", 0);
  Offer(entry, "e2e4", 0);
  for (int i = 0; i < 20; ++i) {
    EXPECT_TRUE(Probe());
    EXPECT_EQ(found, Word("d2d4", white, pawn));
  }
  EXPECT_EQ(printed, "\n e2e5  0.00% (0)\n d2d4  0.00% (0)\n e2e4  0.00% (0)\n");
}

TEST_F(ProbeBookTest, TheRandomNumberModuloTheTotalPicksTheMove) {
  BookEntry& entry = EntryHere();
  Offer(entry, "e2e4", 3);
  Offer(entry, "d2d4", 1);
  Offer(entry, "c2c4", 2);
  const Move expected[] = {Word("e2e4", white, pawn), Word("e2e4", white, pawn),
                           Word("e2e4", white, pawn), Word("d2d4", white, pawn),
                           Word("c2c4", white, pawn), Word("c2c4", white, pawn)};
  std::uint32_t draws[200];
  for (std::uint32_t& draw : draws) draw = NextRandom();
  ResetRandom();
  for (const std::uint32_t draw : draws) {
    EXPECT_TRUE(Probe());
    EXPECT_EQ(found, expected[draw % 6]);
  }
}

TEST_F(ProbeBookTest, AMoveWithoutWeightBesideOthersIsNotPlayed) {
  BookEntry& entry = EntryHere();
  Offer(entry, "e2e4", 0);
  Offer(entry, "d2d4", 1);
  for (int i = 0; i < 50; ++i) {
    EXPECT_TRUE(Probe());
    EXPECT_EQ(found, Word("d2d4", white, pawn));
  }
}

TEST_F(ProbeBookTest, ThePlayableMoveReplacesTheFileMove) {
  BookEntry& entry = EntryHere();
  Offer(entry, "g1f3", 1);
  Offer(entry, "g1g3", 1);
  EXPECT_TRUE(Probe());
  EXPECT_EQ(entry.moves[0], Word("g1f3", white, knight));
  EXPECT_EQ(entry.moves[1], Word("g1g3", white, pawn));
}

TEST_F(ProbeBookTest, AMoveThatLeavesTheKingInCheckIsNotPlayable) {
  Position("4k3/8/8/8/4r3/8/4B3/4K3", "w", "-");
  BookEntry& entry = EntryHere();
  Offer(entry, "e2d3", 60);
  Offer(entry, "e1d1", 1);
  EXPECT_TRUE(Probe());
  EXPECT_EQ(found, Word("e1d1", white, king));
}

TEST_F(ProbeBookTest, BothSpellingsOfCastlingArePlayed) {
  for (const char* text : {"e1h1", "e1g1"}) {
    Position("r3k2r/8/8/8/8/8/8/R3K2R", "w", "KQkq");
    book.count = 0;
    ResetBookIndex(book.index);
    Offer(EntryHere(), text, 1);
    EXPECT_TRUE(Probe());
    EXPECT_EQ(found, Word("e1g1", white, king));
    EXPECT_EQ(printed, "\n e1g1 100.00% (1)\n");
  }
  Position("r3k2r/8/8/8/8/8/8/R3K2R", "b", "KQkq");
  Offer(EntryHere(), "e8a8", 1);
  EXPECT_TRUE(Probe());
  EXPECT_EQ(found, Word("e8c8", black, king));
}

TEST_F(ProbeBookTest, ARookOnE1TakesTheCastlingSpellingAsItsOwnMove) {
  // The file does not name the piece: e1a1 is read as e1c1, which is the rook's move
  // here.
  Position("4k3/8/8/8/8/8/6K1/4R3", "w", "-");
  Offer(EntryHere(), "e1a1", 1);
  EXPECT_TRUE(Probe());
  EXPECT_EQ(found, Word("e1c1", white, rook));
}

TEST_F(ProbeBookTest, APromotionIsPlayedToTheQueenWhateverTheFileSays) {
  Position("8/P3k3/8/8/8/8/8/4K3", "w", "-");
  Offer(EntryHere(), "a7a8", 1, knight);
  EXPECT_TRUE(Probe());
  EXPECT_EQ(found, Word("a7a8", white, pawn) | PromotionBits(queen));
  EXPECT_EQ(printed, "\na7a8q 100.00% (1)\n");
}

TEST_F(ProbeBookTest, UnknownPromotionPiecesAreListedSafely) {
  BookEntry& entry = EntryHere();
  for (int piece = 5; piece <= 7; ++piece) Offer(entry, "a7a8", 1, piece);
  EXPECT_FALSE(Probe());
  EXPECT_EQ(printed.substr(0, 6), "\n a7a8");
}

TEST_F(ProbeBookTest, ReturnsACaptureWithItsFlag) {
  Position("4k3/8/8/3p4/4P3/8/8/4K3", "w", "-");
  Offer(EntryHere(), "e4d5", 1);
  EXPECT_TRUE(Probe());
  EXPECT_EQ(found, Word("e4d5", white, pawn) | captureFlag);
}

TEST_F(ProbeBookTest, LeavesTheBoardAsItWas) {
  Position("r3k2r/pppq1ppp/2npbn2/2b1p3/2B1P3/2NPBN2/PPPQ1PPP/R3K2R", "w", "KQkq");
  BookEntry& entry = EntryHere();
  for (const char* text : {"e1h1", "c4e6", "e3c5", "f3e5", "h2h4"}) Offer(entry, text, 1);
  const Board before = board;
  EXPECT_TRUE(Probe());
  EXPECT_EQ(board.positionKey, before.positionKey);
  EXPECT_EQ(ComputeKey(board), ComputeKey(before));
  EXPECT_EQ(board.undoDepth, before.undoDepth);
  EXPECT_EQ(board.historyIndex, before.historyIndex);
  EXPECT_EQ(board.occupiedRot90, before.occupiedRot90);
}

TEST_F(ProbeBookTest, WeightsBeyondTheRandomRangeAreHandled) {
  BookEntry& entry = EntryHere();
  Offer(entry, "e2e4", 2147483647);
  Offer(entry, "d2d4", 2147483647);
  Offer(entry, "c2c4", 2147483647);
  std::map<Move, int> seen;
  for (int i = 0; i < 400; ++i) {
    EXPECT_TRUE(Probe());
    ++seen[found];
  }
  // A random number has 32 bits, so it covers the first two and a little more.
  EXPECT_GT(seen[Word("e2e4", white, pawn)], 100);
  EXPECT_GT(seen[Word("d2d4", white, pawn)], 100);
  EXPECT_EQ(printed,
            "\n e2e4 33.33% (2147483647)\n d2d4 33.33% (2147483647)\n c2c4 33.33% (2147483647)\n");
}

using BookStatsTest = BookTest;

TEST_F(BookStatsTest, CountsPositionsAndMoves) {
  EXPECT_EQ(Printed([&] { PrintBookStats(book); }), "\nNumber positions: 0\nNumber moves: 0\n");
  AppendMove(AppendEntry(1, noMove, 1, 1), noMove, 1, 1);
  AppendEntry(2, noMove, 1, 1);
  EXPECT_EQ(Printed([&] { PrintBookStats(book); }), "\nNumber positions: 2\nNumber moves: 3\n");
}

}  // namespace
}  // namespace mirvo
