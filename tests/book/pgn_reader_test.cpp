#include "book/pgn_reader.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "board/notation.h"
#include "tests/book/book_fixture.h"

namespace mirvo {
namespace {

struct ReadGame {
  std::vector<Move> moves;
  std::vector<std::int32_t> weights;
};

void Keep(void* context, const GameRecord& game) {
  static_cast<std::vector<ReadGame>*>(context)->push_back(
      {{game.moves, game.moves + game.plyCount}, {game.weights, game.weights + game.plyCount}});
}

class ReadPgnGamesTest : public BookTest {
 protected:
  // Reads a text and checks that counting agrees with reading.
  const std::vector<ReadGame>& Read(const std::string& text, int plyLimit = 1000) {
    const std::string path = scratch.Write("games.pgn", text);
    games.clear();
    std::int32_t nRead = -1;
    std::int32_t nCounted = -1;
    EXPECT_TRUE(ReadPgnGames(path.c_str(), plyLimit, Keep, &games, nRead));
    EXPECT_TRUE(CountPgnGames(path.c_str(), nCounted));
    EXPECT_EQ(nRead, static_cast<std::int32_t>(games.size()));
    EXPECT_EQ(nRead, nCounted);
    return games;
  }

  // The moves of a single game as coordinates; "?" for one that matched nothing.
  std::string Moves(const std::string& text) {
    Read(text);
    std::string line;
    for (const ReadGame& game : games) {
      if (!line.empty()) line += " | ";
      for (std::size_t i = 0; i < game.moves.size(); ++i) {
        char coordinates[moveTextCapacity];
        MoveToCoordinates(game.moves[i], coordinates);
        if (i > 0) line += ' ';
        line += FromSquare(game.moves[i]) == ToSquare(game.moves[i]) ? "?" : coordinates;
      }
    }
    return line;
  }

  std::vector<ReadGame> games;
};

TEST_F(ReadPgnGamesTest, ReadsAGame) {
  EXPECT_EQ(Moves("[Event \"x\"]\n[Result \"1-0\"]\n\n1. e4 e5 2. Nf3 Nc6 3. Bb5 a6 1-0\n"),
            "e2e4 e7e5 g1f3 b8c6 f1b5 a7a6");
  EXPECT_EQ(games[0].moves[0], Word("e2e4", white, pawn));
  EXPECT_EQ(games[0].moves[3], Word("b8c6", black, knight));
}

struct PointsCase {
  const char* result;
  std::int32_t whitePoints;
  std::int32_t blackPoints;
};

class PointsTest : public ReadPgnGamesTest, public testing::WithParamInterface<PointsCase> {};

TEST_P(PointsTest, EachMoveIsWorthItsSidesPoints) {
  Read(std::string("[Result \"") + GetParam().result + "\"]\ne4 e5 d4\n");
  const std::vector<std::int32_t> expected = {GetParam().whitePoints, GetParam().blackPoints,
                                              GetParam().whitePoints};
  EXPECT_EQ(games.at(0).weights, expected);
}

INSTANTIATE_TEST_SUITE_P(Results, PointsTest,
                         testing::Values(PointsCase{"1-0", 2, 0}, PointsCase{"0-1", 0, 2},
                                         PointsCase{"1/2-1/2", 1, 1}, PointsCase{"*", 0, 0}));

TEST_F(ReadPgnGamesTest, TagsAfterMovesBeginAGame) {
  EXPECT_EQ(Moves("[a]\n[b]\ne4\n[Result \"1-0\"]\nd4 d5\n[c]\n\nc4 *"), "e2e4 | d2d4 d7d5 | c2c4");
}

TEST_F(ReadPgnGamesTest, AResultTextDoesNotEndAGame) {
  EXPECT_EQ(Moves("e4 e5 1-0 Nf3 *"), "e2e4 e7e5 g1f3");
}

TEST_F(ReadPgnGamesTest, TheResultIsForgottenInTheNextTagSection) {
  Read("[Result \"1-0\"]\ne4\n[Event \"x\"]\nd4\n");
  EXPECT_EQ(games.at(0).weights.at(0), 2);
  EXPECT_EQ(games.at(1).weights.at(0), 0);
}

TEST_F(ReadPgnGamesTest, AGameWithoutMovesDoesNotCountNorLendItsResult) {
  Read("[Result \"1-0\"]\n\n1-0\n\n[Event \"x\"]\n\nd4\n\n[Event \"y\"]\n\n*\n");
  ASSERT_EQ(games.size(), 1U);
  EXPECT_EQ(games[0].weights.at(0), 0);
}

TEST_F(ReadPgnGamesTest, TheOrderOfTagsDoesNotMatter) {
  Read("[Result \"0-1\"]\n{note}\n[Event \"1-0\"]\ne4 e5");
  EXPECT_EQ(games.at(0).weights, (std::vector<std::int32_t>{0, 2}));
}

TEST_F(ReadPgnGamesTest, MovesWithoutTagsAreAGameWithoutPoints) {
  Read("1. e4 e5");
  EXPECT_EQ(games.at(0).weights, (std::vector<std::int32_t>{0, 0}));
}

TEST_F(ReadPgnGamesTest, NothingIsNoGame) {
  EXPECT_EQ(Read("").size(), 0U);
  EXPECT_EQ(Read("[Result \"1-0\"]\n1-0").size(), 0U);
  EXPECT_EQ(Read("{e4} (e4) ;e4").size(), 0U);
}

TEST_F(ReadPgnGamesTest, AnnotationsAreCutOff) {
  EXPECT_EQ(Moves("1.e4! $1 e5?! 2.Nf3$14 (2.f4!?) Nc6!! {good} 3.Bb5 $5 a6??"),
            "e2e4 e7e5 g1f3 b8c6 f1b5 a7a6");
}

TEST_F(ReadPgnGamesTest, WindowsLineEndsAreBlanks) {
  EXPECT_EQ(Moves("[Result \"1-0\"]\r\n\r\n1. e4\r\ne5\r\n2. Nf3\r\n"), "e2e4 e7e5 g1f3");
}

TEST_F(ReadPgnGamesTest, StatedFilesTellPiecesApart) {
  // Both knights reach d2: the stated file decides.
  EXPECT_EQ(Moves("d4 d5 Nf3 Nf6 Nbd2"), "d2d4 d7d5 g1f3 g8f6 b1d2");
  EXPECT_EQ(Moves("d4 d5 Nf3 Nf6 Nfd2"), "d2d4 d7d5 g1f3 g8f6 f3d2");
}

TEST_F(ReadPgnGamesTest, AStatedRankIsNotLookedAt) {
  // The knights on g1 and e5 both reach f3; lists begin at the highest square.
  Position("4k3/8/8/4N3/8/8/8/N3K1N1", "w", "-");
  Move partial = noMove;
  const Move byRank = MatchSan(board, "N1f3", partial);
  const Move withoutRank = MatchSan(board, "Nf3", partial);
  EXPECT_EQ(byRank, withoutRank);
  EXPECT_EQ(FromSquare(byRank), At("e5"));
}

struct MatchCase {
  const char* name;
  const char* placement;
  const char* side;
  const char* castling;
  const char* text;
  const char* move;  // coordinates, "-" when nothing matches
};

class MatchSanTest : public BookTest, public testing::WithParamInterface<MatchCase> {};

TEST_P(MatchSanTest, TakesTheFirstMoveThatAgrees) {
  Position(GetParam().placement, GetParam().side, GetParam().castling);
  Move partial = noMove;
  char text[moveTextCapacity] = "-";
  const Move move = MatchSan(board, GetParam().text, partial);
  if (move != noMove) MoveToCoordinates(move, text);
  EXPECT_STREQ(text, GetParam().move);
}

constexpr char pawns[] = "4k3/P1P5/8/3p1p2/2P1P1P1/8/1p6/R3K2R";
constexpr char castles[] = "r3k2r/8/8/8/8/8/8/R3K2R";

INSTANTIATE_TEST_SUITE_P(
    Texts, MatchSanTest,
    testing::Values(
        MatchCase{"CaptureFromC", pawns, "w", "KQ", "cxd5", "c4d5"},
        MatchCase{"CaptureFromE", pawns, "w", "KQ", "exd5", "e4d5"},
        MatchCase{"CaptureFromG", pawns, "w", "KQ", "gxf5", "g4f5"},
        MatchCase{"NoCaptureFromA", pawns, "w", "KQ", "axd5", "-"},
        MatchCase{"CaptureWithoutSign", pawns, "w", "KQ", "ed5", "e4d5"},
        MatchCase{"CaptureWithFullSquare", pawns, "w", "KQ", "e4xd5", "e4d5"},
        MatchCase{"ATextWithXIsNoPush", "4k3/8/8/8/3P4/8/8/4K3", "w", "-", "exd5", "-"},
        MatchCase{"Push", pawns, "w", "KQ", "c5", "c4c5"},
        MatchCase{"PushIsNoCapture", pawns, "w", "KQ", "d5", "-"},
        MatchCase{"PromotionTakesTheQueen", pawns, "w", "KQ", "a8=N", "a7a8q"},
        MatchCase{"PromotionWithoutPiece", pawns, "w", "KQ", "c8", "c7c8q"},
        MatchCase{"PromotionWithCheck", pawns, "w", "KQ", "c8=Q+", "c7c8q"},
        MatchCase{"CapturePromotion", pawns, "b", "KQ", "bxa1=R", "b2a1q"},
        MatchCase{"PushPromotion", pawns, "b", "KQ", "b1=Q", "b2b1q"},
        MatchCase{"Short", castles, "w", "KQkq", "O-O", "e1g1"},
        MatchCase{"Long", castles, "w", "KQkq", "O-O-O", "e1c1"},
        MatchCase{"BlackShort", castles, "b", "KQkq", "O-O", "e8g8"},
        MatchCase{"BlackLong", castles, "b", "KQkq", "O-O-O", "e8c8"},
        MatchCase{"ShortWithCheckReadsAsLong", castles, "w", "KQkq", "O-O+", "e1c1"},
        MatchCase{"RookWithFile", castles, "w", "KQkq", "Rad1", "a1d1"},
        MatchCase{"RookWithOtherFile", castles, "w", "KQkq", "Rhf1+", "h1f1"},
        MatchCase{"RookFromNowhere", castles, "w", "KQkq", "Rcd1", "-"},
        MatchCase{"RookTakes", castles, "w", "KQkq", "Rxa8+", "a1a8"},
        MatchCase{"IllegalMovesMatchToo", "4r2k/8/8/8/8/8/4N3/4K3", "w", "-", "Nc3", "e2c3"},
        MatchCase{"FirstOfTwoFromTheTop", "4k3/8/8/8/8/2N5/8/4K1N1", "w", "-", "Ne2", "c3e2"},
        MatchCase{"WrongPiece", castles, "w", "KQkq", "Qd1", "-"},
        MatchCase{"NoMoveAtAll", castles, "w", "KQkq", "e.p.", "-"}),
    CaseName());

TEST_F(ReadPgnGamesTest, ReadsEnPassant) {
  EXPECT_EQ(Moves("e4 a6 e5 d5 exd6 cxd6"), "e2e4 a7a6 e4e5 d7d5 e5d6 c7d6");
}

TEST_F(ReadPgnGamesTest, TheNoteOfEnPassantIsNoMoveAndSpoilsNone) {
  for (const char* capture : {"exd6 e.p.", "exd6e.p.", "exd6 e.p", "exd6e.p", "exd6 ep", "exd6ep",
                              "exd6 e.p.!", "exd6!e.p.", "exd6e.p.$1", "exd6 e.p.$1", "exd6 e.p.+",
                              "exd6e.p.+", "exd6+ e.p.", "exd6+e.p.", "exd6 e.p.#",
                              "3. exd6 {takes} e.p. $10", "exd6e.p.(3. d4)", "3.exd6\re.p.\n"}) {
    EXPECT_EQ(
        Moves(std::string("[Result \"1-0\"]\n1. e4 a6 2. e5 d5 3. ") + capture + " cxd6 4. d4 Nf6"),
        "e2e4 a7a6 e4e5 d7d5 e5d6 c7d6 d2d4 g8f6")
        << capture;
    EXPECT_EQ(games.at(0).weights, (std::vector<std::int32_t>{2, 0, 2, 0, 2, 0, 2, 0})) << capture;
  }
}

TEST_F(ReadPgnGamesTest, TheNoteOfEnPassantDoesNotMakeAGame) {
  EXPECT_EQ(Read("[Result \"1-0\"]\ne.p.\n[Event \"x\"]\ne4 ep e5").size(), 1U);
  EXPECT_EQ(games[0].moves.size(), 2U);
}

TEST_F(ReadPgnGamesTest, TheNoteOfEnPassantDoesNotCountForThePlyLimit) {
  EXPECT_EQ(Read("e4 a6 e5 d5 exd6 e.p. cxd6 d4", 6).at(0).moves.size(), 6U);
  EXPECT_EQ(games[0].moves[5], Word("c7d6", black, pawn) | captureFlag);
}

TEST_F(ReadPgnGamesTest, EnPassantIsForgottenBetweenGames) {
  // The first game ends with a capture en passant pending on d6.
  EXPECT_EQ(Moves("[a]\ne4 a6 e5 d5\n[b]\nd4 d5 c4 dxc4"),
            "e2e4 a7a6 e4e5 d7d5 | d2d4 d7d5 c2c4 d5c4");
}

TEST_F(ReadPgnGamesTest, AnUnknownMoveIsKeptButNotPlayed) {
  Read("[Result \"1-0\"]\n1. e4 Qh4 Nf6 2. Nf3");
  const ReadGame& game = games.at(0);
  ASSERT_EQ(game.moves.size(), 4U);
  // The kind and target that the text states, and the other side's points,
  // because Black is still to move.
  EXPECT_EQ(MovingKind(game.moves[1]), queen);
  EXPECT_EQ(ToSquare(game.moves[1]), At("h4"));
  EXPECT_EQ(FromSquare(game.moves[1]), 0);
  EXPECT_EQ(game.weights, (std::vector<std::int32_t>{2, 2, 0, 2}));
  EXPECT_EQ(game.moves[2], Word("g8f6", black, knight));
}

TEST_F(ReadPgnGamesTest, PliesPastThe500thArePlayedButNotStored) {
  for (const int nPlies : {499, 500, 501, 1000}) {
    std::string text = "[Result \"1-0\"]\n";
    const char* shuffle[] = {"Nf3 ", "Nf6 ", "Ng1 ", "Ng8 "};
    for (int i = 0; i < nPlies; ++i) text += shuffle[i % 4];
    Read(text);
    EXPECT_EQ(games.at(0).moves.size(), static_cast<std::size_t>(std::min(nPlies, 500)));
    for (std::size_t i = 0; i < games[0].moves.size(); ++i) {
      ASSERT_EQ(MovingKind(games[0].moves[i]), knight) << i;
      ASSERT_EQ(games[0].weights[i], i % 2 == 0 ? 2 : 0) << i;
    }
  }
}

TEST_F(ReadPgnGamesTest, AGameAfterALongOneStartsFresh) {
  std::string text;
  for (int i = 0; i < 3000; ++i) text += "Nf3 Nf6 Ng1 Ng8 ";
  EXPECT_EQ(Moves(text + "\n[a]\ne4 e5").substr(500 * 5), "| e2e4 e7e5");
}

TEST_F(ReadPgnGamesTest, StopsLookingAtThePlyLimit) {
  EXPECT_EQ(Read("[a] e4 e5 Nf3 Nc6 [b] d4 d5", 3).at(0).moves.size(), 3U);
  EXPECT_EQ(games.at(1).moves.size(), 2U);
  EXPECT_EQ(Read("[a] e4 e5 [b] d4 d5", 0).size(), 2U);
  EXPECT_EQ(games.at(1).moves.size(), 0U);
  EXPECT_EQ(Read("[a] e4 e5 [b] d4 d5", -1).size(), 2U);
}

TEST_F(ReadPgnGamesTest, AFileThatCannotBeOpenedIsReported) {
  const std::string path = scratch.Path("none.pgn");
  std::int32_t nGames = -1;
  const std::string printed = Printed([&] {
    EXPECT_FALSE(ReadPgnGames(path.c_str(), 40, Keep, &games, nGames));
    EXPECT_EQ(nGames, 0);
    EXPECT_FALSE(CountPgnGames(path.c_str(), nGames));
  });
  EXPECT_EQ(printed, "Problem reading opening file!!\nProblem reading opening file!!\n");
}

TEST_F(ReadPgnGamesTest, ADirectoryHoldsNoGames) {
  std::int32_t nGames = -1;
  Printed([&] { CountPgnGames(scratch.root.string().c_str(), nGames); });
  EXPECT_EQ(nGames, 0);
}

TEST_F(ReadPgnGamesTest, GamesFromOtherStartsAreReadAsFarAsTheyMakeSense) {
  EXPECT_EQ(Moves("[FEN \"4k3/8/8/8/8/8/4P3/4K3 w - - 0 1\"]\n[SetUp \"1\"]\n1. e4 Kd7 2. e5"),
            "e2e4 a1d7 e7e5");
}

}  // namespace
}  // namespace mirvo
