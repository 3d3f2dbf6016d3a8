#include "protocol/uci_position.h"

#include "board/key_history.h"
#include "protocol/position_line.h"
#include "tests/protocol/uci_test_kit.h"

namespace mirvo {
namespace {

class UciPosition : public UciTest {
 protected:
  /// Placement, side and rights after the text behind "position ".
  static std::string After(const std::string& text) {
    SetUpPosition(uciSession, gameBoard, text.c_str());
    char line[positionLineCapacity];
    FormatPositionLine(gameBoard, line);
    std::string result = line;
    return result.substr(0, result.rfind(" -"));
  }
};

constexpr char startPosition[] = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq";

struct PositionCase {
  const char* name;
  const char* text;
  const char* position;
  int trackedSide;
};

class UciPositionCases : public UciPosition, public ::testing::WithParamInterface<PositionCase> {};

TEST_P(UciPositionCases, AreSetUp) {
  After("startpos moves g1f3 g8f6 b1c3");  // what must be forgotten
  EXPECT_EQ(After(GetParam().text), GetParam().position);
  EXPECT_EQ(uciSession.UciSideToMove, GetParam().trackedSide);
  EXPECT_EQ(gameBoard.positionKey, ComputeKey(gameBoard));
}

constexpr char afterE4[] = "rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq";
constexpr char afterE4E5[] = "rnbqkbnr/pppp1ppp/8/4p3/4P3/8/PPPP1PPP/RNBQKBNR w KQkq";
constexpr char afterPass[] = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR b KQkq";

INSTANTIATE_TEST_SUITE_P(
    All, UciPositionCases,
    ::testing::Values(
        PositionCase{"Start", "startpos", startPosition, white},
        PositionCase{"StartBehindBlanks", "   startpos", startPosition, white},
        PositionCase{"OneMove", "startpos moves e2e4", afterE4, black},
        PositionCase{"TwoMoves", "startpos moves e2e4 e7e5", afterE4E5, white},
        PositionCase{"BlanksBetweenMoves", "startpos   moves   e2e4    e7e5   ", afterE4E5, white},
        PositionCase{"MovesWithoutAnyMove", "startpos moves", startPosition, white},
        PositionCase{"MovesAndABlank", "startpos moves ", startPosition, white},
        PositionCase{"LineEnd", "startpos moves e2e4\n", afterE4, black},
        PositionCase{"WordGluedToMoves", "startposmovese2e4", afterE4, black},
        PositionCase{"OtherWordInsteadOfMoves", "startpos xmoves e2e4", startPosition, white},
        PositionCase{"NullMove", "startpos moves 0000", afterPass, black},
        PositionCase{"MalformedMove", "startpos moves e2", afterPass, black},
        PositionCase{"MoveFromAnEmptySquare", "startpos moves e4e5", afterPass, black},
        PositionCase{"MoveOfTheOpponentsPiece", "startpos moves e7e5", afterPass, black},
        PositionCase{"LongToken", "startpos moves e2e4zzzzzzzzzzzzzzzzzzzzzzzzzzzzzzz e7e5",
                     afterE4E5, white},
        PositionCase{"ListEndsAtABrace", "startpos moves e2e4 {e7e5", afterE4, black},
        PositionCase{"ListGoesOnAtAZ", "startpos moves e2e4 z g1f3",
                     "rnbqkbnr/pppppppp/8/8/4P3/5N2/PPPP1PPP/RNBQKB1R b KQkq", black},
        PositionCase{"ListEndsAtAByteAboveText", "startpos moves e2e4 \xC3\xA9 g1f3", afterE4,
                     black},
        PositionCase{"ListEndsAtATab", "startpos moves e2e4\te7e5", afterE4, black},
        PositionCase{"ListBeginsWithATab", "startpos moves \te2e4", startPosition, white},
        PositionCase{"IllegalMoveIsMade", "startpos moves e2e5",
                     "rnbqkbnr/pppppppp/8/4P3/8/8/PPPP1PPP/RNBQKBNR b KQkq", black},
        PositionCase{"Castling", "startpos moves e2e4 e7e5 g1f3 g8f6 f1c4 f8c5 e1g1",
                     "rnbqk2r/pppp1ppp/5n2/2b1p3/2B1P3/5N2/PPPP1PPP/RNBQ1RK1 b kq", black},
        PositionCase{"EnPassant", "startpos moves e2e4 a7a6 e4e5 d7d5 e5d6",
                     "rnbqkbnr/1pp1pppp/p2P4/8/8/8/PPPP1PPP/RNBQKBNR b KQkq", black},
        PositionCase{"EnPassantAfterAFen",
                     "fen rnbqkbnr/1pp1pppp/p7/3pP3/8/8/PPPP1PPP/RNBQKBNR w KQkq d6 0 3 moves e5d6",
                     "rnbqkbnr/1pp1pppp/p2P4/8/8/8/PPPP1PPP/RNBQKBNR b KQkq", black},
        PositionCase{"EnPassantByBlackAfterAFen",
                     "fen 4k3/8/8/8/3pP3/8/8/4K3 b - e3 0 3 moves d4e3 e1e2",
                     "4k3/8/8/8/8/4p3/4K3/8 b -", white},
        PositionCase{"NoEnPassantForTheSecondMoveAfterAFen",
                     "fen 4k3/8/8/3pP3/8/8/8/4K3 w - d6 0 3 moves e1e2 e8e7 e5d6",
                     "8/4k3/3P4/3p4/8/8/4K3/8 b -", black},
        PositionCase{"NoEnPassantAfterTwoNullMoves",
                     "startpos moves e2e4 a7a6 e4e5 d7d5 0000 0000 e5d6",
                     "rnbqkbnr/1pp1pppp/p2P4/3p4/8/8/PPPP1PPP/RNBQKBNR b KQkq", black},
        PositionCase{"Promotion", "fen 4k3/P7/8/8/8/8/8/4K3 w - - 0 1 moves a7a8n",
                     "N3k3/8/8/8/8/8/8/4K3 b -", black},
        PositionCase{"Fen", "fen 4k3/8/8/8/8/8/8/R3K2R w KQ - 0 1", "4k3/8/8/8/8/8/8/R3K2R w KQ",
                     white},
        PositionCase{"FenThreeFields", "fen 4k3/8/8/8/8/8/8/R3K2R w K", "4k3/8/8/8/8/8/8/R3K2R w K",
                     white},
        PositionCase{"FenThreeFieldsAndMoves", "fen 4k3/8/8/8/8/8/8/R3K2R w K moves e1g1",
                     "4k3/8/8/8/8/8/8/R4RK1 b -", black},
        // The tracked side is White's here too, whoever moves first.
        PositionCase{"FenWithBlackToMove", "fen 4k3/8/8/8/8/8/8/4K2R b K - 3 40",
                     "4k3/8/8/8/8/8/8/4K2R b K", white},
        PositionCase{"BlackMovesFirst", "fen 4k3/8/8/8/8/8/8/4K2R b K - 3 40 moves e8d7",
                     "8/3k4/8/8/8/8/8/4K2R w K", black},
        PositionCase{"SkippedFieldsBeforeMoves",
                     "fen 4k3/8/8/8/8/8/8/4K2R b K e3 3 40 x y moves e8d7",
                     "8/3k4/8/8/8/8/8/4K2R w K", black},
        PositionCase{"TwoFields", "fen 4k3/8/8/8/8/8/8/4K3 w", "4k3/8/8/8/8/8/8/4K3 w -", white}),
    [](const ::testing::TestParamInfo<PositionCase>& testCase) { return testCase.param.name; });

TEST_F(UciPosition, ATextOfNeitherFormKeepsTheBoard) {
  After("startpos moves e2e4");
  EXPECT_EQ(After("moves e7e5"), afterE4E5);
  EXPECT_EQ(After(""), afterE4E5);
  EXPECT_EQ(uciSession.UciSideToMove, white);
}

TEST_F(UciPosition, TheTrackedSideFillsTheColourBitOnly) {
  SetUpPosition(uciSession, gameBoard, "fen 4k3/8/8/8/8/8/8/4K2R b K - 0 1 moves e8d7");
  const Move made = gameBoard.undoStack[gameBoard.undoDepth - 1].move;
  EXPECT_EQ(MovingKind(made), king);
  EXPECT_EQ(MoveColour(made), white);
}

TEST_F(UciPosition, AnOldEnPassantSquareIsForgotten) {
  After("startpos moves e2e4 a7a6 e4e5 d7d5");
  ASSERT_TRUE(HasEnPassant(gameBoard));
  After("startpos");
  EXPECT_FALSE(HasEnPassant(gameBoard));
  After("startpos moves e2e4 a7a6 e4e5 d7d5");
  After("fen 4k3/8/8/8/8/8/8/4K3 w - - 0 1");
  EXPECT_FALSE(HasEnPassant(gameBoard));
}

TEST_F(UciPosition, AGameFromAFenBeginsItsKeyHistory) {
  After("fen 4k3/8/8/8/8/8/8/R3K3 w Q - 0 1");
  EXPECT_EQ(gameBoard.historyIndex, 0);
  EXPECT_EQ(KeyHistory[0], ComputeKey(gameBoard));
  // Back at the start: the position occurs twice.
  After("fen 4k3/8/8/8/8/8/8/R3K3 w - - 0 1 moves a1b1 e8d8 b1a1 d8e8");
  EXPECT_TRUE(IsRepetition(gameBoard));
}

TEST_F(UciPosition, AGameOf1200PliesIsPlayedToItsEnd) {
  std::string text = "startpos moves";
  for (int i = 0; i < 300; ++i) text += " g1f3 g8f6 f3g1 f6g8";
  EXPECT_EQ(After(text), startPosition);
  EXPECT_EQ(gameBoard.positionKey, 0x463b96181691fc9cU);
}

TEST_F(UciPosition, LongFenFieldsAreCut) {
  const std::string longField(3000, '9');
  After("fen " + longField + " " + longField + " " + longField + " moves " + longField);
  EXPECT_EQ(gameBoard.positionKey, ComputeKey(gameBoard));
}

TEST_F(UciPosition, TheCommandReadsTheTextBehindOneBlank) {
  PlayUci("position startpos moves e2e4\n");
  EXPECT_EQ(gameBoard.plyCount, 1);
  // Without the blank the first letter of the text is taken for it.
  PlayUci("positionXstartpos moves e2e4 e7e5\n");
  EXPECT_EQ(gameBoard.plyCount, 2);
  EXPECT_EQ(PlayUci("position\n"), "");
  EXPECT_EQ(gameBoard.plyCount, 2);
}

}  // namespace
}  // namespace mirvo
