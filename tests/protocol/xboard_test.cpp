#include "protocol/xboard.h"

#include <cstring>

#include "board/display.h"
#include "board/key_history.h"
#include "book/opening_book.h"
#include "search/game_counters.h"
#include "search/hash/hash_allocation.h"
#include "search/hash/hash_memory.h"
#include "search/hash/hash_table.h"
#include "search/move_order.h"
#include "tests/protocol/xboard_test_kit.h"
#include "tests/support/hash_support.h"

namespace mirvo {
namespace {

constexpr char startLine[] = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -\n";
constexpr char afterE4Line[] = "rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq -\n";

using XBoardCommands = XBoardTest;

TEST_F(XBoardCommands, AMoveAfterNewIsAnsweredWithBlackAndFillsTheHeader) {
  script = {{{}, "e7e5"}};
  const std::string printed = Play({"new\n", "e2e4\n"});
  EXPECT_EQ(printed, std::string(afterE4Line) + "Allowing 0 ms for move (0, 0, 0)\n" +
                         afterE4E5Line + "move e7e5\n");
  EXPECT_STREQ(xboardGame.tags.black, "Mirvo 0.2.7_d");
  EXPECT_TRUE(xboardGame.gameInProgress);
  EXPECT_TRUE(xboardGame.gameStarted);
}

TEST_F(XBoardCommands, NewPrefaultsAPartOfTheTables) {
  test::AllocateAfresh(TranspositionTable, 2000);
  const std::size_t nMissing = TranspositionTable.nMissing;
  Play({"new"});
  EXPECT_LT(TranspositionTable.nMissing, nMissing);
  EXPECT_TRUE(HashMemoryMissing());
  HashRelease(TranspositionTable);
}

TEST_F(XBoardCommands, ForceModeRecordsBothSidesWithoutAReply) {
  EXPECT_EQ(Play({"new\n", "force\n", "e2e4\n", "e7e5\n"}),
            std::string(afterE4Line) + afterE4E5Line);
  EXPECT_TRUE(searchKinds.empty());
  EXPECT_FALSE(xboardGame.gameInProgress);
}

TEST_F(XBoardCommands, AClockCommandInForceModeDoesNotStartTheGame) {
  Play({"new\n", "force\n", "time 6000\n", "e2e4\n"});
  EXPECT_FALSE(xboardGame.gameInProgress);
}

TEST_F(XBoardCommands, GoPlaysTheSideToMoveAndNamesItInTheHeader) {
  script = {{{}, "e2e4"}};
  EXPECT_EQ(Play({"new\n", "go\n"}),
            std::string("Allowing 0 ms for move (0, 0, 0)\n") + afterE4Line + "move e2e4\n");
  EXPECT_EQ(xboardGame.engineColour, white);
  EXPECT_STREQ(xboardGame.tags.white, "Mirvo 0.2.7_d");
  EXPECT_STREQ(xboardGame.tags.whiteType, "program");
  EXPECT_STREQ(xboardGame.tags.blackType, "human");
}

TEST_F(XBoardCommands, GoLeavesForceMode) {
  script = {{{}, "e7e5"}};
  Play({"new\n", "force\n", "e2e4\n", "go\n"});
  EXPECT_FALSE(xboardGame.force);
  EXPECT_EQ(Position(), afterE4E5Line);
}

TEST_F(XBoardCommands, AWhiteEngineStaysWhiteWhenItsOpponentMoves) {
  script = {{{}, "e2e4"}, {{}, "g1f3"}};
  Play({"new\n", "go\n", "e7e5\n"});
  EXPECT_EQ(xboardGame.engineColour, white);
}

// With the flag still set, the search would count as abandoned.
TEST_F(XBoardCommands, GoClearsAPonderingFlag) {
  script = {{{}, "e2e4"}};
  Play({"new\n"});
  searchFlags.pondering = true;
  Play({"go\n"});
  EXPECT_FALSE(searchFlags.StopSearch);
  EXPECT_FALSE(xboardPonder.ponderMiss);
}

TEST_F(XBoardCommands, GoodbyeIsAGo) {
  script = {{{}, "e2e4"}};
  Play({"new\n", "goodbye\n"});
  EXPECT_EQ(Position(), afterE4Line);
}

TEST_F(XBoardCommands, TheHeaderIsFilledOncePerGame) {
  script = {{{}, "d2d4"}};
  // The move in force mode makes the engine Black in the header; "go" with White to
  // move comes too late to change that.
  Play({"new\n", "force\n", "e2e4\n", "e7e5\n", "go\n"});
  EXPECT_STREQ(xboardGame.tags.black, "Mirvo 0.2.7_d");
  EXPECT_STREQ(xboardGame.tags.white, "");
}

TEST_F(XBoardCommands, NamesRatingsAndTypesFallByColour) {
  script = {{{}, "e7e5"}};
  Play({"new\n", "name Rival 1.0\r\n", "rating 2100 1900\n", "computer\n", "e2e4\n"});
  EXPECT_STREQ(xboardGame.tags.white, "Rival 1.0");
  EXPECT_STREQ(xboardGame.tags.whiteElo, "1900");
  EXPECT_STREQ(xboardGame.tags.blackElo, "2100");
  EXPECT_STREQ(xboardGame.tags.whiteType, "program");
  EXPECT_STREQ(xboardGame.tags.blackType, "program");
}

TEST_F(XBoardCommands, AWhiteEngineHasTheWhiteHalfOfTheHeader) {
  Play({"new\n", "name Rival 1.0\n", "rating 2100 1900\n", "computer\n", "go\n"});
  EXPECT_STREQ(xboardGame.tags.white, "Mirvo 0.2.7_d");
  EXPECT_STREQ(xboardGame.tags.black, "Rival 1.0");
  EXPECT_STREQ(xboardGame.tags.whiteElo, "2100");
  EXPECT_STREQ(xboardGame.tags.blackElo, "1900");
  EXPECT_STREQ(xboardGame.tags.whiteType, "program");
  EXPECT_STREQ(xboardGame.tags.blackType, "program");
}

TEST_F(XBoardCommands, ClocksAreReadInCentiseconds) {
  Play({"time 1234\n", "otim 77\n"});
  EXPECT_EQ(xboardGame.ownTime, 12340);
  EXPECT_EQ(xboardGame.opponentTime, 770);
  EXPECT_TRUE(xboardGame.clockReceived);
  Play({"time 2000000000\n"});
  EXPECT_EQ(xboardGame.ownTime, 2147483647);
  Play({"time soon\n"});
  EXPECT_EQ(xboardGame.ownTime, 0);
}

// Under XBoard only a move from a square without such a piece passes the turn;
// other texts are unknown commands.
TEST_F(XBoardCommands, ATextThatMovesNothingEndsEnPassant) {
  Play({"new\n", "force\n", "e2e4\n", "a7a6\n", "e4e5\n", "d7d5\n", "e4e6\n"});
  EXPECT_FALSE(HasEnPassant(gameBoard));
  EXPECT_EQ(gameBoard.positionKey, ComputeKey(gameBoard));
  Play({"d6d5\n", "e5d6\n"});
  EXPECT_EQ(Position(), "rnbqkbnr/1pp1pppp/p2P4/3p4/8/8/PPPP1PPP/RNBQKBNR b KQkq -\n");
}

TEST_F(XBoardCommands, TheFirstMoveAfterSetboardMayTakeEnPassant) {
  Play({"new\n", "force\n", "setboard 4k3/8/8/3pP3/8/8/8/4K3 w - d6 0 3\n", "e5d6\n"});
  EXPECT_EQ(Position(), "4k3/8/3P4/8/8/8/8/4K3 b - -\n");
  EXPECT_EQ(gameBoard.positionKey, ComputeKey(gameBoard));
  const Move made = gameBoard.undoStack[gameBoard.undoDepth - 1].move;
  EXPECT_TRUE(IsCapture(made));
  EXPECT_EQ(CapturedKind(made), pawn);
  Play({"setboard 4k3/8/8/3pP3/8/8/8/4K3 w - d6 0 3\n", "e1e2\n", "e8e7\n", "e5d6\n"});
  EXPECT_EQ(Position(), "8/4k3/3P4/3p4/8/8/4K3/8 b - -\n");
}

TEST_F(XBoardCommands, OnlyTheIncrementOfALevelIsUsed) {
  Play({"level 40 5 12\n"});
  EXPECT_EQ(xboardGame.ownIncrement, 12000);
  EXPECT_EQ(xboardGame.opponentIncrement, 12000);
  EXPECT_EQ(xboardGame.movesToGo, 0);
  EXPECT_EQ(xboardGame.ownTime, 0);
  Play({"level 0 0:02 0.02\n"});
  EXPECT_EQ(xboardGame.ownIncrement, 0);
  Play({"level 40\n"});
  EXPECT_EQ(xboardGame.ownIncrement, 0);
}

TEST_F(XBoardCommands, TheTimeIsAllottedFromTheOwnClockAndIncrement) {
  script = {{{}, "e7e5"}};
  // 10000 / 25 + 2000 / 2 - 50
  EXPECT_NE(Play({"new\n", "level 0 1 2\n", "time 1000\n", "otim 9999\n", "e2e4\n"})
                .find("Allowing 1350 ms for move (0, 10000, 2000)\n"),
            std::string::npos);
}

TEST_F(XBoardCommands, HardAndEasySwitchPondering) {
  Play({"easy\n"});
  EXPECT_EQ(engineConfig.Ponder, 0);
  Play({"hard\n"});
  EXPECT_EQ(engineConfig.Ponder, 1);
}

TEST_F(XBoardCommands, WhiteAndBlackSetTheEngineColour) {
  Play({"white\n"});
  EXPECT_EQ(xboardGame.engineColour, white);
  Play({"black\n"});
  EXPECT_EQ(xboardGame.engineColour, black);
}

TEST_F(XBoardCommands, TextsAreCutAt127AndLoseTheirLineEnds) {
  Play({"ics freechess.org\r\n"});
  EXPECT_STREQ(xboardGame.tags.site, "freechess.org");
  for (const std::size_t length : {126U, 127U, 128U, 4000U}) {
    Play({"ics " + std::string(length, 'x') + "\n", "name " + std::string(length, 'y') + "\n"});
    EXPECT_EQ(std::strlen(xboardGame.tags.site), length < 127 ? length : 127);
    EXPECT_EQ(std::strlen(xboardGame.opponentName), length < 127 ? length : 127);
  }
  Play({"ics", "name"});
  EXPECT_STREQ(xboardGame.tags.site, "");
  EXPECT_STREQ(xboardGame.opponentName, "");
}

TEST_F(XBoardCommands, AResultKeepsAsManyCharactersAsItsKindHas) {
  const struct {
    const char* line;
    const char* tag;
  } cases[] = {
      {"result 1-0 {White mates}\n", "1-0"},
      {"result 0-1 {Resigns}\n", "0-1"},
      {"result 1/2-1/2 {Stalemate}\n", "1/2-1/2"},
      {"result * {Aborted}\n", "*"},
      {"result *\n", "*"},
      {"result 1-\n", "1-"},
      {"result 1/2\n", "1/2"},
      {"result\n", ""},
      {"result", ""},
      {"result 1\n", "1"},
  };
  for (const auto& item : cases) {
    Play({item.line});
    EXPECT_STREQ(xboardGame.tags.result, item.tag) << item.line;
  }
}

TEST_F(XBoardCommands, AResultEndsTheGame) {
  script = {{{}, "e7e5", "g1f3"}};
  Play({"new\n", "e2e4\n"});
  const std::size_t nSearches = searchKinds.size();
  EXPECT_EQ(Play({"result 1-0\n"}), "");
  EXPECT_FALSE(xboardGame.gameInProgress);
  EXPECT_FALSE(xboardGame.gameStarted);
  EXPECT_TRUE(searchFlags.StopSearch);
  EXPECT_EQ(searchKinds.size(), nSearches);
}

TEST_F(XBoardCommands, AStopFromForceDoesNotReachTheNextSearch) {
  script = {{{}, "e2e4"}};
  Play({"new\n", "force\n"});
  EXPECT_TRUE(searchFlags.StopSearch);
  Play({"go\n"});
  EXPECT_FALSE(searchFlags.StopSearch);
  script = {{{}, "e2e4"}, {{}, "d2d4"}};
  // Nothing but the move itself starts this search.
  Play({"result 1-0\n", "e7e5\n"});
  EXPECT_FALSE(searchFlags.StopSearch);
}

TEST_F(XBoardCommands, TheFirstMoveMakesTheEngineBlackWhateverWasSaidBefore) {
  Play({"new\n", "white\n", "e2e4\n"});
  EXPECT_EQ(xboardGame.engineColour, black);
  EXPECT_STREQ(xboardGame.tags.black, "Mirvo 0.2.7_d");
}

TEST_F(XBoardCommands, GoWithBlackToMoveNamesTheEngineBlack) {
  Play({"new\n", "white\n", "setboard 4k3/8/8/8/8/8/8/4K3 b - -\n", "go\n"});
  EXPECT_EQ(xboardGame.engineColour, black);
  EXPECT_STREQ(xboardGame.tags.black, "Mirvo 0.2.7_d");
}

TEST_F(XBoardCommands, SetboardLoadsThreeFieldsAndPrintsTheBoardAlone) {
  engineConfig.Quiet = false;
  Play({"new\n", "e2e4\n", "e7e5\n"});
  const std::string printed = Play({"setboard r3k2r/p6p/8/8/8/8/P6P/R3K2R b Kq e3 0 1\n"});
  char diagram[diagramCapacity];
  FormatBoard(gameBoard, BoardLayout::wide, diagram);
  EXPECT_EQ(printed, std::string(diagram) + "\n");
  EXPECT_EQ(Position(), "r3k2r/p6p/8/8/8/8/P6P/R3K2R b Kq -\n");
  EXPECT_EQ(gameBoard.undoDepth, 0);
  EXPECT_FALSE(HasEnPassant(gameBoard));
  EXPECT_EQ(gameBoard.positionKey, ComputeKey(gameBoard));
  EXPECT_EQ(KeyHistory[0], gameBoard.positionKey);
}

TEST_F(XBoardCommands, BoardsStandAroundEveryMoveUnlessQuiet) {
  engineConfig.Quiet = false;
  script = {{{}, "e7e5"}};
  char diagram[diagramCapacity];
  FormatBoard(gameBoard, BoardLayout::wide, diagram);
  const std::string before = std::string(diagram) + "\n";
  const std::string printed = Play({"e2e4\n"});
  EXPECT_EQ(printed.substr(0, before.size()), before);
  FormatBoard(gameBoard, BoardLayout::wide, diagram);
  const std::string tail = std::string(diagram) + "\n" + afterE4E5Line + "move e7e5\n";
  ASSERT_GE(printed.size(), tail.size());
  EXPECT_EQ(printed.substr(printed.size() - tail.size()), tail);
}

TEST_F(XBoardCommands, ForceModePrintsTheBoardOnlyAfterTheMove) {
  engineConfig.Quiet = false;
  Play({"force\n"});
  const std::string printed = Play({"e2e4\n"});
  char diagram[diagramCapacity];
  FormatBoard(gameBoard, BoardLayout::wide, diagram);
  EXPECT_EQ(printed, std::string(diagram) + "\n" + afterE4Line);
}

TEST_F(XBoardCommands, NewStartsAgainButKeepsTheOpponentsName) {
  xboardGame.LastMoveFlagged = true;
  Play({"name Rival\n", "ics here\n", "rating 1 2\n", "computer\n", "time 100\n", "white\n",
        "force\n", "e2e4\n", "d7d5\n"});
  HistoryTable[white][12][28] = 7;
  gameCounters = {55, true};
  ponderStats = {3, 4};
  searchFlags.pondering = true;
  EXPECT_EQ(Play({"new\n"}), "");
  EXPECT_EQ(Position(), startLine);
  EXPECT_FALSE(HasEnPassant(gameBoard));
  EXPECT_STREQ(xboardGame.opponentName, "Rival");
  EXPECT_STREQ(xboardGame.tags.site, "");
  EXPECT_STREQ(xboardGame.tags.black, "");
  EXPECT_EQ(xboardGame.ownRating, 0);
  EXPECT_EQ(xboardGame.opponentRating, 0);
  EXPECT_FALSE(xboardGame.computerOpponent);
  EXPECT_FALSE(xboardGame.clockReceived);
  EXPECT_EQ(xboardGame.engineColour, black);
  EXPECT_FALSE(xboardGame.force);
  EXPECT_FALSE(xboardGame.gameStarted);
  EXPECT_EQ(xboardGame.ownTime, 1000);
  EXPECT_EQ(HistoryTable[white][12][28], 0);
  EXPECT_EQ(gameCounters.reversibleMoves, 0);
  EXPECT_FALSE(gameCounters.hundredReached);
  EXPECT_EQ(ponderStats.hits, 0U);
  EXPECT_EQ(ponderStats.misses, 0U);
  EXPECT_FALSE(searchFlags.StopSearch);
  EXPECT_FALSE(searchFlags.pondering);
}

// The second game has its own record although the first never had a result.
TEST_F(XBoardCommands, NewEndsAGameThatIsInProgress) {
  script = {{{}, "e7e5"}, {{}, "c7c5"}};
  Play({"new\n", "e2e4\n"});
  ASSERT_TRUE(xboardGame.gameInProgress);
  Play({"new\n"});
  EXPECT_FALSE(xboardGame.gameInProgress);
  Play({"name Next\n", "e2e4\n"});
  EXPECT_STREQ(xboardGame.tags.white, "Next");
  EXPECT_STREQ(xboardGame.tags.black, "Mirvo 0.2.7_d");
}

TEST_F(XBoardCommands, NewAsksABookThatHoldsAnythingAgain) {
  const OpeningBook saved = openingBook;
  engineConfig.UseOpeningBook = 0;
  openingBook.count = 0;
  Play({"new\n"});
  EXPECT_EQ(engineConfig.UseOpeningBook, 0);
  EXPECT_FALSE(searchFlags.BookInUse);
  openingBook.count = 1;
  Play({"new\n"});
  EXPECT_EQ(engineConfig.UseOpeningBook, 1);
  EXPECT_TRUE(searchFlags.BookInUse);
  openingBook = saved;
}

TEST_F(XBoardCommands, OtherLinesDoNothing) {
  const XBoardGame before = xboardGame;
  const SearchFlags flags = searchFlags;
  for (const char* line : {"xboard\n",
                           "protover 2\n",
                           "post\n",
                           "nopost\n",
                           "?\n",
                           "undo\n",
                           "remove\n",
                           "st 5\n",
                           "sd 4\n",
                           "ping 1\n",
                           "variant normal\n",
                           "random\n",
                           "hint\n",
                           "bk\n",
                           "edit\n",
                           "exit\n",
                           "analyze\n",
                           "cores 4\n",
                           "depth 3\n",
                           "draw\n",
                           "accepted setboard\n",
                           "rejected ics\n",
                           "usermove e2e4\n",
                           "e2\n",
                           "e9e4\n",
                           "i2i4\n",
                           "\n",
                           "",
                           " e2e4\n",
                           "New\n",
                           "a"}) {
    EXPECT_EQ(Play({line}), "") << line;
    EXPECT_EQ(Position(), startLine) << line;
    EXPECT_EQ(xboardGame.gameStarted, before.gameStarted) << line;
    EXPECT_EQ(xboardGame.clockReceived, before.clockReceived) << line;
    EXPECT_EQ(searchFlags.StopSearch, flags.StopSearch) << line;
  }
  EXPECT_TRUE(searchKinds.empty());
}

TEST_F(XBoardCommands, NoLegalMoveMeansNoReply) {
  script = {{{}, ""}};
  EXPECT_EQ(Play({"new\n", "e2e4\n"}),
            std::string(afterE4Line) + "Allowing 0 ms for move (0, 0, 0)\n");
  EXPECT_FALSE(XBoardHasOwnLine());
}

TEST_F(XBoardCommands, TheMateMarkIsKeptAndNotPlayed) {
  script = {{{}, "e7e5", "g1f3", mateMark}};
  Play({"new\n", "e2e4\n"});
  EXPECT_TRUE(xboardGame.LastMoveFlagged);
  EXPECT_EQ(gameBoard.undoStack[1].move & mateMark, 0U);
  EXPECT_EQ(searchKinds.size(), 1U);
}

TEST_F(XBoardCommands, AnIllegalMoveIsMade) {
  Play({"force\n", "e2e5\n"});
  EXPECT_EQ(Position(), "rnbqkbnr/pppppppp/8/4P3/8/8/PPPP1PPP/RNBQKBNR b KQkq -\n");
}

TEST_F(XBoardCommands, AMoveFromASquareWithoutAPiecePassesTheTurn) {
  EXPECT_EQ(Play({"force\n", "e4e5\n"}), "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR b KQkq -\n");
}

TEST_F(XBoardCommands, ReversibleMovesOfTheOpponentAreCounted) {
  Play({"new\n", "force\n", "g1f3\n", "g8f6\n"});
  EXPECT_EQ(gameCounters.reversibleMoves, 2);
  Play({"e2e4\n"});
  EXPECT_EQ(gameCounters.reversibleMoves, 0);
  gameCounters.reversibleMoves = 98;
  Play({"f6g8\n"});
  EXPECT_FALSE(gameCounters.hundredReached);
  Play({"f3g1\n"});
  EXPECT_TRUE(gameCounters.hundredReached);
  // A capture restarts the count; the flag stays.
  Play({"setboard 4k3/8/8/8/8/8/r7/R3K3 w Q\n", "a1a2\n"});
  EXPECT_EQ(gameCounters.reversibleMoves, 0);
  EXPECT_TRUE(gameCounters.hundredReached);
}

TEST(CompleteTextMove, CarriesKindCaptureAndPromotion) {
  static Board board;
  BeginFromFen("1r2k3/P7/8/8/8/8/3q4/3RK3", "w", "-", board);
  EXPECT_EQ(CompleteTextMove("d1d2", board),
            WithCaptured(BuildMove(3, 11, white, rook) | captureFlag, queen));
  EXPECT_EQ(
      CompleteTextMove("a7b8n", board),
      WithCaptured(BuildMove(48, 57, white, pawn) | captureFlag | PromotionBits(knight), rook));
  EXPECT_EQ(CompleteTextMove("d1c1", board), BuildMove(3, 2, white, rook));
  EXPECT_EQ(CompleteTextMove("e8e7", board), noMove);
}

TEST(CompleteTextMove, KnowsEnPassantFromItsLookalikes) {
  static Board board;
  BeginFromFen("4k3/3pp3/8/8/3p4/8/4P3/4K3", "w", "-", board);
  MakeMove(board, CompleteTextMove("e2e4", board));
  EXPECT_EQ(CompleteTextMove("d4e3", board),
            WithCaptured(BuildMove(27, 20, black, pawn) | captureFlag, pawn));
  // To the same file elsewhere, along the file, and by a king.
  EXPECT_FALSE(IsCapture(CompleteTextMove("d7e6", board)));
  EXPECT_FALSE(IsCapture(CompleteTextMove("e7e3", board)));
  EXPECT_FALSE(IsCapture(CompleteTextMove("e8e3", board)));
}

TEST_F(XBoardCommands, AMoveLineMayCarryMoreText) {
  Play({"force\n", "e2e4 comment\n"});
  EXPECT_EQ(Position(), afterE4Line);
}

TEST(XBoardQuit, EndsTheProcessWithStatusZero) {
  EXPECT_EXIT(
      {
        std::uint8_t state = 0;
        HandleXBoardLine(state, "quit\n");
      },
      testing::ExitedWithCode(0), "");
}

// During the engine's own search.

using XBoardThinking = XBoardTest;

TEST_F(XBoardThinking, LinesThatNeedTheBoardWaitAndTheOthersActAtOnce) {
  for (const char* line : {"go\n", "setboard 8/8/8/8/8/8/8/8 w -\n", "e2e4\n", "h7h8q\n"}) {
    EXPECT_EQ(ClassifyXBoardLine(line), LineTiming::afterSearch) << line;
    EXPECT_FALSE(searchFlags.StopSearch) << line;
  }
  for (const char* line :
       {"quit\n",        "force\n",      "result 1-0\n", "time 1\n",     "otim 1\n",
        "hard\n",        "easy\n",       "computer\n",   "rating 1 2\n", "ics x\n",
        "level 0 1 0\n", "name x\n",     "white\n",      "black\n",      "draw\n",
        "accepted x\n",  "rejected x\n", "hint\n",       "?\n",          "\n"}) {
    EXPECT_EQ(ClassifyXBoardLine(line), LineTiming::atOnce) << line;
  }
}

TEST_F(XBoardThinking, ForceEndsTheSearchAndItsMoveIsPlayedWithoutPondering) {
  script = {{{"force\n"}, "e7e5", "g1f3"}};
  const std::string printed = Play({"new\n", "e2e4\n"});
  EXPECT_NE(printed.find("move e7e5\n"), std::string::npos);
  EXPECT_EQ(printed.find("PONDERING"), std::string::npos);
  EXPECT_TRUE(searchFlags.StopSearch);
}

TEST_F(XBoardThinking, ResultEndsTheSearchAndItsMoveIsPlayedWithoutPondering) {
  script = {{{"result 1/2-1/2 {Agreed}\n"}, "e7e5", "g1f3"}};
  const std::string printed = Play({"new\n", "e2e4\n"});
  EXPECT_NE(printed.find("move e7e5\n"), std::string::npos);
  EXPECT_EQ(printed.find("PONDERING"), std::string::npos);
  EXPECT_STREQ(xboardGame.tags.result, "1/2-1/2");
}

TEST_F(XBoardThinking, NewDiscardsTheMoveAndThenRunsInOrder) {
  script = {{{"new\n", "force\n", "time 500\n", "name Next\n"}, "e7e5", "g1f3"}};
  EXPECT_EQ(Play({"new\n", "e2e4\n"}),
            std::string(afterE4Line) + "Allowing 0 ms for move (0, 0, 0)\n");
  EXPECT_EQ(Position(), startLine);
  EXPECT_TRUE(xboardGame.force);
  EXPECT_TRUE(xboardGame.clockReceived);
  EXPECT_STREQ(xboardGame.opponentName, "Next");
}

TEST_F(XBoardThinking, AMoveWaitsForTheEndOfTheSearch) {
  script = {{{"d2d4\n"}, "e7e5"}, {{}, "e5d4"}};
  const std::string printed = Play({"new\n", "e2e4\n"});
  EXPECT_EQ(Position(), "rnbqkbnr/pppp1ppp/8/8/3pP3/8/PPP2PPP/RNBQKBNR w KQkq -\n");
  EXPECT_LT(printed.find("move e7e5\n"), printed.find("move e5d4\n"));
}

TEST_F(XBoardThinking, SetboardWaitsForTheEndOfTheSearch) {
  script = {{{"setboard 4k3/8/8/8/8/8/8/4K3 b -\n"}, "e7e5"}};
  Play({"new\n", "easy\n", "e2e4\n"});
  EXPECT_EQ(Position(), "4k3/8/8/8/8/8/8/4K3 b - -\n");
}

TEST_F(XBoardThinking, AClockThatArrivesCountsForTheNextMove) {
  script = {{{"time 3000\n", "d2d4\n"}, "e7e5"}, {{}, "e5d4"}};
  EXPECT_NE(Play({"new\n", "e2e4\n"}).find("Allowing 1000 ms for move (0, 30000, 0)\n"),
            std::string::npos);
}

}  // namespace
}  // namespace mirvo
