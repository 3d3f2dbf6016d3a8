#include "protocol/dispatcher.h"

#include <sstream>
#include <string>

#include "protocol/deferred_commands.h"
#include "tests/protocol/uci_test_kit.h"

namespace mirvo {
namespace {

constexpr char featureLine[] = "feature myname=\"Mirvo 0.2.7_d\" name=1 setboard=1 ics=1 done=1\n";
constexpr char oneHit[] =
    "PONDER HIT. CONTINUING\nAllowing 0 ms for move (0, 0, 0)\n"
    "Ponder hits = 1, misses = 0, percenthits = 100.0%\n";

using Detection = UciTest;
using Polling = UciTest;
using EndOfInput = UciTest;

TEST(ProtocolModeRecord, BeginsAllZero) {
  const ProtocolMode mode;
  EXPECT_EQ(mode.mode, 0U);
  EXPECT_EQ(mode.uciState, 0);
  EXPECT_EQ(mode.xboardState, 0);
  EXPECT_FALSE(mode.detected);
}

TEST_F(Detection, LinesBeforeAProtocolWordAreDropped) {
  EXPECT_EQ(Play("isready\nnew\ne2e4\nquit\n\n"), "");
  EXPECT_EQ(protocolMode.mode, noProtocol);
  EXPECT_FALSE(protocolMode.detected);
}

TEST_F(Detection, UcinewgameIsAProtocolWord) {
  EXPECT_EQ(Play("ucinewgame\nisready\n"), "readyok\n");
  EXPECT_EQ(protocolMode.mode, uciProtocol);
  EXPECT_TRUE(protocolMode.detected);
}

TEST_F(Detection, TheWordMustBeginTheLine) { EXPECT_EQ(Play(" uci\nisready\n"), ""); }

TEST_F(Detection, XboardPrintsTheFeaturesOncePerLine) {
  EXPECT_EQ(Play("xboard\n"), featureLine);
  EXPECT_EQ(protocolMode.mode, xboardProtocol);
  EXPECT_TRUE(protocolMode.detected);
  EXPECT_EQ(Play("xboard\nprotover 2\n"), featureLine);
}

TEST_F(Detection, ALaterWordSwitchesTheProtocol) {
  EXPECT_EQ(Play("ucinewgame\nxboard\nisready\n"), featureLine);
  EXPECT_EQ(Play("ucinewgame\nisready\n"), "readyok\n");
}

TEST_F(Detection, SwitchingToUciEndsPonderingUnderXboard) {
  // The second search ponders on g1f3 until the other protocol is spoken.
  script = {{{}, "e7e5", "g1f3"}, {{"ucinewgame\nisready\n", "", ""}, "b8c6"}};
  const std::string printed = Play("xboard\nnew\ne2e4\n");
  ASSERT_EQ(searches.size(), 2U);
  EXPECT_TRUE(searches[1].pondering);
  EXPECT_EQ(printed.find("move b8c6"), std::string::npos);
  EXPECT_EQ(printed.substr(printed.size() - 8), "readyok\n");
  EXPECT_FALSE(XBoardHasOwnLine());
  EXPECT_EQ(gameBoard.plyCount, 0);
}

TEST_F(Detection, TheOwnLineOfXboardComesBeforeInput) {
  Play("xboard\nnew\nforce\n");
  xboardPonder.PendingMove = true;
  xboardPonder.heldMove = MoveFromCoordinates("e2e4", gameBoard, white);
  const std::string printed = Play("e7e5\n");
  EXPECT_NE(printed.find("/4P3/8/PPPP1PPP/RNBQKBNR b"), std::string::npos);
  EXPECT_NE(printed.find("/4p3/4P3/8/PPPP1PPP/RNBQKBNR w"), std::string::npos);
}

TEST_F(Polling, ReturnsAtOnceWithoutInput) {
  protocolMode.mode = uciProtocol;
  Dispatch(protocolMode, true);
  EXPECT_EQ(fakeInput.nReads, 0);
}

TEST_F(Polling, HalfALineNeverHoldsTheSearchUp) {
  script = {{{"isre", "ady\nst", "op\n"}, "e2e4"}};
  EXPECT_EQ(PlayUci("go infinite\n"), std::string(noTime) + "readyok\nbestmove e2e4 \n");
}

TEST_F(Polling, HandlesEveryWaitingLineInOrder) {
  script = {{{"isready\nuci\nisready\n"}, "e2e4"}};
  const std::string printed = PlayUci("go\n");
  const std::size_t first = printed.find("readyok\n");
  const std::size_t identified = printed.find("uciok\n");
  EXPECT_LT(first, identified);
  EXPECT_LT(identified, printed.rfind("readyok\n"));
  EXPECT_LT(printed.rfind("readyok\n"), printed.find("bestmove"));
}

TEST_F(Polling, UnknownLinesAreIgnored) {
  script = {{{"hello\n\nmove\nready\n"}, "e2e4"}};
  EXPECT_EQ(PlayUci("go\n"), std::string(noTime) + "bestmove e2e4 \n");
}

/// A search that only a command can end, and a "go" that arrives during it.
struct DeferredGoCase {
  const char* name;
  const char* running;
  const char* deferred;
};

class DeferredGo : public UciTest, public ::testing::WithParamInterface<DeferredGoCase> {
 protected:
  /// Plays both searches. `behind` arrives after the deferred "go", `later` during
  /// the second search. Returns every printed line except those on time and hits.
  std::string Answers(const std::string& behind, const std::string& later = "") {
    const DeferredGoCase& go = GetParam();
    script = {{{std::string(go.deferred) + "\n" + behind, inputEnds}, "e2e4"},
              {{"", later, "", ""}, "e7e5"}};
    const std::string printed = PlayUci(std::string(go.running) + "\n");
    // A search that was not ended would have reached the end of input.
    EXPECT_FALSE(fakeInput.ended);
    EXPECT_EQ(searches.size(), 2U);
    std::string kept;
    std::istringstream lines(printed);
    for (std::string line; std::getline(lines, line);) {
      if (line.find("Allowing") == std::string::npos && line.find("onder") == std::string::npos &&
          line.find("PONDER") == std::string::npos) {
        kept += line + "|";
      }
    }
    return kept;
  }

  static constexpr char both[] = "bestmove e2e4 |bestmove e7e5 |";
};

TEST_P(DeferredGo, EndsTheSearchThatOnlyACommandEndsAndRuns) {
  EXPECT_EQ(Answers("", "stop\n"), both);
}

TEST_P(DeferredGo, AStopBehindItEndsBoth) {
  EXPECT_EQ(Answers("stop\n"), both);
  EXPECT_TRUE(fakeInput.pauses.empty());
}

TEST_P(DeferredGo, APonderhitBehindItIsCountedOnceAndNobodyIsLeftWaiting) {
  EXPECT_EQ(Answers("ponderhit\n", "stop\n"), both);
  EXPECT_EQ(ponderStats.hits, 1U);
}

// Under "go infinite" only a stop releases the best move.
TEST_P(DeferredGo, APonderhitBehindItAloneReleasesAllButAnalysis) {
  if (std::string(GetParam().deferred) == "go infinite") return;
  EXPECT_EQ(Answers("ponderhit\n"), both);
  EXPECT_TRUE(fakeInput.pauses.empty());
}

TEST_P(DeferredGo, BothWordsBehindItInEitherOrder) {
  EXPECT_EQ(Answers("ponderhit\nstop\n"), both);
  EXPECT_EQ(ponderStats.hits, 1U);
  SetUp();
  searches.clear();
  EXPECT_EQ(Answers("stop\nponderhit\n"), both);
}

TEST_P(DeferredGo, IsreadyBehindItIsAnsweredInTheRunningSearch) {
  EXPECT_EQ(Answers("isready\nstop\nisready\n"), std::string("readyok|readyok|") + both);
}

TEST_P(DeferredGo, TheEndOfInputBehindItLeavesOneAnswerEach) {
  script = {{{std::string(GetParam().deferred) + "\n", inputEnds}, "e2e4"},
            {{inputEnds, ""}, "e7e5"}};
  const std::string printed = PlayUci(std::string(GetParam().running) + "\n");
  EXPECT_NE(printed.find("bestmove e2e4 \n"), std::string::npos);
  EXPECT_NE(printed.find("bestmove e7e5 \n"), std::string::npos);
  EXPECT_EQ(searches.size(), 2U);
}

TEST_P(DeferredGo, QuitBehindItEndsTheProcess) {
  script = {{{std::string(GetParam().deferred) + "\nquit\n"}, "e2e4"}};
  EXPECT_EXIT(PlayUci(std::string(GetParam().running) + "\n"), ::testing::ExitedWithCode(0), "");
}

INSTANTIATE_TEST_SUITE_P(
    All, DeferredGo,
    ::testing::Values(DeferredGoCase{"InfiniteBehindInfinite", "go infinite", "go infinite"},
                      DeferredGoCase{"PonderBehindInfinite", "go infinite", "go ponder"},
                      DeferredGoCase{"ClockBehindInfinite", "go infinite",
                                     "go wtime 1000 btime 1000"},
                      DeferredGoCase{"DepthBehindInfinite", "go infinite", "go depth 3"},
                      DeferredGoCase{"InfiniteBehindPonder", "go ponder", "go infinite"},
                      DeferredGoCase{"PonderBehindPonder", "go ponder", "go ponder"},
                      DeferredGoCase{"ClockBehindPonder", "go ponder", "go wtime 1000 btime 1000"},
                      DeferredGoCase{"DepthBehindPonder", "go ponder", "go depth 3"}),
    [](const ::testing::TestParamInfo<DeferredGoCase>& testCase) { return testCase.param.name; });

TEST_F(Polling, ADeferredGoWaitsForASearchThatEndsByItself) {
  for (const char* running : {"go\n", "go depth 9\n", "go wtime 9000 btime 9000\n"}) {
    SetUp();
    script = {{{"go infinite\n", inputEnds}, "e2e4"}, {{""}, "e7e5"}};
    PlayUci(running);
    EXPECT_TRUE(fakeInput.ended) << running;  // the running search went on to its last poll
  }
}

TEST_F(Polling, ADeferredGoWaitsForAPonderSearchThatWasHit) {
  script = {{{"ponderhit\ngo depth 3\n", inputEnds}, "e2e4"}, {{""}, "e7e5"}};
  PlayUci("go ponder\n");
  EXPECT_TRUE(fakeInput.ended);
}

// The hit is meant for the ponder search: a running clock does not restart.
TEST_F(Polling, APonderhitBehindADeferredGoLeavesTheRunningClock) {
  script = {{{"go ponder\nponderhit\n", ""}, "e2e4"}, {{"", ""}, "e7e5"}};
  const std::string printed = PlayUci("go wtime 1000 btime 1000\n");
  const std::size_t answered = printed.find("bestmove e2e4");
  EXPECT_LT(answered, printed.find("PONDER HIT. CONTINUING\n"));
  EXPECT_EQ(ponderStats.hits, 1U);
}

TEST_F(Polling, SeveralDeferredGosGetOneAnswerEachAndOneStopIsEnough) {
  script = {{{"go infinite\ngo ponder\ngo infinite\n", "stop\n"}, "e2e4"},
            {{"stop\n", inputEnds}, "e7e5"},
            {{"", inputEnds}, "g1f3"},
            {{"", inputEnds}, "g8f6"}};
  const std::string printed = PlayUci("go infinite\n");
  for (const char* move : {"e2e4", "e7e5", "g1f3", "g8f6"}) {
    EXPECT_NE(printed.find(std::string("bestmove ") + move), std::string::npos) << move;
  }
  EXPECT_FALSE(fakeInput.ended);
  EXPECT_EQ(searches.size(), 4U);
}

TEST_F(Polling, AGoReleasesADelayedBestMove) {
  for (const char* running : {"go infinite\n", "go ponder\n"}) {
    SetUp();
    script = {{{}, "e2e4"}, {{}, "e7e5"}};
    fakeInput.afterPause = {"isready\n", "position startpos moves e2e4\ngo depth 3\n"};
    EXPECT_EQ(PlayUci(running),
              std::string(noTime) + "readyok\nbestmove e2e4 \n" + noTime + "bestmove e7e5 \n");
    EXPECT_FALSE(fakeInput.ended);
  }
}

// The search before ended on a mate, so the deferred "go ponder" is declined; the
// command after it still gets its best move.
TEST_F(Polling, AStopOrPonderhitBehindADeclinedPonderIsAnswered) {
  for (const char* release : {"stop\n", "ponderhit\n"}) {
    SetUp();
    script = {{{std::string("go ponder\n") + release, ""}, "e2e4", "", mateMark}, {{}, "e7e5"}};
    const std::string printed = PlayUci("go infinite\n");
    EXPECT_NE(printed.find("bestmove e2e4 \n"), std::string::npos) << release;
    EXPECT_NE(printed.find("bestmove e7e5 \n"), std::string::npos) << release;
    EXPECT_EQ(searches.size(), 2U);
    searches.clear();
  }
}

struct DeferredCase {
  const char* name;
  const char* line;
};

class DeferredLine : public UciTest, public ::testing::WithParamInterface<DeferredCase> {};

// If one of these were handled inside the search, it would change the board under
// it or start a second search in it.
TEST_P(DeferredLine, WaitsForTheEndOfTheSearch) {
  script = {{{std::string(GetParam().line) + "\nisready\n"}, "e2e4"}, {{}, "d2d4"}};
  const std::string printed = PlayUci("go\n");
  const std::string atOnce = std::string(noTime) + "readyok\nbestmove e2e4 \n";
  EXPECT_EQ(printed.substr(0, atOnce.size()), atOnce);
}

INSTANTIATE_TEST_SUITE_P(
    All, DeferredLine,
    ::testing::Values(DeferredCase{"Position", "position fen 8/8/8/8/8/8/8/8 w -"},
                      DeferredCase{"Go", "go"}, DeferredCase{"NewGame", "ucinewgame"},
                      DeferredCase{"Option", "setoption name TT Hash Size value 1"},
                      DeferredCase{"Switch", "xboard"}),
    [](const ::testing::TestParamInfo<DeferredCase>& testCase) { return testCase.param.name; });

TEST_F(Polling, DeferredLinesAreHandledInOrderAfterTheSearch) {
  script = {{{"position startpos moves d2d4\ngo\nposition startpos moves c2c4\n", "go depth 3\n"},
             "e2e4"},
            {{}, "d7d5"},
            {{}, "c7c5"}};
  EXPECT_EQ(PlayUci("go\n"), std::string(noTime) + "bestmove e2e4 \n" + noTime +
                                 "bestmove d7d5 \n" + noTime + "bestmove c7c5 \n");
  ASSERT_EQ(searches.size(), 3U);
  EXPECT_EQ(searches[2].depth, 3);
}

TEST_F(Polling, AStopBehindADeferredGoStopsBothSearches) {
  script = {{{"go infinite\nstop\nisready\n", inputEnds}, "e2e4"}, {{"", inputEnds}, "e7e5"}};
  EXPECT_EQ(PlayUci("go\n"),
            std::string(noTime) + "readyok\nbestmove e2e4 \n" + noTime + "bestmove e7e5 \n");
  // Each at the poll that read the command, before the end of input was reached.
  EXPECT_FALSE(fakeInput.ended);
  EXPECT_TRUE(fakeInput.pauses.empty());
}

TEST_F(Polling, APonderhitBehindADeferredGoIsMeantForThatGo) {
  script = {{{"go ponder\nponderhit\n"}, "e2e4"}, {{""}, "e7e5"}};
  EXPECT_EQ(PlayUci("go\n"),
            std::string(noTime) + "bestmove e2e4 \n" + noTime + oneHit + "bestmove e7e5 \n");
}

TEST_F(Polling, AStopBeforeADeferredGoStopsTheRunningSearch) {
  script = {{{"position startpos\nstop\ngo\n", "isready\n"}, "e2e4"}, {{}, "d2d4"}};
  EXPECT_EQ(PlayUci("go infinite\n"),
            std::string(noTime) + "bestmove e2e4 \n" + noTime + "bestmove d2d4 \n");
}

TEST_F(Polling, DeferredLinesLeftByOneSearchAreClassifiedInTheNext) {
  script = {{{"go\nisready\ngo infinite\nstop\n"}, "e2e4"}, {{"", ""}, "e7e5"}, {{"", ""}, "g1f3"}};
  EXPECT_EQ(PlayUci("go\n"), std::string(noTime) + "readyok\nbestmove e2e4 \n" + noTime +
                                 "bestmove e7e5 \n" + noTime + "bestmove g1f3 \n");
}

TEST_F(Polling, ASwitchOfProtocolIsDeferredWithWhatFollows) {
  script = {{{"xboard\nnew\nforce\ne2e4\nisready\n"}, "d2d4"}};
  EXPECT_EQ(PlayUci("go\n"), std::string(noTime) + "readyok\nbestmove d2d4 \n" + featureLine +
                                 "rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq -\n");
}

TEST_F(Polling, ASwitchOfProtocolEndsASearchThatOnlyACommandCouldEnd) {
  script = {{{"xboard\n", "isready\n"}, "d2d4"}};
  EXPECT_EQ(PlayUci("go infinite\n"), std::string(noTime) + "bestmove d2d4 \n" + featureLine);
}

TEST_F(Polling, BehindASwitchOfProtocolAPonderhitStillActsAtOnce) {
  script = {{{"xboard\nponderhit\n"}, "d2d4"}};
  EXPECT_EQ(PlayUci("go ponder\n"),
            std::string(noTime) + oneHit + "bestmove d2d4 \n" + featureLine);
}

TEST_F(Polling, ASwitchOfProtocolIsForgottenOnceItWasMade) {
  script = {{{"xboard\nucinewgame\n"}, "d2d4"}, {{"uci\n"}, "e2e4"}};
  PlayUci("go\n");
  const std::string printed = PlayUci("go\n");
  EXPECT_LT(printed.find("uciok\n"), printed.find("bestmove e2e4"));
}

TEST_F(Polling, AfterAPonderMissNothingIsReadUntilTheRealMoveWasHandled) {
  // The pondered g1f3 was not played. If "force" were handled at once, the real
  // move would get no answer.
  script = {{{}, "e7e5", "g1f3"}, {{"b1c3\nforce\n"}, "b8c6"}, {{""}, "g8f6"}};
  const std::string printed = Play("xboard\nnew\ne2e4\n");
  EXPECT_NE(printed.find("PONDER NOT HIT. STOPPING\n"), std::string::npos);
  EXPECT_NE(printed.find("move g8f6\n"), std::string::npos);
  EXPECT_EQ(searches.size(), 3U);
  EXPECT_TRUE(xboardGame.force);
}

TEST_F(Polling, UciLinesDuringAnXboardSearchWait) {
  script = {{{"ucinewgame\nisready\n", "go\nstop\n"}, "e2e4"}, {{}, "d2d4"}};
  EXPECT_EQ(Play("xboard\nnew\neasy\ngo\n"),
            std::string(featureLine) + noTime +
                "rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq -\nmove e2e4\n"
                "readyok\n" +
                noTime + "bestmove d2d4 \n");
}

TEST_F(Polling, AnotherXboardLineDuringItsSearchPrintsTheFeaturesAtOnce) {
  script = {{{"xboard\n"}, "e2e4"}};
  EXPECT_EQ(Play("xboard\nnew\neasy\ngo\n"),
            std::string(featureLine) + noTime + featureLine +
                "rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq -\nmove e2e4\n");
}

TEST_F(Polling, TheQueueIsFullAtItsLimitAndReadsNoFurther) {
  std::string lines;
  for (std::size_t i = 0; i < maxDeferredCommands; ++i) lines += "eval\n";
  // One poll reads only some of them.
  script = {{{lines + "isready\n", "", "", "", "", "", ""}, "e2e4"}};
  protocolMode.mode = uciProtocol;
  fakeInput.bytes = "go\n";
  testing::internal::CaptureStdout();
  Dispatch(protocolMode, false);
  std::fflush(stdout);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), std::string(noTime) + "bestmove e2e4 \n");
}

TEST_F(Polling, OneLineLessLeavesRoomInTheQueue) {
  std::string lines;
  for (std::size_t i = 0; i + 1 < maxDeferredCommands; ++i) lines += "eval\n";
  script = {{{lines + "isready\n", "", "", "", "", "", ""}, "e2e4"}};
  protocolMode.mode = uciProtocol;
  fakeInput.bytes = "go\n";
  testing::internal::CaptureStdout();
  Dispatch(protocolMode, false);
  std::fflush(stdout);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            std::string(noTime) + "readyok\nbestmove e2e4 \n");
}

// With a full queue no command can reach an endless search, so it ends.
TEST_F(Polling, AFullQueueEndsASearchThatOnlyACommandCouldEnd) {
  std::string lines;
  for (std::size_t i = 0; i < maxDeferredCommands; ++i) lines += "position startpos\n";
  script = {{{lines + "stop\n", "", "", "", "", "", "", "", ""}, "e2e4"}};
  EXPECT_EQ(PlayUci("go infinite\n"), std::string(noTime) + "bestmove e2e4 \n");
}

TEST_F(EndOfInput, IdleTheProcessSleepsAndStaysSilent) {
  protocolMode.mode = uciProtocol;
  fakeInput.ended = true;
  testing::internal::CaptureStdout();
  for (int i = 0; i < 3; ++i) Dispatch(protocolMode, false);
  std::fflush(stdout);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(fakeInput.pauses, (std::vector<std::uint32_t>{10, 10, 10}));
}

TEST_F(EndOfInput, TheProcessEndsWithStatus0OnceItsParentHasExited) {
  fakeInput.ended = true;
  fakeInput.parentExited = true;
  EXPECT_EXIT(Dispatch(protocolMode, false), ::testing::ExitedWithCode(0), "");
}

TEST_F(EndOfInput, TheParentMayExitWhileInputIsOpen) {
  fakeInput.parentExited = true;
  Dispatch(protocolMode, false);
  EXPECT_EQ(PlayUci("isready\n"), "readyok\n");
}

TEST_F(EndOfInput, TheProcessEndsWithStatus0OnceNobodyReadsItsOutput) {
  fakeInput.ended = true;
  fakeInput.outputClosed = true;
  EXPECT_EXIT(Dispatch(protocolMode, false), ::testing::ExitedWithCode(0), "");
}

TEST_F(EndOfInput, TheReaderMayGoWhileInputIsOpen) {
  fakeInput.outputClosed = true;
  EXPECT_EQ(PlayUci("isready\n"), "readyok\n");
  script = {{{"isready\n", ""}, "e2e4"}};
  EXPECT_EQ(PlayUci("go\n"), std::string(noTime) + "readyok\nbestmove e2e4 \n");
}

// Whatever else would end the search: nobody waits for its answer.
TEST_F(EndOfInput, ASearchThatNobodyWillHearOfEndsTheProcess) {
  for (const char* const session :
       {"uci\ngo depth 5\n", "uci\ngo infinite\n", "xboard\nnew\ngo\n"}) {
    script = {{{"", inputEnds}, "e2e4"}};
    fakeInput.outputClosed = true;
    fakeInput.bytes = session;
    EXPECT_EXIT(
        {
          RunIdle();
          std::exit(1);
        },
        ::testing::ExitedWithCode(0), "")
        << session;
  }
}

TEST_F(EndOfInput, AFullQueueIsNoEnd) {
  std::string lines;
  for (std::size_t i = 0; i < maxDeferredCommands; ++i) lines += "eval\n";
  script = {{{lines, "", "", "", "", "", ""}, "e2e4"}};
  fakeInput.outputClosed = true;
  protocolMode.mode = uciProtocol;
  fakeInput.bytes = "go\n";
  testing::internal::CaptureStdout();
  Dispatch(protocolMode, false);
  std::fflush(stdout);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), std::string(noTime) + "bestmove e2e4 \n");
}

TEST_F(EndOfInput, ALastLineWithoutItsEndIsHandled) {
  fakeInput.ended = true;
  EXPECT_EQ(PlayUci("isready"), "readyok\n");
}

TEST_F(EndOfInput, ASearchThatEndsByItselfRunsOn) {
  script = {{{inputEnds, "", ""}, "e2e4"}};
  EXPECT_EQ(PlayUci("go depth 5\n"), std::string(noTime) + "bestmove e2e4 \n");
  EXPECT_FALSE(searchFlags.StopSearch);
}

TEST_F(EndOfInput, AnEndlessSearchIsStoppedAndAnswers) {
  for (const char* line : {"go infinite\n", "go ponder\n"}) {
    SetUp();
    script = {{{"isready\n", inputEnds, ""}, "e2e4"}};
    EXPECT_EQ(PlayUci(line), std::string(noTime) + "readyok\nbestmove e2e4 \n");
    EXPECT_TRUE(searchFlags.StopSearch);
  }
}

TEST_F(EndOfInput, APonderSearchThatWasHitRunsToItsEnd) {
  script = {{{"ponderhit\n", inputEnds, ""}, "e2e4"}};
  EXPECT_EQ(PlayUci("go ponder\n"), std::string(noTime) + oneHit + "bestmove e2e4 \n");
  EXPECT_FALSE(searchFlags.StopSearch);
}

TEST_F(EndOfInput, ADelayedBestMoveIsPrinted) {
  script = {{{}, "e2e4"}};
  fakeInput.afterPause = {"", "", inputEnds};
  EXPECT_EQ(PlayUci("go infinite\n"), std::string(noTime) + "bestmove e2e4 \n");
}

TEST_F(EndOfInput, AnXboardPonderSearchIsAbandonedWithoutAWord) {
  script = {{{}, "e7e5", "g1f3"}, {{inputEnds}, "b8c6"}};
  searchFlags.BookInUse = false;
  const std::string printed = Play("xboard\nnew\ne2e4\n");
  EXPECT_EQ(printed.find("move b8c6"), std::string::npos);
  EXPECT_EQ(gameBoard.sideToMove, white);
}

}  // namespace
}  // namespace mirvo
