#include "protocol/xboard_ponder.h"

#include "board/display.h"
#include "board/make_move.h"
#include "tests/protocol/xboard_test_kit.h"

namespace mirvo {
namespace {

using XBoardPondering = XBoardTest;

constexpr char hitLine[] = "PONDER HIT. CONTINUING\n";
constexpr char missLine[] = "PONDER NOT HIT. STOPPING\n";

/// "new" and White's first move; the engine answers e7e5 and expects g1f3.
ScriptedAnswer FirstAnswer() { return {{}, "e7e5", "g1f3"}; }

int Count(const std::string& text, const std::string& part) {
  int n = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++n;
  return n;
}

TEST_F(XBoardPondering, TheExpectedReplyIsPlayedAndSearchedWithoutAClock) {
  script = {FirstAnswer(), {{}, "b8c6"}};
  const std::string printed = Play({"new\n", "time 100\n", "e2e4\n"});
  EXPECT_EQ(printed,
            "rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq -\n"
            "Allowing 25 ms for move (0, 1000, 0)\n"
            "rnbqkbnr/pppp1ppp/8/4p3/4P3/8/PPPP1PPP/RNBQKBNR w KQkq -\n"
            "move e7e5\n"
            "PONDERING g1f3\n"
            "rnbqkbnr/pppp1ppp/8/4p3/4P3/5N2/PPPP1PPP/RNBQKB1R b KQkq -\n");
  EXPECT_EQ(searchKinds, (std::vector<std::string>{"timed", "ponder"}));
  EXPECT_EQ(engineConfig.FixedTimePerMove, 0);
}

TEST_F(XBoardPondering, AHitGoesOnWithTheClockAndAnswers) {
  script = {FirstAnswer(), {{"time 500\n", "otim 9\n", "g1f3\n"}, "b8c6"}};
  const std::string printed = Play({"new\n", "e2e4\n"});
  const std::string tail =
      "rnbqkbnr/pppp1ppp/8/4p3/4P3/5N2/PPPP1PPP/RNBQKB1R b KQkq -\n"
      "PONDER HIT. CONTINUING\n"
      "Allowing 166 ms for move (0, 5000, 0)\n"
      "Ponder hits = 1, misses = 0, percenthits = 100.0%\n"
      "r1bqkbnr/pppp1ppp/2n5/4p3/4P3/5N2/PPPP1PPP/RNBQKB1R w KQkq -\n"
      "move b8c6\n";
  ASSERT_GE(printed.size(), tail.size());
  EXPECT_EQ(printed.substr(printed.size() - tail.size()), tail);
  EXPECT_EQ(engineConfig.InfiniteThinkingTime, 0);
  EXPECT_FALSE(searchFlags.pondering);
  EXPECT_FALSE(searchFlags.StopSearch);
}

TEST_F(XBoardPondering, AHitAllotsFromTheOwnClockWithItsIncrement) {
  script = {FirstAnswer(), {{"time 1000\n", "g1f3\n"}, "b8c6"}};
  // 10000 / 25 + 2000 / 2 - 50
  EXPECT_NE(Play({"new\n", "level 0 1 2\n", "e2e4\n"})
                .find("PONDER HIT. CONTINUING\nAllowing 1350 ms for move (0, 10000, 2000)\n"),
            std::string::npos);
}

TEST_F(XBoardPondering, TheOwnClockBoundsTheMoveOnceItIsKnown) {
  engineConfig.MoveOverhead = 50;
  script = {{{}, "e7e5"}};
  Play({"new\n", "easy\n", "otim 500\n", "e2e4\n"});
  EXPECT_EQ(lastLimits.deadline, noDeadline);
  script = {{{}, "b8c6"}};
  Play({"time 40\n", "g1f3\n"});
  EXPECT_EQ(lastLimits.deadline, 350);
  script = {{{}, "g8f6", "d2d3"}, {{"time 30\n", "d2d3\n"}, "d7d6"}};
  Play({"time 20\n", "hard\n", "b1c3\n"});
  EXPECT_EQ(lastLimits.deadline, 250);  // as received before the hit
  engineConfig.MoveOverhead = 0;
}

// The pondered move is on the board already when the real one arrives.
TEST_F(XBoardPondering, TheBoardIsPrintedBeforeTheRealMoveIsJudged) {
  engineConfig.Quiet = false;
  script = {FirstAnswer(), {{"g1f3\n"}, ""}};
  const std::string printed = Play({"new\n", "e2e4\n"});
  char diagram[diagramCapacity];
  FormatBoard(gameBoard, BoardLayout::wide, diagram);
  EXPECT_NE(printed.find("R b KQkq -\n" + std::string(diagram) + "\nPONDER HIT. CONTINUING\n"),
            std::string::npos)
      << printed;
}

TEST_F(XBoardPondering, AMissTakesTheMoveBackAndAnswersTheRealOne) {
  script = {FirstAnswer(), {{"time 500\n", "f1c4\n"}, "b8c6"}, {{}, "g8f6"}};
  const std::string printed = Play({"new\n", "e2e4\n"});
  const std::string tail =
      "PONDERING g1f3\n"
      "rnbqkbnr/pppp1ppp/8/4p3/4P3/5N2/PPPP1PPP/RNBQKB1R b KQkq -\n"
      "PONDER NOT HIT. STOPPING\n"
      "Ponder hits = 0, misses = 1, percenthits = 0.0%\n"
      "rnbqkbnr/pppp1ppp/8/4p3/2B1P3/8/PPPP1PPP/RNBQK1NR b KQkq -\n"
      "Allowing 166 ms for move (0, 5000, 0)\n"
      "rnbqkb1r/pppp1ppp/5n2/4p3/2B1P3/8/PPPP1PPP/RNBQK1NR w KQkq -\n"
      "move g8f6\n";
  ASSERT_GE(printed.size(), tail.size());
  EXPECT_EQ(printed.substr(printed.size() - tail.size()), tail);
  EXPECT_EQ(searchKinds, (std::vector<std::string>{"timed", "ponder", "timed"}));
  EXPECT_FALSE(xboardPonder.ponderMiss);
}

TEST_F(XBoardPondering, TwoMissesInARowAreBothUndone) {
  script = {FirstAnswer(),
            {{"f1c4\n"}, "b8c6"},
            {{}, "g8f6", "b1c3"},
            {{"d2d3\n"}, "f8b4"},
            {{}, "d7d6"}};
  const std::string printed = Play({"new\n", "e2e4\n"});
  EXPECT_NE(printed.find("Ponder hits = 0, misses = 2, percenthits = 0.0%\n"), std::string::npos);
  EXPECT_EQ(Position(), "rnbqkb1r/ppp2ppp/3p1n2/4p3/2B1P3/3P4/PPP2PPP/RNBQK1NR w KQkq -\n");
}

TEST_F(XBoardPondering, HitsAndMissesAreBothInTheStatistics) {
  script = {FirstAnswer(),
            {{"g1f3\n"}, "b8c6", "f1b5"},
            {{"f1b5\n"}, "a7a6", "b5a4"},
            {{"b5c6\n"}, "g8f6"},
            {{}, "d7c6"}};
  EXPECT_NE(Play({"new\n", "e2e4\n"}).find("Ponder hits = 2, misses = 1, percenthits = 66.7%\n"),
            std::string::npos);
}

TEST_F(XBoardPondering, AnotherPromotionPieceOnTheSameSquaresIsAHit) {
  script = {{{}, "a8b8", "e7e8q"}, {{"e7e8n\n"}, "b8b7"}};
  const std::string printed = Play({"new\n", "setboard k7/4P3/8/8/8/8/8/7K b -\n", "go\n"});
  EXPECT_EQ(Count(printed, hitLine), 1);
  EXPECT_EQ(Position(), "4Q3/1k6/8/8/8/8/8/7K w - -\n");
}

TEST_F(XBoardPondering, AMoveAfterAMissWaitsForTheHeldOne) {
  script = {FirstAnswer(), {{"f1c4\n", "d2d3\n"}, "b8c6"}, {{}, "g8f6"}, {{}, "d7d6"}};
  const std::string printed = Play({"new\n", "e2e4\n"});
  EXPECT_LT(printed.find("move g8f6\n"), printed.find("move d7d6\n"));
  EXPECT_EQ(Position(), "rnbqkb1r/ppp2ppp/3p1n2/4p3/2B1P3/3P4/PPP2PPP/RNBQK1NR w KQkq -\n");
}

TEST_F(XBoardPondering, TheFirstOfTwoMovesDecidesAHitAndTheSecondWaits) {
  script = {FirstAnswer(), {{"g1f3\n", "f1c4\n"}, "b8c6"}, {{}, "g8f6"}};
  const std::string printed = Play({"new\n", "e2e4\n"});
  EXPECT_EQ(Count(printed, hitLine), 1);
  EXPECT_LT(printed.find("move b8c6\n"), printed.find("move g8f6\n"));
}

// The board after a missed ponder is the board before it, byte for byte.

struct SpecialMove {
  const char* name;
  const char* fen;       // the engine is to move
  const char* engine;    // its move
  const char* expected;  // the pondered reply
  const char* real;
};

class MissOnSpecialMove : public XBoardTest, public testing::WithParamInterface<SpecialMove> {};

TEST_P(MissOnSpecialMove, RestoresTheBoard) {
  const SpecialMove& item = GetParam();
  Play({"new\n", std::string("setboard ") + item.fen + "\n"});
  static Board before;
  CopyBoard(before, gameBoard);
  MakeMove(before, CompleteTextMove(item.engine, before));
  script = {{{}, item.engine, item.expected}, {{std::string(item.real) + "\n"}, ""}};
  const std::string printed = Play({"go\n"});
  EXPECT_EQ(Count(printed, missLine), 1);
  MakeMove(before, CompleteTextMove(item.real, before));
  for (int piece = 0; piece < nPieces; ++piece) {
    EXPECT_EQ(gameBoard.pieces[piece], before.pieces[piece]) << piece;
  }
  EXPECT_EQ(gameBoard.positionKey, before.positionKey);
  EXPECT_EQ(gameBoard.occupied, before.occupied);
  EXPECT_EQ(gameBoard.occupiedRot90, before.occupiedRot90);
  EXPECT_EQ(gameBoard.occupiedDiagA1H8, before.occupiedDiagA1H8);
  EXPECT_EQ(gameBoard.occupiedDiagA8H1, before.occupiedDiagA8H1);
  EXPECT_EQ(gameBoard.historyIndex, before.historyIndex);
  EXPECT_EQ(gameBoard.undoDepth, before.undoDepth);
  EXPECT_EQ(gameBoard.plyCount, before.plyCount);
  EXPECT_EQ(gameBoard.epFile, before.epFile);
  for (int side = 0; side < nSides; ++side) {
    EXPECT_EQ(gameBoard.castling.kingMoved[side], before.castling.kingMoved[side]);
    EXPECT_EQ(gameBoard.castling.hasCastled[side], before.castling.hasCastled[side]);
    EXPECT_EQ(KingSquare(gameBoard, side), KingSquare(before, side));
  }
}

INSTANTIATE_TEST_SUITE_P(
    EveryKind, MissOnSpecialMove,
    testing::Values(
        SpecialMove{"Capture", "4k3/8/8/3p4/8/8/8/3RK3 b - -", "e8f8", "d1d5", "e1e2"},
        SpecialMove{"EnPassant", "4k3/3p4/8/4P3/8/8/8/4K3 b - -", "d7d5", "e5d6", "e1e2"},
        SpecialMove{"Castling", "4k3/7p/8/8/8/8/8/R3K2R b KQ -", "h7h6", "e1g1", "e1c1"},
        SpecialMove{"LongCastling", "4k3/7p/8/8/8/8/8/R3K2R b KQ -", "h7h6", "e1c1", "e1g1"},
        SpecialMove{"PromotionWithCapture", "1r2k3/P7/8/8/8/8/8/4K3 b - -", "e8e7", "a7b8q",
                    "a7a8n"},
        SpecialMove{"Promotion", "1r2k3/P7/8/8/8/8/8/4K3 b - -", "e8e7", "a7a8q", "a7b8n"}),
    [](const testing::TestParamInfo<SpecialMove>& item) { return item.param.name; });

// Lines that abandon the ponder search.

TEST_F(XBoardPondering, GoAbandonsAndPlaysTheOtherSide) {
  script = {FirstAnswer(), {{"go\n"}, "b8c6", "f1b5"}, {{}, "d2d4"}};
  const std::string printed = Play({"new\n", "e2e4\n"});
  EXPECT_EQ(Count(printed, "PONDER"), 1);  // only the start
  EXPECT_EQ(Count(printed, "Ponder hits"), 0);
  EXPECT_EQ(Position(), "rnbqkbnr/pppp1ppp/8/4p3/3PP3/8/PPP2PPP/RNBQKBNR b KQkq -\n");
  EXPECT_EQ(searchKinds, (std::vector<std::string>{"timed", "ponder", "timed"}));
  EXPECT_EQ(xboardGame.engineColour, white);
  EXPECT_FALSE(xboardPonder.ponderMiss);
  EXPECT_FALSE(xboardPonder.searchAbandoned);
  EXPECT_FALSE(searchFlags.pondering);
  EXPECT_FALSE(XBoardHasOwnLine());
}

TEST_F(XBoardPondering, ForceAbandonsAtOnce) {
  script = {FirstAnswer(), {{"force\n"}, "b8c6", "f1b5"}};
  const std::string printed = Play({"new\n", "e2e4\n"});
  EXPECT_EQ(printed.substr(printed.size() - 59),
            "rnbqkbnr/pppp1ppp/8/4p3/4P3/5N2/PPPP1PPP/RNBQKB1R b KQkq -\n");
  EXPECT_EQ(Position(), afterE4E5Line);
  EXPECT_TRUE(xboardGame.force);
  EXPECT_FALSE(xboardPonder.ponderMiss);
  EXPECT_EQ(ponderStats.misses, 0U);
  EXPECT_FALSE(XBoardHasOwnLine());
}

TEST_F(XBoardPondering, AnAbandonedSearchLeavesNoStopAndNoClock) {
  script = {FirstAnswer(), {{"force\n"}, "b8c6", "f1b5"}};
  Play({"new\n", "e2e4\n"});
  EXPECT_FALSE(searchFlags.StopSearch);
  EXPECT_EQ(engineConfig.InfiniteThinkingTime, 1);
}

TEST_F(XBoardPondering, LinesThatGiveTheSearchUpEndItAtOnce) {
  for (const char* line : {"go\n", "setboard 8/8/8/8/8/8/8/8 w - -\n", "new\n"}) {
    xboardPonder = XBoardPonder{};
    searchFlags = SearchFlags{};
    searchFlags.pondering = true;
    EXPECT_EQ(ClassifyXBoardLine(line), LineTiming::afterSearch) << line;
    EXPECT_FALSE(searchFlags.pondering) << line;
    EXPECT_TRUE(searchFlags.StopSearch) << line;
    EXPECT_TRUE(xboardPonder.ponderMiss) << line;
  }
  for (const char* line : {"force\n", "result *\n"}) {
    xboardPonder = XBoardPonder{};
    searchFlags = SearchFlags{};
    searchFlags.pondering = true;
    EXPECT_EQ(ClassifyXBoardLine(line), LineTiming::atOnce) << line;
    std::uint8_t state = 0;
    HandleXBoardLine(state, line);
    EXPECT_FALSE(searchFlags.pondering) << line;
    EXPECT_TRUE(searchFlags.StopSearch) << line;
    EXPECT_TRUE(xboardPonder.ponderMiss) << line;
  }
}

TEST_F(XBoardPondering, ResultAbandonsAtOnce) {
  script = {FirstAnswer(), {{"result 1-0 {Resigns}\n"}, "b8c6", "f1b5"}};
  const std::string printed = Play({"new\n", "e2e4\n"});
  EXPECT_EQ(Count(printed, "\nmove "), 1);
  EXPECT_EQ(Position(), afterE4E5Line);
  EXPECT_STREQ(xboardGame.tags.result, "1-0");
  EXPECT_FALSE(xboardGame.gameInProgress);
  EXPECT_FALSE(XBoardHasOwnLine());
}

TEST_F(XBoardPondering, NewAbandonsAndRunsAfterTheUnwinding) {
  script = {FirstAnswer(), {{"new\n", "force\n", "g1f3\n"}, "b8c6", "f1b5"}};
  Play({"new\n", "e2e4\n"});
  EXPECT_EQ(Position(), "rnbqkbnr/pppppppp/8/8/8/5N2/PPPPPPPP/RNBQKB1R b KQkq -\n");
  EXPECT_TRUE(xboardGame.force);
  EXPECT_TRUE(script.empty());
  EXPECT_EQ(searchKinds.size(), 2U);
}

TEST_F(XBoardPondering, SetboardAbandonsAndRunsAfterTheUnwinding) {
  script = {FirstAnswer(), {{"setboard 4k3/8/8/8/8/8/8/4K3 b -\n", "force\n"}, "b8c6", "f1b5"}};
  const std::string printed = Play({"new\n", "e2e4\n"});
  EXPECT_EQ(Position(), "4k3/8/8/8/8/8/8/4K3 b - -\n");
  EXPECT_EQ(Count(printed, "PONDER"), 1);
  EXPECT_EQ(searchKinds.size(), 2U);
}

TEST_F(XBoardPondering, OtherLinesActAtOnceAndPonderingGoesOn) {
  script = {
      FirstAnswer(),
      {{"time 900\n", "otim 800\n", "easy\n", "name Rival\n", "white\n", "?\n", "hint\n", "g1f3\n"},
       "b8c6",
       "f1b5"}};
  const std::string printed = Play({"new\n", "e2e4\n"});
  EXPECT_EQ(Count(printed, hitLine), 1);
  EXPECT_EQ(Count(printed, "PONDERING"), 1);  // "easy" holds for the next move
  EXPECT_STREQ(xboardGame.opponentName, "Rival");
  EXPECT_EQ(xboardGame.opponentTime, 8000);
}

TEST_F(XBoardPondering, EndOfInputAbandonsSilently) {
  Play({"new\n"});
  searchFlags.pondering = true;
  XBoardInputEnded();
  EXPECT_TRUE(searchFlags.StopSearch);
  EXPECT_FALSE(searchFlags.pondering);
  EXPECT_TRUE(xboardPonder.ponderMiss);
  EXPECT_EQ(ponderStats.misses, 0U);
}

TEST_F(XBoardPondering, EndOfInputLeavesATimedSearchAlone) {
  XBoardInputEnded();
  EXPECT_FALSE(searchFlags.StopSearch);
  EXPECT_FALSE(xboardPonder.ponderMiss);
}

// Between a miss and the end of the search.

TEST_F(XBoardPondering, ForceAfterAMissRecordsTheHeldMoveOnly) {
  script = {FirstAnswer(), {{"f1c4\n", "force\n"}, "b8c6"}};
  Play({"new\n", "e2e4\n"});
  EXPECT_EQ(Position(), "rnbqkbnr/pppp1ppp/8/4p3/2B1P3/8/PPPP1PPP/RNBQK1NR b KQkq -\n");
  EXPECT_EQ(searchKinds.size(), 2U);
}

TEST_F(XBoardPondering, ResultAfterAMissStartsNothingAgain) {
  script = {FirstAnswer(), {{"f1c4\n", "result 1-0 {White mates}\n"}, "b8c6"}};
  Play({"new\n", "e2e4\n"});
  EXPECT_EQ(Position(), "rnbqkbnr/pppp1ppp/8/4p3/2B1P3/8/PPPP1PPP/RNBQK1NR b KQkq -\n");
  EXPECT_EQ(searchKinds.size(), 2U);
  EXPECT_FALSE(xboardGame.gameInProgress);
  EXPECT_FALSE(xboardPonder.recordOnly);
}

TEST_F(XBoardPondering, NewAfterAMissForgetsTheHeldMove) {
  script = {FirstAnswer(), {{"f1c4\n", "new\n"}, "b8c6"}};
  Play({"new\n", "e2e4\n"});
  EXPECT_EQ(Position(), "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -\n");
  EXPECT_EQ(searchKinds.size(), 2U);
}

// When the engine does not ponder.

TEST_F(XBoardPondering, NeedsTheSettingAnExpectedReplyAndNoBook) {
  script = {{{}, "e7e5", ""}};
  EXPECT_EQ(Count(Play({"new\n", "e2e4\n"}), "PONDERING"), 0);
  script = {FirstAnswer()};
  EXPECT_EQ(Count(Play({"easy\n", "new\n", "e2e4\n"}), "PONDERING"), 0);
  script = {FirstAnswer()};
  Play({"hard\n", "new\n"});
  searchFlags.BookInUse = true;
  EXPECT_EQ(Count(Play({"e2e4\n"}), "PONDERING"), 0);
}

TEST_F(XBoardPondering, IsLeftOutAfterAMateScore) {
  script = {{{}, "e7e5", "g1f3", mateMark}};
  EXPECT_EQ(Count(Play({"new\n", "e2e4\n"}), "PONDERING"), 0);
}

TEST_F(XBoardPondering, AMatedEngineAnswersAHitWithSilence) {
  script = {FirstAnswer(), {{"g1f3\n"}, ""}};
  const std::string printed = Play({"new\n", "e2e4\n"});
  EXPECT_EQ(Count(printed, hitLine), 1);
  EXPECT_EQ(Count(printed, "\nmove "), 1);
}

TEST_F(XBoardPondering, LeavingTheProtocolForgetsBothOwnLines) {
  xboardPonder.ReplayPonderMove = true;
  xboardPonder.PendingMove = true;
  XBoardLeave();
  EXPECT_FALSE(XBoardHasOwnLine());
}

TEST_F(XBoardPondering, AHeldPromotionKeepsItsPiece) {
  script = {{{}, "a8b8", "h1g1"}, {{"e7e8n\n"}, "b8b7"}, {{}, "b8b7"}};
  Play({"new\n", "setboard k7/4P3/8/8/8/8/8/7K b -\n", "go\n"});
  EXPECT_EQ(Position(), "4N3/1k6/8/8/8/8/8/7K w - -\n");
}

}  // namespace
}  // namespace mirvo
