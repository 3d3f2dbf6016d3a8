// Replays the stored files of the fuzzers, and a few large ones that are made
// here.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "tests/book/book_exercise.h"
#include "tests/book/book_fixture.h"
#include "tests/support/repetitions.h"

namespace mirvo {
namespace {

class CorpusTest : public BookTest {
 protected:
  static std::vector<std::string> Files(const char* folder) {
    std::vector<std::string> files;
    const std::string root = std::string(MIRVO_SOURCE_DIR) + "/tests/book/corpus/" + folder;
    for (const auto& file : std::filesystem::directory_iterator(root)) {
      files.push_back(file.path().string());
    }
    std::sort(files.begin(), files.end());
    return files;
  }

  void ExpectGamesSurvived(const std::string& path, const std::string& what) {
    Printed([&] {
      EXPECT_TRUE(ExerciseGames(book, path.c_str(), scratch.Path("out.bk").c_str())) << what;
    });
  }
  void ExpectBookSurvived(const std::string& path, const std::string& what) {
    Printed([&] {
      EXPECT_TRUE(ExerciseBookFile(book, path.c_str(), scratch.Path("out.bk").c_str())) << what;
    });
  }
};

TEST_F(CorpusTest, BookFilesAreSurvived) {
  const auto files = Files("books");
  ASSERT_FALSE(files.empty());
  for (const std::string& file : files) ExpectBookSurvived(file, file);
}

TEST_F(CorpusTest, GamesAreSurvived) {
  const auto files = Files("games");
  ASSERT_FALSE(files.empty());
  for (const std::string& file : files) ExpectGamesSurvived(file, file);
}

TEST_F(CorpusTest, ABookOfMoreThanAllPositionsAndMovesIsSurvived) {
  std::string bytes;
  for (std::uint64_t key = 0; key < 210000; ++key) {
    const int nMoves = key % 7000 == 0 ? 30 : 1;
    for (int i = 0; i < nMoves; ++i) {
      bytes += RecordBytes(key, static_cast<std::uint16_t>(key + 4096U * static_cast<unsigned>(i)),
                           static_cast<std::uint16_t>(key));
    }
  }
  ExpectBookSurvived(scratch.Write("huge.bk", bytes), "huge");
}

TEST_F(CorpusTest, ABookOfOneKeyOrOfKeysOneBitApartIsSurvived) {
  std::string one;
  std::string close;
  for (int i = 0; i < 100000; ++i) {
    one += RecordBytes(startKey, static_cast<std::uint16_t>(i * 7), 65535);
    close += RecordBytes(static_cast<std::uint64_t>(i) << 45, FileMove("e2e4"), 1);
  }
  ExpectBookSurvived(scratch.Write("one.bk", one), "one key");
  ExpectBookSurvived(scratch.Write("close.bk", close), "high bits only");
}

// Plays a move more often than the 16 bits of a weight in a file can count.
TEST_F(CorpusTest, AMillionGamesOfOneMoveAreSurvived) {
  const int nGames = test::Repetitions(1000000, 100000);
  std::string text;
  for (int i = 0; i < nGames; ++i) text += "[]e4";
  ExpectGamesSurvived(scratch.Write("many.pgn", text), "many games");
}

TEST_F(CorpusTest, RandomTextFromPiecesOfGamesIsSurvived) {
  static const char* const pieces[] = {"[Result \"1-0\"]",
                                       "[",
                                       "]",
                                       "{",
                                       "}",
                                       "(",
                                       ")",
                                       ";",
                                       "\n",
                                       "\r\n",
                                       " ",
                                       "\t",
                                       "$1",
                                       "!",
                                       "?",
                                       "1.",
                                       "12...",
                                       "e4",
                                       "e5",
                                       "exd5",
                                       "Nf3",
                                       "Nbd7",
                                       "R1e1",
                                       "O-O",
                                       "O-O-O",
                                       "O-O+",
                                       "a8=Q",
                                       "bxa1=N+",
                                       "Kxe8#",
                                       "Qh4e1",
                                       "e.p.",
                                       "exd6e.p.",
                                       "ep",
                                       "1-0",
                                       "1/2-1/2",
                                       "*",
                                       "--",
                                       "Z0",
                                       "\xEF\xBB\xBF",
                                       "%"};
  std::mt19937 random(5);
  for (int round = 0; round < 60; ++round) {
    std::string text;
    for (int i = 0; i < 2000; ++i) {
      const std::size_t piece = random() % (sizeof(pieces) / sizeof(pieces[0]) + 2);
      if (piece < sizeof(pieces) / sizeof(pieces[0])) text += pieces[piece];
      if (piece == sizeof(pieces) / sizeof(pieces[0])) text += '\0';
      if (random() % 3 != 0) text += ' ';
    }
    ExpectGamesSurvived(scratch.Write("random.pgn", text), "round " + std::to_string(round));
  }
}

}  // namespace
}  // namespace mirvo
