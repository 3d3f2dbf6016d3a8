#include "book/book_file.h"
#include "book/book_probe.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "board/notation.h"
#include "tests/book/book_fixture.h"

namespace mirvo {
namespace {

using LoadBookTest = BookTest;

struct MoveCodingCase {
  const char* name;
  std::uint16_t fileMove;
  Move move;
};

class MoveDecoding : public testing::TestWithParam<MoveCodingCase> {};

TEST_P(MoveDecoding, GivesTheWord) {
  EXPECT_EQ(DecodeBookMove(GetParam().fileMove), GetParam().move);
}

// Loaded moves always have colour white and kind pawn: the file has only squares
// and promotion.
INSTANTIATE_TEST_SUITE_P(
    Moves, MoveDecoding,
    testing::Values(
        MoveCodingCase{"Plain", FileMove("e2e4"), Word("e2e4", white, pawn)},
        MoveCodingCase{"Corners", FileMove("h8a1"), Word("h8a1", white, pawn)},
        MoveCodingCase{"Knight", FileMove("a7a8", 1), Word("a7a8", white, pawn) | 0x40200000},
        MoveCodingCase{"Bishop", FileMove("a7a8", 2), Word("a7a8", white, pawn) | 0x40400000},
        MoveCodingCase{"Rook", FileMove("a7a8", 3), Word("a7a8", white, pawn) | 0x40600000},
        MoveCodingCase{"Queen", FileMove("h2g1", 4), Word("h2g1", white, pawn) | 0x40800000},
        MoveCodingCase{"ShortTakesRook", FileMove("e1h1"), Word("e1g1", white, king)},
        MoveCodingCase{"ShortPlain", FileMove("e1g1"), Word("e1g1", white, king)},
        MoveCodingCase{"LongTakesRook", FileMove("e1a1"), Word("e1c1", white, king)},
        MoveCodingCase{"LongPlain", FileMove("e1c1"), Word("e1c1", white, king)},
        MoveCodingCase{"LongToB", FileMove("e1b1"), Word("e1c1", white, king)},
        MoveCodingCase{"BlackShort", FileMove("e8h8"), Word("e8g8", white, king)},
        MoveCodingCase{"BlackLong", FileMove("e8a8"), Word("e8c8", white, king)},
        MoveCodingCase{"OneFile", FileMove("e1f1"), Word("e1f1", white, pawn)},
        MoveCodingCase{"OneFileLeft", FileMove("e8d8"), Word("e8d8", white, pawn)},
        MoveCodingCase{"OtherRank", FileMove("e2h2"), Word("e2h2", white, pawn)},
        MoveCodingCase{"OtherFile", FileMove("d1h1"), Word("d1h1", white, pawn)},
        MoveCodingCase{"LeavesTheRank", FileMove("e1h4"), Word("e1h4", white, pawn)},
        MoveCodingCase{"CastlingIgnoresPromotion", FileMove("e1h1", 4), Word("e1g1", white, king)}),
    CaseName());

class MoveEncoding : public testing::TestWithParam<MoveCodingCase> {};

TEST_P(MoveEncoding, GivesTheFileMove) {
  EXPECT_EQ(EncodeBookMove(GetParam().move), GetParam().fileMove);
}

INSTANTIATE_TEST_SUITE_P(
    Moves, MoveEncoding,
    testing::Values(MoveCodingCase{"Plain", FileMove("e2e4"), Word("e2e4", white, pawn)},
                    MoveCodingCase{"Capture", FileMove("h8a1"),
                                   Word("h8a1", black, queen) | captureFlag},
                    MoveCodingCase{"Promotion", FileMove("a7a8"),
                                   Word("a7a8", white, pawn) | PromotionBits(rook)},
                    MoveCodingCase{"WhiteShort", FileMove("e1h1"), Word("e1g1", white, king)},
                    MoveCodingCase{"WhiteLong", FileMove("e1a1"), Word("e1c1", white, king)},
                    MoveCodingCase{"BlackShort", FileMove("e8h8"), Word("e8g8", black, king)},
                    MoveCodingCase{"BlackLong", FileMove("e8a8"), Word("e8c8", black, king)},
                    MoveCodingCase{"KingStep", FileMove("e1f1"), Word("e1f1", white, king)},
                    // Two files are enough to be castling, even from squares
                    // other than the king's.
                    MoveCodingCase{"TwoFilesRight", FileMove("e1h1"), Word("a1c3", white, king)},
                    MoveCodingCase{"TwoFilesLeft", FileMove("e1a1"), Word("h8f5", white, king)},
                    MoveCodingCase{"TwoFilesToRank8", FileMove("e8h8"), Word("a1c8", black, king)},
                    MoveCodingCase{"ThreeFiles", FileMove("a1d1"), Word("a1d1", white, king)},
                    MoveCodingCase{"QueenFromE1", FileMove("e1g1"), Word("e1g1", white, queen)}),
    CaseName());

TEST_F(LoadBookTest, ReadBigEndianStopsAtTheEnd) {
  const std::string path = scratch.Write("bytes", "\x01\x02\x03\xFF");
  std::FILE* file = std::fopen(path.c_str(), "rb");
  ByteReader reader(file);
  std::uint64_t value = 99;
  EXPECT_EQ(ReadBigEndian(reader, 3, value), 0);
  EXPECT_EQ(value, 0x010203U);
  EXPECT_EQ(ReadBigEndian(reader, 2, value), 1);
  EXPECT_EQ(value, 0xFFU);
  EXPECT_EQ(ReadBigEndian(reader, 1, value), 1);
  std::fclose(file);
}

TEST_F(LoadBookTest, WriteBigEndianWritesTheLowBytes) {
  const std::string path = scratch.Path("bytes");
  std::FILE* file = std::fopen(path.c_str(), "wb");
  WriteBigEndian(file, 3, 0x11223344U);
  WriteBookRecord(file, {0x0102030405060708U, 0x090A, 0x0B0C, 0x0D0E0F10U});
  std::fclose(file);
  EXPECT_EQ(ReadBytes(path),
            "\x22\x33\x44\x01\x02\x03\x04\x05\x06\x07\x08\x09\x0A\x0B\x0C\x0D\x0E\x0F\x10");
}

TEST_F(LoadBookTest, GroupsRecordsOfOneKey) {
  const std::string path =
      scratch.Write("a.bk", RecordBytes(startKey, FileMove("e2e4"), 65535, 77) +
                                RecordBytes(startKey, FileMove("d2d4"), 1) +
                                RecordBytes(afterE4Key, FileMove("d7d5"), 300));
  ASSERT_TRUE(LoadBook(book, path.c_str(), true));
  EXPECT_EQ(book.loaded, 1U);
  ASSERT_EQ(book.count, 2);
  EXPECT_EQ(book.entries[0].key, startKey);
  ASSERT_EQ(book.entries[0].moveCount, 2);
  EXPECT_EQ(book.entries[0].moves[0], Word("e2e4", white, pawn));
  EXPECT_EQ(book.entries[0].moves[1], Word("d2d4", white, pawn));
  EXPECT_EQ(book.entries[0].weights[0], 65535);
  EXPECT_EQ(book.entries[0].weights[1], 1);
  EXPECT_EQ(book.entries[0].hits[0], 0);
  EXPECT_EQ(book.entries[1].key, afterE4Key);
  EXPECT_EQ(book.entries[1].weights[0], 300);
}

TEST_F(LoadBookTest, KeyZeroOpensTheFirstEntryToo) {
  const std::string path = scratch.Write("a.bk", RecordBytes(0, FileMove("e2e4"), 1));
  ASSERT_TRUE(LoadBook(book, path.c_str(), true));
  ASSERT_EQ(book.count, 1);
  EXPECT_EQ(book.entries[0].moveCount, 1);
}

TEST_F(LoadBookTest, AKeyThatReturnsLaterIsAnotherEntry) {
  const std::string path = scratch.Write("a.bk", RecordBytes(1, FileMove("e2e4"), 1) +
                                                     RecordBytes(2, FileMove("d2d4"), 1) +
                                                     RecordBytes(1, FileMove("c2c4"), 1));
  ASSERT_TRUE(LoadBook(book, path.c_str(), true));
  EXPECT_EQ(book.count, 3);
  EXPECT_EQ(FindEntry(book, 1), 0);
}

TEST_F(LoadBookTest, ReplacingForgetsTheOldBook) {
  const std::string first = scratch.Write(
      "a.bk", RecordBytes(1, FileMove("e2e4"), 1) + RecordBytes(2, FileMove("d2d4"), 1));
  const std::string second = scratch.Write("b.bk", RecordBytes(2, FileMove("c2c4"), 9));
  ASSERT_TRUE(LoadBook(book, first.c_str(), true));
  EXPECT_EQ(FindEntry(book, 2), 1);
  ASSERT_TRUE(LoadBook(book, second.c_str(), true));
  ASSERT_EQ(book.count, 1);
  EXPECT_EQ(FindEntry(book, 1), -1);
  EXPECT_EQ(FindEntry(book, 2), 0);
  ASSERT_EQ(book.entries[0].moveCount, 1);
  EXPECT_EQ(book.entries[0].moves[0], Word("c2c4", white, pawn));
}

TEST_F(LoadBookTest, ReplacingByABookOfTheSameSizeFindsTheNewPositions) {
  const std::string first = scratch.Write("a.bk", RecordBytes(1, FileMove("e2e4"), 1));
  const std::string second = scratch.Write("b.bk", RecordBytes(2, FileMove("d2d4"), 1));
  ASSERT_TRUE(LoadBook(book, first.c_str(), true));
  ASSERT_TRUE(LoadBook(book, second.c_str(), true));
  EXPECT_EQ(FindEntry(book, 1), -1);
  EXPECT_EQ(FindEntry(book, 2), 0);
}

TEST_F(LoadBookTest, AMissingFileIsReportedToTheCallerAlone) {
  AppendEntry(1, noMove, 1, 1);
  book.loaded = 1;
  const std::string printed =
      Printed([&] { EXPECT_FALSE(LoadBook(book, scratch.Path("none").c_str(), true)); });
  EXPECT_EQ(printed, "");
  EXPECT_EQ(book.loaded, 0U);
}

TEST_F(LoadBookTest, AFailedMergeLeavesTheEntries) {
  AppendEntry(1, noMove, 1, 1);
  EXPECT_FALSE(LoadBook(book, scratch.Path("none").c_str(), false));
  EXPECT_EQ(book.count, 1);
  EXPECT_EQ(book.loaded, 0U);
}

TEST_F(LoadBookTest, FilesWithoutARecordGiveAnEmptyLoadedBook) {
  for (std::size_t size = 0; size < 16; ++size) {
    AppendEntry(1, noMove, 1, 1);
    const std::string path = scratch.Write("a.bk", std::string(size, 'x'));
    EXPECT_TRUE(LoadBook(book, path.c_str(), true));
    EXPECT_EQ(book.count, 0) << size;
    EXPECT_EQ(book.loaded, 1U) << size;
  }
}

TEST_F(LoadBookTest, APartialTailIsIgnored) {
  const std::string bytes =
      RecordBytes(1, FileMove("e2e4"), 1) + RecordBytes(2, FileMove("d2d4"), 1);
  for (std::size_t size = 16; size < 32; ++size) {
    const std::string path = scratch.Write("a.bk", bytes.substr(0, size));
    EXPECT_TRUE(LoadBook(book, path.c_str(), true));
    EXPECT_EQ(book.count, 1) << size;
  }
}

TEST_F(LoadBookTest, ADirectoryHasNoEntries) {
  AppendEntry(1, noMove, 1, 1);
  if (!LoadBook(book, scratch.root.string().c_str(), true)) GTEST_SKIP() << "does not open";
  EXPECT_EQ(book.count, 0);
  EXPECT_EQ(book.loaded, 1U);
}

TEST_F(LoadBookTest, MergingADirectoryLeavesTheEntries) {
  AppendEntry(1, Word("e2e4", white, pawn), 1, 1);
  if (!LoadBook(book, scratch.root.string().c_str(), false)) GTEST_SKIP() << "does not open";
  EXPECT_EQ(FindEntry(book, 1), 0);
  EXPECT_EQ(book.entries[0].moveCount, 1);
  EXPECT_EQ(book.count, 2);  // and the empty entry
}

TEST_F(LoadBookTest, AnEndlessStreamHasNoEntries) {
  std::FILE* endless = std::fopen("/dev/zero", "rb");
  if (endless == nullptr) GTEST_SKIP() << "no such stream here";
  std::fclose(endless);
  EXPECT_TRUE(LoadBook(book, "/dev/zero", true));
  EXPECT_EQ(book.count, 0);
}

TEST_F(LoadBookTest, ReplacingDropsATwentyFirstMove) {
  for (const int nMoves : {19, 20, 21, 50}) {
    std::string bytes;
    for (int i = 0; i < nMoves; ++i) bytes += RecordBytes(5, static_cast<std::uint16_t>(i), 1);
    bytes += RecordBytes(6, 1, 1);
    ASSERT_TRUE(LoadBook(book, scratch.Write("a.bk", bytes).c_str(), true));
    EXPECT_EQ(book.count, 2);
    EXPECT_EQ(book.entries[0].moveCount, std::min(nMoves, 20));
    EXPECT_EQ(book.entries[1].moveCount, 1);
  }
}

TEST_F(LoadBookTest, ReplacingDropsA200001stPosition) {
  std::string bytes;
  for (std::uint64_t key = 1; key <= 199999; ++key) bytes += RecordBytes(key, 1, 1);
  ASSERT_TRUE(LoadBook(book, scratch.Write("a.bk", bytes).c_str(), true));
  EXPECT_EQ(book.count, 199999);
  bytes += RecordBytes(200000, 1, 1) + RecordBytes(200000, 2, 1);
  ASSERT_TRUE(LoadBook(book, scratch.Write("a.bk", bytes).c_str(), true));
  EXPECT_EQ(book.count, 200000);
  EXPECT_EQ(book.entries[199999].moveCount, 2);
  bytes += RecordBytes(200001, 1, 1) + RecordBytes(200000, 3, 1);
  ASSERT_TRUE(LoadBook(book, scratch.Write("a.bk", bytes).c_str(), true));
  EXPECT_EQ(book.count, 200000);
  EXPECT_EQ(book.entries[199999].moveCount, 2);
  EXPECT_EQ(FindEntry(book, 200000), 199999);
  EXPECT_EQ(FindEntry(book, 200001), -1);
}

TEST_F(LoadBookTest, MergingLeavesAnEmptyEntryAndTheLastRecord) {
  AppendEntry(1, Word("e2e4", white, pawn), 2, 10);
  const std::string path = scratch.Write(
      "b.bk", RecordBytes(1, FileMove("e2e4"), 5) + RecordBytes(1, FileMove("d2d4"), 6) +
                  RecordBytes(2, FileMove("c2c4"), 7) + RecordBytes(3, FileMove("b2b4"), 8));
  ASSERT_TRUE(LoadBook(book, path.c_str(), false));
  EXPECT_EQ(book.loaded, 1U);
  ASSERT_EQ(book.count, 3);
  EXPECT_EQ(book.entries[0].hits[0], 3);
  EXPECT_EQ(book.entries[0].weights[0], 15);
  EXPECT_EQ(book.entries[0].hits[1], 1);
  EXPECT_EQ(book.entries[0].weights[1], 6);
  EXPECT_EQ(book.entries[1].key, 0U);
  EXPECT_EQ(book.entries[1].moveCount, 0);
  EXPECT_EQ(book.entries[2].key, 2U);
  EXPECT_EQ(book.entries[2].hits[0], 1);
  EXPECT_EQ(book.entries[2].weights[0], 7);
}

TEST_F(LoadBookTest, TheEmptyEntryCollectsTheMovesOfKeyZero) {
  const std::string path =
      scratch.Write("b.bk", RecordBytes(0, FileMove("e2e4"), 5) + RecordBytes(9, 0, 0));
  ASSERT_TRUE(LoadBook(book, path.c_str(), false));
  ASSERT_EQ(book.count, 1);
  EXPECT_EQ(book.entries[0].moveCount, 1);
  EXPECT_EQ(book.entries[0].weights[0], 5);
}

TEST_F(LoadBookTest, MergingAnEmptyFileStillLeavesTheEmptyEntry) {
  AppendEntry(1, noMove, 1, 1);
  AppendEntry(2, noMove, 1, 1);
  book.count = 1;  // an old entry lies where the empty one goes
  ASSERT_TRUE(LoadBook(book, scratch.Write("b.bk", "").c_str(), false));
  ASSERT_EQ(book.count, 2);
  EXPECT_EQ(book.entries[1].key, 0U);
  EXPECT_EQ(book.entries[1].moveCount, 0);
}

TEST_F(LoadBookTest, MergingStopsOpeningEntriesAtTheLimit) {
  for (std::int32_t i = 0; i < 199997; ++i) {
    AppendEntry(static_cast<std::uint64_t>(i) + 1, noMove, 1, 1);
  }
  std::string bytes;
  for (std::uint64_t key = 300000; key < 300005; ++key) bytes += RecordBytes(key, 1, 1);
  bytes += RecordBytes(1, FileMove("a2a3"), 1) + RecordBytes(0, 0, 0);
  ASSERT_TRUE(LoadBook(book, scratch.Write("b.bk", bytes).c_str(), false));
  EXPECT_EQ(book.count, 199999);
  EXPECT_EQ(FindEntry(book, 300000), 199998);
  EXPECT_EQ(FindEntry(book, 300001), -1);
  EXPECT_EQ(book.entries[0].moveCount, 2);
}

TEST_F(LoadBookTest, MergingIntoAFullBookStaysInside) {
  for (std::int32_t i = 0; i < bookCapacity; ++i) {
    AppendEntry(static_cast<std::uint64_t>(i) + 1, noMove, 1, 1);
  }
  const std::string path =
      scratch.Write("b.bk", RecordBytes(400000, 1, 1) + RecordBytes(400001, 1, 1));
  ASSERT_TRUE(LoadBook(book, path.c_str(), false));
  EXPECT_EQ(book.count, 200000);
  EXPECT_EQ(FindEntry(book, 400000), -1);
}

TEST_F(LoadBookTest, WithoutMemoryNothingOpens) {
  OpeningBook none;
  const std::string path = scratch.Write("a.bk", RecordBytes(1, 1, 1));
  EXPECT_FALSE(LoadBook(none, path.c_str(), true));
  EXPECT_EQ(none.loaded, 0U);
}

TEST_F(LoadBookTest, RandomBytesAreSurvived) {
  std::mt19937 random(3);
  for (int round = 0; round < 50; ++round) {
    std::string bytes(random() % 5000, '\0');
    for (char& c : bytes) c = static_cast<char>(random() & (round % 2 == 0 ? 255 : 1));
    // A key that the probe finds, so that the bytes after it are used as moves.
    bytes = RecordBytes(startKey, static_cast<std::uint16_t>(random()), 1) + bytes;
    for (std::size_t i = 16; i + 16 <= bytes.size() && i < 16 * 22; i += 16) {
      bytes.replace(i, 8, RecordBytes(startKey, 0, 0).substr(0, 8));
    }
    const std::string path = scratch.Write("a.bk", bytes);
    for (const bool replace : {true, false}) {
      ASSERT_TRUE(LoadBook(book, path.c_str(), replace));
      BeginFromStart(board);
      Move move = noMove;
      Printed([&] { ProbeBook(book, board, move); });
      EXPECT_EQ(ComputeKey(board), startKey);
    }
  }
}

}  // namespace
}  // namespace mirvo
