#include "board/fen.h"

#include <gtest/gtest.h>

#include <memory>

#include "board/bb_move_generator.h"
#include "board/key_history.h"
#include "board/keys.h"
#include "board/make_move.h"
#include "tests/support/board_support.h"

namespace mirvo {
namespace {

constexpr char startPlacement[] = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR";

Board Loaded(const char* placement, const char* side, const char* castling) {
  test::PrepareTables();
  Board board;
  SetupFromFen(placement, side, castling, board);
  return board;
}

Board WithPlacement(const std::string& placement) { return Loaded(placement.c_str(), "w", "-"); }

TEST(SetupFromFen, TheInitialPositionEqualsAReset) {
  const Board board = Loaded(startPlacement, "w", "KQkq");
  Board expected;
  ResetToStart(expected);
  EXPECT_TRUE(test::SameFields(expected, board));
}

TEST(SetupFromFen, EveryLetterSetsItsPiece) {
  const Board board = WithPlacement("PNBRQK2/8/8/8/8/8/8/2pnbrqk");
  for (int kind = 0; kind < nKinds; ++kind) {
    EXPECT_EQ(board.pieces[PieceIndex(white, kind)], Bit(56 + kind)) << kind;
    EXPECT_EQ(board.pieces[PieceIndex(black, kind)], Bit(2 + kind)) << kind;
  }
}

TEST(SetupFromFen, DigitsSkipSquares) {
  EXPECT_EQ(test::NamesOf(WithPlacement("8/8/8/3P4/8/P6P/8/8").pieces[pawn]), "a3 h3 d5");
}

TEST(SetupFromFen, OtherCharactersMoveTheFileByTheirDistanceFromZero) {
  // '9' skips nine squares, from a8 to one past h8, which wraps modulo 64.
  EXPECT_EQ(WithPlacement("9P").pieces[pawn], Bit((56 + 9) % 64));
  // '0' skips none, '-' goes back three, '?' forward fifteen.
  EXPECT_EQ(WithPlacement("0P").pieces[pawn], Bit(56));
  EXPECT_EQ(WithPlacement("5-P").pieces[pawn], Bit(56 + 5 - 3));
  EXPECT_EQ(WithPlacement("-P").pieces[pawn], Bit(56 - 3));
  EXPECT_EQ(WithPlacement("?P").pieces[pawn], Bit((56 + 15) % 64));
  EXPECT_EQ(WithPlacement("xP").pieces[pawn], Bit((56 + 'x' - '0') % 64));
}

TEST(SetupFromFen, SquaresWrapModulo64) {
  // Nine letters in a line run into the ninth square, 64, which is a1.
  EXPECT_EQ(test::NamesOf(WithPlacement("PPPPPPPPP").pieces[pawn]), "a1 a8 b8 c8 d8 e8 f8 g8 h8");
  // A ninth line goes below a1 and comes back at a8.
  EXPECT_EQ(test::NamesOf(WithPlacement("8/8/8/8/8/8/8/8/P").pieces[pawn]), "a8");
}

TEST(SetupFromFen, TheSideTextIsReadBehindBlanks) {
  const struct {
    const char* text;
    int side;
  } cases[] = {{"w", white}, {"b", black}, {"  b", black}, {"\tb", black},   {"B", white},
               {"-", white}, {"", white},  {"   ", white}, {"black", black}, {"wb", white}};
  for (const auto& c : cases) {
    EXPECT_EQ(Loaded(startPlacement, c.text, "-").sideToMove, c.side) << '"' << c.text << '"';
  }
}

// hasCastled, kingMoved, queenRookMoved, kingRookMoved of one side.
std::string Flags(const Board& board, int side) {
  const CastlingFlags& flags = board.castling;
  std::string text;
  text += static_cast<char>('0' + flags.hasCastled[side]);
  text += static_cast<char>('0' + flags.kingMoved[side]);
  text += static_cast<char>('0' + flags.queenRookMoved[side]);
  text += static_cast<char>('0' + flags.kingRookMoved[side]);
  return text;
}

TEST(SetupFromFen, CastlingLettersClearTheirFlags) {
  const struct {
    const char* word;
    const char* white;
    const char* black;
  } cases[] = {{"KQkq", "0000", "0000"}, {"K", "0010", "1111"},    {"Q", "0001", "1111"},
               {"k", "1111", "0010"},    {"q", "1111", "0001"},    {"Kq", "0010", "0001"},
               {"-", "1111", "1111"},    {"", "1111", "1111"},     {"qk", "1111", "0000"},
               {"xyzK", "0010", "1111"}, {"HAha", "1111", "1111"}, {" KQ k", "0000", "1111"}};
  for (const auto& c : cases) {
    const Board board = Loaded(startPlacement, "w", c.word);
    EXPECT_EQ(Flags(board, white), c.white) << '"' << c.word << '"';
    EXPECT_EQ(Flags(board, black), c.black) << '"' << c.word << '"';
  }
}

TEST(SetupFromFen, KeepsEnPassantKeyAndHistory) {
  test::PrepareTables();
  Board board;
  test::Play(board, "g1f3 g8f6");
  board.epFile = 2;
  board.epRank = 5;
  board.epColour = black;
  const std::uint64_t key = board.positionKey;
  const std::uint64_t first = KeyHistory[0];
  SetupFromFen("4k3/8/8/8/8/8/8/4K3", "b", "-", board);
  EXPECT_EQ(board.epFile, 2);
  EXPECT_EQ(board.epRank, 5);
  EXPECT_EQ(board.epColour, black);
  EXPECT_EQ(board.positionKey, key);
  EXPECT_EQ(board.historyIndex, 2);
  EXPECT_EQ(KeyHistory[0], first);
  EXPECT_EQ(board.undoDepth, 0);
  EXPECT_EQ(board.inCheckCache, -1);
}

TEST(SetupFromFen, OnlyTheFirstWordOfEachTextCounts) {
  const Board board = Loaded("  4k3/8/8/8/8/8/8/4K3 w KQkq", " b - -", " k - 0 1");
  EXPECT_EQ(test::PlacementOf(board), "4k3/8/8/8/8/8/8/4K3");
  EXPECT_EQ(board.sideToMove, black);
  EXPECT_EQ(Flags(board, white), "1111");
  EXPECT_EQ(Flags(board, black), "0010");
}

TEST(SetupFromFen, LocatesKingsAndBuildsTheOccupancies) {
  Board board = Loaded("8/2k5/8/8/5K2/8/8/8", "w", "-");
  EXPECT_EQ(KingSquare(board, white), test::Square("f4"));
  EXPECT_EQ(KingSquare(board, black), test::Square("c7"));
  StartKeyHistory(board);
  test::ExpectConsistent(board);
}

// The rook at the end of a word counts only if the word is short enough.
TEST(SetupFromFen, PlacementWordsAreCutAt99Characters) {
  for (const std::size_t length : {98U, 99U, 100U, 101U, 5000U}) {
    std::string word(length - 1, '0');
    word += 'R';
    const Board board = WithPlacement(word);
    EXPECT_EQ(board.pieces[rook], length <= 99 ? Bit(56) : 0U) << length;
  }
}

TEST(SetupFromFen, CastlingWordsAreCutAt99Characters) {
  for (const std::size_t length : {99U, 100U, 5000U}) {
    const std::string word = std::string(length - 1, '-') + "K";
    const Board board = Loaded(startPlacement, "w", word.c_str());
    EXPECT_EQ(Flags(board, white), length <= 99 ? "0010" : "1111") << length;
  }
}

TEST(SetupFromFen, TwoPiecesOnASquareAreNoticed) {
  // "-" steps back three files: the queen joins the pawn on a8.
  Board board = WithPlacement("P2-Q6/8/8/4k3/8/8/4K3/8");
  EXPECT_EQ(board.pieces[pawn], Bit(56));
  EXPECT_EQ(board.pieces[queen], Bit(56));
  EXPECT_TRUE(board.hasOverlaps);
  StartKeyHistory(board);
  test::ExpectConsistent(board);
  EXPECT_FALSE(WithPlacement(startPlacement).hasOverlaps);
}

TEST(SetupFromFen, AnyBytesGiveABoardThatCanBeUsed) {
  test::Random random(70);
  const auto board = std::make_unique<Board>();
  const std::string likely = "PNBRQKpnbrqk12345678//////-9xX\x80\xFF";
  for (int i = 0; i < 400; ++i) {
    std::string placement;
    for (std::size_t n = random.Below(120); n > 0; --n) {
      placement += likely[random.Below(likely.size())];
    }
    BeginFromFen(placement.c_str(), random.Below(2) == 0 ? "w" : "b", "KQkq", *board);
    test::ExpectConsistent(*board);
    const std::vector<Move> moves = test::AllMoves(*board);
    ASSERT_LE(moves.size(), 256U);
    board->inCheckCache = -1;
    const test::Snapshot before(*board);
    for (const Move move : moves) {
      MakeMove(*board, move);
      test::ExpectConsistent(*board);
      UnmakeMove(*board);
      ASSERT_TRUE(before.SameAs(*board)) << placement << ' ' << test::TextOf(move);
    }
    ASSERT_FALSE(HasFailure()) << placement;
  }
}

TEST(BeginFromFen, ForgetsEnPassantAndStartsTheHistory) {
  test::PrepareTables();
  Board board;
  test::Play(board, "g1f3 g8f6");
  board.epFile = 2;
  board.epRank = 5;
  BeginFromFen("4k3/8/8/8/8/8/8/R3K3", "b", "Q", board);
  EXPECT_EQ(board.epFile, 255);
  EXPECT_EQ(board.epRank, 255);
  EXPECT_EQ(board.historyIndex, 0);
  EXPECT_EQ(KeyHistory[0], board.positionKey);
  EXPECT_EQ(board.positionKey, ComputeKey(board));
  EXPECT_EQ(board.plyCount, 0);
}

TEST(BeginFromStart, ForgetsEnPassantAndResets) {
  test::PrepareTables();
  Board board;
  board.epFile = 2;
  board.epRank = 5;
  BeginFromStart(board);
  EXPECT_EQ(board.epFile, 255);
  EXPECT_EQ(board.positionKey, 0x463B96181691FC9CULL);
  EXPECT_EQ(test::PlacementOf(board), startPlacement);
}

}  // namespace
}  // namespace mirvo
