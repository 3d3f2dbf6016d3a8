#include "book/book_builder.h"
#include "book/book_file.h"
#include "book/book_probe.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "board/notation.h"
#include "tests/book/book_fixture.h"

namespace mirvo {
namespace {

class BookBuilderTest : public BookTest {
 protected:
  std::string Create(const std::string& text, std::int32_t maxPlies = 40,
                     std::int32_t minHits = 0) {
    const std::string path = scratch.Write("games.pgn", text);
    return Printed([&] { nGames = CreateBook(book, path.c_str(), maxPlies, minHits); });
  }
  std::string Save(const char* name) {
    return Printed([&] { SaveBook(book, scratch.Path(name).c_str()); });
  }
  // "e2e4 2/4 ...": the moves of a position with hits and weights.
  std::string Entry(std::uint64_t key) {
    const std::int32_t index = FindEntry(book, key);
    if (index < 0) return "none";
    const BookEntry& entry = book.entries[index];
    std::string line;
    for (int i = 0; i < entry.moveCount; ++i) {
      char text[moveTextCapacity];
      MoveToCoordinates(entry.moves[i], text);
      if (i > 0) line += ' ';
      line += std::string(text) + " " + std::to_string(entry.hits[i]) + "/" +
              std::to_string(entry.weights[i]);
    }
    return line;
  }

  std::int32_t nGames = -1;
};

constexpr char twoGames[] =
    "[Result \"1-0\"]\n\n1. e4 d5 2. e5 f5 1-0\n\n"
    "[Result \"1/2-1/2\"]\n\n1. e4 e5 2. Nf3 1/2-1/2\n";

TEST_F(BookBuilderTest, CountsMovesAndPointsByPosition) {
  EXPECT_EQ(Create(twoGames, 12, 3),
            "\n* Opening file.......done. (Number games: 2)\n* Processing.done.");
  EXPECT_EQ(nGames, 2);
  EXPECT_EQ(book.maxPlies, 12);
  EXPECT_EQ(book.minHits, 3);
  EXPECT_EQ(book.count, 5);
  EXPECT_EQ(Entry(startKey), "e2e4 2/3");
  EXPECT_EQ(Entry(afterE4Key), "d7d5 1/0 e7e5 1/1");
  EXPECT_EQ(Entry(afterE4D5Key), "e4e5 1/2");
  EXPECT_EQ(Entry(0x662FAFB965DB29D4ULL), "f7f5 1/0");  // published, after 2. e5
}

TEST_F(BookBuilderTest, TakesTheFirstPliesOnly) {
  Create(twoGames, 1);
  EXPECT_EQ(book.count, 1);
  EXPECT_EQ(Entry(startKey), "e2e4 2/3");
  book.count = 0;
  Create(twoGames, 0);
  EXPECT_EQ(book.count, 0);
  Create(twoGames, -5);
  EXPECT_EQ(book.count, 0);
  EXPECT_EQ(nGames, 2);
}

TEST_F(BookBuilderTest, KeysEnPassantAndCastlingAsPublished) {
  // Published keys: after 1. a4 b5 2. h4 b4 3. c4 the pawn on b4 may take en
  // passant; then 3... bxc3 4. Ra3 costs White the long castling.
  Create("[Result \"1-0\"]\n1. a4 b5 2. h4 b4 3. c4 bxc3 4. Ra3 d6\n");
  EXPECT_EQ(Entry(0x3C8123EA7B067637ULL), "b4c3 1/0");
  EXPECT_EQ(Entry(0x5C3F9B829B279560ULL), "d7d6 1/0");
  Create("[Result \"0-1\"]\n1. e4 d5 2. e5 f5 3. Ke2 Kf7 4. Kf3\n");
  EXPECT_EQ(Entry(0x22A48B5A8E47FF78ULL), "e1e2 1/0");
  EXPECT_EQ(Entry(0x652A607CA3F242C1ULL), "e8f7 1/2");
  EXPECT_EQ(Entry(0x00FDD303C946BDD9ULL), "e2f3 1/0");
}

TEST_F(BookBuilderTest, PositionsBehindANotedEnPassantStandUnderTheirKeys) {
  // The published key after 4. Ra3, as above.
  for (const char* capture : {"bxc3", "bxc3 e.p.", "bxc3e.p.", "bxc3 ep", "bxc3ep", "bxc3 e.p.+"}) {
    book.count = 0;
    Create(std::string("[Result \"1-0\"]\n1. a4 b5 2. h4 b4 3. c4 ") + capture + " 4. Ra3 d6\n");
    EXPECT_EQ(Entry(0x5C3F9B829B279560ULL), "d7d6 1/0") << capture;
    EXPECT_EQ(book.count, 8) << capture;
  }
}

TEST_F(BookBuilderTest, APendingEnPassantDoesNotReachTheNextGame) {
  Create("[Result \"1-0\"]\n1. e4 d5 2. e5 f5\n[Result \"1-0\"]\n1. e4 d5\n");
  EXPECT_EQ(Entry(startKey), "e2e4 2/4");
  EXPECT_EQ(Entry(afterE4Key), "d7d5 2/0");
}

TEST_F(BookBuilderTest, AddsToWhatTheBookHolds) {
  Create(twoGames);
  Create(twoGames);
  EXPECT_EQ(book.count, 5);
  EXPECT_EQ(Entry(startKey), "e2e4 4/6");
}

TEST_F(BookBuilderTest, ProgressDotsComeWhenMoreThanATenthHasPassed) {
  // Worked out by hand: with n games a dot is printed before game k (from 0)
  // when more than n/10 games have passed since the last one.
  const struct {
    int nGames;
    const char* dots;
  } cases[] = {
      {1, ""},           {2, "."},       {5, "...."},        {9, "........"},    {10, "...."},
      {19, "........."}, {20, "......"}, {100, "........."}, {101, "........."}, {109, "........."},
      {110, "........."}};
  for (const auto& c : cases) {
    std::string text;
    for (int i = 0; i < c.nGames; ++i) text += "[Result \"1-0\"] e4\n";
    EXPECT_EQ(Create(text), "\n* Opening file.......done. (Number games: " +
                                std::to_string(c.nGames) + ")\n* Processing" + c.dots + "done.");
  }
}

TEST_F(BookBuilderTest, WithoutGamesNothingIsBuilt) {
  EXPECT_EQ(Create("[Result \"1-0\"]\n1-0\n"),
            "\n* Opening file.......done. (Number games: 0)\n* Processingdone.");
  EXPECT_EQ(nGames, 0);
  EXPECT_EQ(book.count, 0);
}

TEST_F(BookBuilderTest, AMissingFileIsReportedOnce) {
  const std::string printed =
      Printed([&] { nGames = CreateBook(book, scratch.Path("none").c_str(), 40, 0); });
  EXPECT_EQ(printed,
            "\n* Opening file.......Problem reading opening file!!\n"
            "done. (Number games: 0)\n* Processingdone.");
  EXPECT_EQ(nGames, 0);
}

TEST_F(BookBuilderTest, WithoutMemoryThereIsNothingToSave) {
  OpeningBook none;
  const std::string path = scratch.Write("games.pgn", twoGames);
  Printed([&] { EXPECT_EQ(CreateBook(none, path.c_str(), 40, 0), 0); });
}

TEST_F(BookBuilderTest, AMoveThatMovesNothingPassesTheTurn) {
  // Black's reply matches no move; building continues with White to move in an
  // impossible position, and the board stays consistent.
  Create("[Result \"1-0\"]\n1. e4 xyz 2. Nf3 Nf6 e5 O-O Kd5 exd5 Ra1 hxg8=Q Qh8 *\n");
  EXPECT_EQ(nGames, 1);
  EXPECT_EQ(Entry(startKey), "e2e4 1/2");
  // The unknown word counts for White; after it and the next one have passed,
  // Black is to move again and plays on.
  EXPECT_EQ(Entry(afterE4Key), "a1a1 1/2 g8f6 1/0");
}

TEST_F(BookBuilderTest, UnknownMovesInAnyOrderAreSurvived) {
  const char* words[] = {"e4",   "e5",   "Nf3",  "O-O",  "O-O-O", "Ra1",   "Kh8",  "Qd5",
                         "a8=Q", "bxa1", "Nbd2", "exd6", "zz",    "Bxf7+", "Kxe2", "h1=N"};
  std::uint32_t state = 1;
  std::string text;
  for (int game = 0; game < 300; ++game) {
    text += "[Result \"1-0\"]\n";
    for (int i = 0; i < 60; ++i) {
      state = state * 1664525U + 1013904223U;
      text += std::string(words[(state >> 16) % 16]) + " ";
    }
  }
  Create(text, 60);
  EXPECT_EQ(nGames, 300);
}

TEST_F(BookBuilderTest, SavingPrintsEachStep) {
  Create(twoGames);
  EXPECT_EQ(Save("a.bk"),
            "\n* Cleaning...........done. (Filtered 5 to 4 lines)\n"
            "* Normalizing........done\n"
            "* Sorting............done.\n"
            "* Saving.............done. (Valid lines 4)\n");
}

TEST_F(BookBuilderTest, ABookOfOneGameHasFullWeights) {
  Create("[Result \"1/2-1/2\"]\n1. e4 d5 2. e5\n");
  Save("a.bk");
  // Keys in ascending order: after 1. e4 d5, the start, after 1. e4.
  EXPECT_EQ(ReadBytes(scratch.Path("a.bk")), RecordBytes(afterE4D5Key, FileMove("e4e5"), 65535) +
                                                 RecordBytes(startKey, FileMove("e2e4"), 65535) +
                                                 RecordBytes(afterE4Key, FileMove("d7d5"), 65535));
}

TEST_F(BookBuilderTest, APromotionIsSavedWithoutItsPiece) {
  Create("[Result \"1-0\"]\n1. a4 b5 2. axb5 a6 3. bxa6 Bb7 4. axb7 h6 5. bxa8=N h5\n");
  Save("a.bk");
  const std::string bytes = ReadBytes(scratch.Path("a.bk"));
  EXPECT_NE(bytes.find(RecordBytes(0, FileMove("b7a8"), 65535).substr(8)), std::string::npos);
}

TEST_F(BookBuilderTest, CastlingIsSavedAsKingTakesRook) {
  Create("[Result \"1/2-1/2\"]\n1. e4 e5 2. Nf3 Nf6 3. Bc4 Bc5 4. O-O O-O\n");
  Save("a.bk");
  const std::string bytes = ReadBytes(scratch.Path("a.bk"));
  EXPECT_NE(bytes.find(RecordBytes(0, FileMove("e1h1"), 65535).substr(8)), std::string::npos);
  EXPECT_NE(bytes.find(RecordBytes(0, FileMove("e8h8"), 65535).substr(8)), std::string::npos);
}

TEST_F(BookBuilderTest, SavingToAnUnwritablePathIsSilent) {
  Create(twoGames);
  EXPECT_EQ(Save("no/such/folder/a.bk").substr(0, 22), "\n* Cleaning...........");
}

TEST_F(BookBuilderTest, MergingJoinsTwoBooks) {
  const std::string first = scratch.Write("1.bk", RecordBytes(5, FileMove("e2e4"), 300) +
                                                      RecordBytes(7, FileMove("d2d4"), 100) +
                                                      RecordBytes(7, FileMove("c2c4"), 100));
  const std::string second = scratch.Write("2.bk", RecordBytes(2, FileMove("g1f3"), 50) +
                                                       RecordBytes(7, FileMove("d2d4"), 200) +
                                                       RecordBytes(9, FileMove("b2b3"), 1));
  const std::string out = scratch.Path("3.bk");
  EXPECT_EQ(Printed([&] { MergeBooks(book, first.c_str(), second.c_str(), out.c_str()); }),
            "\n* Cleaning...........done. (Filtered 4 to 3 lines)\n"
            "* Normalizing........done\n"
            "* Sorting............done.\n"
            "* Saving.............done. (Valid lines 4)\n");
  // The second file's last record is not read. 300/400 and 100/400 of 65535.
  EXPECT_EQ(ReadBytes(out),
            RecordBytes(2, FileMove("g1f3"), 65535) + RecordBytes(5, FileMove("e2e4"), 65535) +
                RecordBytes(7, FileMove("d2d4"), 49151) + RecordBytes(7, FileMove("c2c4"), 16383));
}

TEST_F(BookBuilderTest, MergingWithOneUnreadableBookSavesTheOther) {
  const std::string only = scratch.Write(
      "1.bk", RecordBytes(5, FileMove("e2e4"), 1) + RecordBytes(6, FileMove("d2d4"), 1));
  const std::string none = scratch.Path("none.bk");
  const std::string out = scratch.Path("3.bk");
  Printed([&] { MergeBooks(book, only.c_str(), none.c_str(), out.c_str()); });
  EXPECT_EQ(ReadBytes(out).size(), 32U);
  Printed([&] {
    OpeningBook other;
    ASSERT_TRUE(CreateOpeningBook(other));
    MergeBooks(other, none.c_str(), only.c_str(), out.c_str());
    DestroyOpeningBook(other);
  });
  EXPECT_EQ(ReadBytes(out).size(), 16U);
}

TEST_F(BookBuilderTest, MergingTwoUnreadableBooksTouchesNothing) {
  const std::string none = scratch.Path("none.bk");
  const std::string out = scratch.Write("3.bk", "precious");
  EXPECT_EQ(Printed([&] { MergeBooks(book, none.c_str(), none.c_str(), out.c_str()); }), "done.");
  EXPECT_EQ(ReadBytes(out), "precious");
}

TEST_F(BookBuilderTest, BuildsTheSameBookWhenTheFirstMatchIsAnEmptyEntry) {
  // The entry with key 0 that a merge adds is not found for other positions.
  ASSERT_TRUE(LoadBook(book, scratch.Write("e.bk", "").c_str(), false));
  Create(twoGames);
  EXPECT_EQ(book.count, 6);
  EXPECT_EQ(Entry(startKey), "e2e4 2/3");
}

TEST_F(BookBuilderTest, PlaysTheBookItBuilt) {
  Create(twoGames);
  Save("book.bk");
  ASSERT_TRUE(LoadBook(book, scratch.Path("book.bk").c_str(), true));
  BeginFromStart(board);
  Move move = noMove;
  EXPECT_EQ(Printed([&] { EXPECT_TRUE(ProbeBook(book, board, move)); }),
            "\n e2e4 100.00% (65535)\n");
  EXPECT_EQ(move, Word("e2e4", white, pawn));
}

}  // namespace
}  // namespace mirvo
