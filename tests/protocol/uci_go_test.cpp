#include "protocol/uci_go.h"

#include "search/time_control.h"
#include "tests/protocol/uci_test_kit.h"

namespace mirvo {
namespace {

constexpr char hitLines[] =
    "PONDER HIT. CONTINUING\nAllowing 0 ms for move (0, 0, 0)\n"
    "Ponder hits = 1, misses = 0, percenthits = 100.0%\n";

using UciGo = UciTest;

// ---- Clocks ----

struct ClockCase {
  const char* name;
  const char* lines;
  const char* printed;  // the allotment of the last "go"
};

class UciClocks : public UciTest, public ::testing::WithParamInterface<ClockCase> {};

TEST_P(UciClocks, AreAllotted) {
  const std::string printed = PlayUci(GetParam().lines);
  const std::size_t last = printed.rfind("Allowing");
  ASSERT_NE(last, std::string::npos);
  EXPECT_EQ(printed.substr(last, printed.find('\n', last) - last), GetParam().printed);
}

// The allotments are worked out by hand: time / moves; time / 25 + increment /
// 2 - 50; time / 40, / 30 or / 25 without either.
INSTANTIATE_TEST_SUITE_P(
    All, UciClocks,
    ::testing::Values(
        ClockCase{"None", "go\n", "Allowing 0 ms for move (0, 0, 0)"},
        ClockCase{"White", "go wtime 60000 btime 1000\n",
                  "Allowing 2400 ms for move (0, 60000, 0)"},
        ClockCase{"Black", "position startpos moves e2e4\ngo wtime 60000 btime 1000\n",
                  "Allowing 25 ms for move (0, 1000, 0)"},
        ClockCase{"BlackIncrement",
                  "position startpos moves e2e4\ngo wtime 1 btime 10000 winc 9 binc 200\n",
                  "Allowing 450 ms for move (0, 10000, 200)"},
        ClockCase{"WhiteIncrement", "go wtime 10000 winc 100 binc 7\n",
                  "Allowing 400 ms for move (0, 10000, 100)"},
        ClockCase{"MovesToGo", "go wtime 60000 btime 60000 movestogo 40\n",
                  "Allowing 1500 ms for move (40, 60000, 0)"},
        ClockCase{"AnyOrder", "go movestogo 40 btime 60000 wtime 80000\n",
                  "Allowing 2000 ms for move (40, 80000, 0)"},
        // Black is to move, but the move list counts from White.
        ClockCase{"BlackToMoveInAFen",
                  "position fen 4k3/8/8/8/8/8/8/4K2R b K - 0 1\ngo wtime 1000 btime 60000\n",
                  "Allowing 25 ms for move (0, 1000, 0)"},
        ClockCase{"AbsentKeywordsKeepTheirValues", "go wtime 60000 movestogo 40\ngo btime 5\n",
                  "Allowing 1500 ms for move (40, 60000, 0)"},
        ClockCase{"ANewGameKeepsThemToo", "go wtime 60000 movestogo 40\nucinewgame\ngo\n",
                  "Allowing 1500 ms for move (40, 60000, 0)"},
        ClockCase{"KeywordAtTheEnd", "go movestogo 40 wtime\n",
                  "Allowing 0 ms for move (40, 0, 0)"},
        ClockCase{"KeywordAndABlankAtTheEnd", "go movestogo 40 wtime \n",
                  "Allowing 0 ms for move (40, 0, 0)"},
        ClockCase{"NotANumber", "go wtime soon\n", "Allowing 0 ms for move (0, 0, 0)"},
        ClockCase{"OneCharacterIsSkipped", "go wtime=60000\n",
                  "Allowing 2400 ms for move (0, 60000, 0)"},
        ClockCase{"Negative", "go wtime -500\n", "Allowing 0 ms for move (0, -500, 0)"},
        ClockCase{"Beyond32Bits", "go wtime 99999999999 movestogo 1\n",
                  "Allowing 2147483647 ms for move (1, 2147483647, 0)"},
        ClockCase{"KeywordInsideAWord", "goXYwtime 60000\n",
                  "Allowing 2400 ms for move (0, 60000, 0)"},
        ClockCase{"SearchLimitsAreIgnored", "go nodes 5 mate 3 movetime 77 searchmoves e2e4\n",
                  "Allowing 0 ms for move (0, 0, 0)"},
        ClockCase{"InfiniteAllotsToo", "go wtime 60000 depth 1\n",
                  "Allowing 2400 ms for move (0, 60000, 0)"}),
    [](const ::testing::TestParamInfo<ClockCase>& testCase) { return testCase.param.name; });

TEST_F(UciGo, LimitsReachTheSearch) {
  script = {{{}, "e2e4"}, {{}, "e7e5"}, {{"stop\n"}, "g1f3"}, {{"stop\n"}, "b8c6"}};
  PlayUci("go wtime 60000\ngo depth 5\ngo infinite\ngo ponder\n");
  ASSERT_EQ(searches.size(), 4U);
  EXPECT_EQ(searches[0].InfiniteThinkingTime, 0);
  EXPECT_EQ(searches[0].FixedTimePerMove, 2400);
  EXPECT_EQ(searches[0].depth, 40);
  EXPECT_FALSE(searches[0].pondering);
  EXPECT_EQ(searches[1].InfiniteThinkingTime, 1);
  EXPECT_EQ(searches[1].depth, 5);
  EXPECT_EQ(searches[2].InfiniteThinkingTime, 1);
  EXPECT_FALSE(searches[2].pondering);
  EXPECT_EQ(searches[3].InfiniteThinkingTime, 1);
  EXPECT_TRUE(searches[3].pondering);
}

TEST_F(UciGo, ADepthHoldsForItsOwnGoOnly) {
  engineConfig.DepthSearch = 12;
  PlayUci("go depth 5\ngo\ngo depth\n");
  ASSERT_EQ(searches.size(), 3U);
  EXPECT_EQ(searches[0].depth, 5);
  EXPECT_EQ(searches[1].depth, 12);
  EXPECT_EQ(searches[1].InfiniteThinkingTime, 0);
  EXPECT_EQ(searches[2].depth, 0);
}

TEST_F(UciGo, AGoWithoutPonderClearsThePonderingFlag) {
  searchFlags.pondering = true;
  PlayUci("go\n");
  ASSERT_EQ(searches.size(), 1U);
  EXPECT_FALSE(searches[0].pondering);
}

// ---- The reply ----

TEST_F(UciGo, TheBestMoveIsMadeOnTheGameBoard) {
  script = {{{}, "e2e4"}};
  PlayUci("go\n");
  EXPECT_EQ(gameBoard.sideToMove, black);
  EXPECT_EQ(PieceOn(gameBoard, 28, white), pawn);
}

TEST_F(UciGo, TheReplyNamesTheExpectedMove) {
  script = {{{}, "e2e4", "e7e5"}};
  EXPECT_EQ(PlayUci("go\n"), std::string(noTime) + "bestmove e2e4 ponder e7e5\n");
}

TEST_F(UciGo, WithoutAnExpectedMoveTheReplyEndsWithABlank) {
  script = {{{}, "e2e4"}};
  EXPECT_EQ(PlayUci("go\n"), std::string(noTime) + "bestmove e2e4 \n");
}

TEST_F(UciGo, WithPonderOffOrInTheBookNoReplyIsNamed) {
  script = {{{}, "e2e4", "e7e5"}, {{}, "e7e5", "g1f3"}};
  engineConfig.Ponder = 0;
  EXPECT_EQ(PlayUci("go\n"), std::string(noTime) + "bestmove e2e4 \n");
  engineConfig.Ponder = 1;
  searchFlags.BookInUse = true;
  EXPECT_EQ(PlayUci("go\n"), std::string(noTime) + "bestmove e7e5 \n");
}

TEST_F(UciGo, WithoutALegalMoveTheBoardStays) {
  script = {{{}, ""}};
  const std::uint64_t key = gameBoard.positionKey;
  EXPECT_EQ(PlayUci("go\n"), std::string(noTime) + "bestmove 0000 \n");
  EXPECT_EQ(gameBoard.positionKey, key);
  EXPECT_EQ(gameBoard.plyCount, 0);
}

TEST_F(UciGo, APromotionIsNamed) {
  script = {{{}, "a7a8q"}};
  EXPECT_EQ(PlayUci("position fen 4k3/P7/8/8/8/8/8/4K3 w - - 0 1\ngo\n"),
            std::string(noTime) + "bestmove a7a8q \n");
}

TEST_F(UciGo, TheMateMarkIsKeptButNotPlayed) {
  script = {{{}, "e2e4", "", mateMark}, {{}, "e7e5"}};
  PlayUci("go\n");
  EXPECT_TRUE(uciSession.LastMoveFlagged);
  EXPECT_EQ(gameBoard.undoStack[0].move & mateMark, 0U);
  PlayUci("go\n");
  EXPECT_FALSE(uciSession.LastMoveFlagged);
}

// ---- Delayed best moves ----

TEST_F(UciGo, InfiniteDelaysItsBestMoveUntilStop) {
  script = {{{}, "e2e4"}};
  fakeInput.afterPause = {"", "isready\n", "", "stop\n"};
  EXPECT_EQ(PlayUci("go infinite\n"), std::string(noTime) + "readyok\nbestmove e2e4 \n");
  // Short pauses, so that "stop" is answered promptly.
  EXPECT_EQ(fakeInput.pauses, (std::vector<std::uint32_t>{5, 5, 5, 5}));
}

TEST_F(UciGo, InfiniteIsNotReleasedByPonderhit) {
  script = {{{}, "e2e4"}};
  fakeInput.afterPause = {"ponderhit\n", "isready\n", "stop\n"};
  EXPECT_EQ(PlayUci("go infinite\n"), std::string(noTime) + hitLines + "readyok\nbestmove e2e4 \n");
}

TEST_F(UciGo, PonderDelaysItsBestMoveUntilStop) {
  script = {{{}, "e2e4"}};
  fakeInput.afterPause = {"", "stop\n"};
  EXPECT_EQ(PlayUci("go ponder\n"), std::string(noTime) + "bestmove e2e4 \n");
  EXPECT_EQ(fakeInput.pauses.size(), 2U);
  EXPECT_FALSE(searchFlags.pondering);
}

TEST_F(UciGo, PonderDelaysItsBestMoveUntilPonderhit) {
  script = {{{}, "e2e4"}};
  fakeInput.afterPause = {"", "ponderhit\n"};
  EXPECT_EQ(PlayUci("go ponder\n"), std::string(noTime) + hitLines + "bestmove e2e4 \n");
}

TEST_F(UciGo, ABestMoveAfterPonderhitIsNotDelayed) {
  script = {{{"ponderhit\n", ""}, "e2e4"}};
  EXPECT_EQ(PlayUci("go ponder\n"), std::string(noTime) + hitLines + "bestmove e2e4 \n");
  EXPECT_TRUE(fakeInput.pauses.empty());
  EXPECT_FALSE(searchFlags.StopSearch);
}

TEST_F(UciGo, AMatedPonderSearchWithoutAMoveAnswersWhenAsked) {
  script = {{{}, ""}};
  fakeInput.afterPause = {"stop\n"};
  EXPECT_EQ(PlayUci("go ponder\n"), std::string(noTime) + "bestmove 0000 \n");
}

TEST_F(UciGo, LinesDeferredWhileABestMoveIsDelayedFollowIt) {
  script = {{{}, "e2e4"}, {{}, "d7d5"}};
  fakeInput.afterPause = {"stop\nposition startpos moves d2d4\ngo\n"};
  EXPECT_EQ(PlayUci("go infinite\n"),
            std::string(noTime) + "bestmove e2e4 \n" + noTime + "bestmove d7d5 \n");
}

// ---- Ponder hits ----

TEST_F(UciGo, PonderhitUsesWhitesClockWhoeverMoves) {
  script = {{{"ponderhit\n"}, "e7e5"}};
  EXPECT_EQ(PlayUci("position startpos moves e2e4\n"
                    "go ponder wtime 10000 btime 60000 winc 200 binc 400\n"),
            "Allowing 2550 ms for move (0, 60000, 400)\n"
            "PONDER HIT. CONTINUING\n"
            "Allowing 450 ms for move (0, 10000, 200)\n"
            "Ponder hits = 1, misses = 0, percenthits = 100.0%\n"
            "bestmove e7e5 \n");
  EXPECT_EQ(engineConfig.FixedTimePerMove, 450);
  EXPECT_EQ(engineConfig.InfiniteThinkingTime, 0);
  EXPECT_FALSE(searchFlags.pondering);
}

TEST_F(UciGo, HitsAreCounted) {
  script = {{{"ponderhit\n"}, "e2e4"}, {{"ponderhit\n"}, "e7e5"}};
  const std::string printed = PlayUci("go ponder\ngo ponder\n");
  EXPECT_NE(printed.find("Ponder hits = 2, misses = 0, percenthits = 100.0%\n"), std::string::npos);
}

TEST_F(UciGo, AnyLineThatBeginsWithPonderhiIsAHit) {
  EXPECT_EQ(PlayUci("ponderhi\n"), hitLines);
  EXPECT_EQ(PlayUci("ponderh\n"), "");
}

// ---- The own clock ----

class OwnClockOfUci : public UciTest {
 protected:
  void SetUp() override {
    UciTest::SetUp();
    engineConfig.MoveOverhead = 50;
    script = {{{}, "e2e4"}, {{}, "e7e5"}, {{}, "g1f3"}};
  }
};

TEST_F(OwnClockOfUci, IsNotLookedAtUnlessTheSettingsSaySo) {
  engineConfig.MoveOverhead = 0;
  PlayUci("go wtime 1000 btime 1000 movestogo 1\n");
  EXPECT_EQ(searches[0].deadline, noDeadline);
}

TEST_F(OwnClockOfUci, IsThatOfTheSideToMove) {
  const std::string printed = PlayUci(
      "go wtime 2000 btime 3000 movestogo 1\n"
      "position startpos moves e2e4\ngo wtime 2000 btime 3000 movestogo 1\n");
  EXPECT_EQ(searches[0].deadline, 1950);
  EXPECT_EQ(searches[1].deadline, 2950);
  // The allotted time and its line do not change.
  EXPECT_EQ(searches[0].FixedTimePerMove, 2000);
  EXPECT_NE(printed.find("Allowing 2000 ms for move (1, 2000, 0)\n"), std::string::npos);
}

// The time is allotted from White's clock there; it is Black's that runs down.
TEST_F(OwnClockOfUci, IsBlacksAfterAFenWithBlackToMove) {
  script = {{{}, "e8d8"}};
  PlayUci("position fen 4k3/8/8/8/8/8/8/4K2R b K - 0 1\ngo wtime 60000 btime 1000\n");
  EXPECT_EQ(searches[0].FixedTimePerMove, 2400);
  EXPECT_EQ(searches[0].deadline, 950);
}

TEST_F(OwnClockOfUci, IsTheMoversAfterAPonderHitToo) {
  script = {{{"ponderhit\n"}, "e7e5"}};
  PlayUci("position startpos moves e2e4\ngo ponder wtime 60000 btime 400 winc 100 binc 100\n");
  EXPECT_EQ(engineConfig.FixedTimePerMove, 2400);
  EXPECT_EQ(lastLimits.deadline, 350);
}

TEST_F(OwnClockOfUci, IsTheOneLastReceived) {
  PlayUci("go wtime 2000 btime 3000\nposition startpos\ngo\nposition startpos\ngo wtime 900\n");
  EXPECT_EQ(searches[1].deadline, 1950);
  EXPECT_EQ(searches[2].deadline, 850);
}

TEST_F(OwnClockOfUci, IsUnknownBeforeItIsReceived) {
  PlayUci("go\nposition startpos\ngo btime 3000\nposition startpos\ngo wtime 0\n");
  EXPECT_EQ(searches[0].deadline, noDeadline);
  EXPECT_EQ(searches[1].deadline, noDeadline);
  EXPECT_EQ(searches[2].deadline, 1);  // an empty clock is one
}

TEST_F(OwnClockOfUci, BoundsNoSearchWithoutTime) {
  script = {{{"stop\n"}, "e2e4"}, {{}, "e7e5"}};
  PlayUci("go infinite wtime 1000 btime 1000\ngo depth 3\n");
  // The search looks at no clock while this is set.
  EXPECT_EQ(searches[0].InfiniteThinkingTime, 1);
  EXPECT_EQ(searches[1].InfiniteThinkingTime, 1);
}

// ---- Declined pondering ----

class DeclinedPonder : public UciTest {
 protected:
  /// A search that saw a mate, then the request to ponder on.
  std::string Decline() {
    script.push_front({{}, "e2e4", "e7e5", mateMark});
    return PlayUci(
        "go wtime 60000\nposition startpos moves e2e4 e7e5\n"
        "go ponder infinite depth 3\n");
  }
};

TEST_F(DeclinedPonder, IsSilent) {
  EXPECT_EQ(Decline(), "Allowing 2400 ms for move (0, 60000, 0)\nbestmove e2e4 ponder e7e5\n");
  EXPECT_EQ(searches.size(), 1U);
}

TEST_F(DeclinedPonder, StopGetsAnAnswerAtOnce) {
  Decline();
  script = {{{}, "g1f3"}};
  EXPECT_EQ(PlayUci("stop\n"), "bestmove g1f3 \n");
  ASSERT_EQ(searches.size(), 2U);
  EXPECT_FALSE(searches[1].stoppedAtStart);
  EXPECT_EQ(searches[1].FixedTimePerMove, 0);
  EXPECT_EQ(searches[1].InfiniteThinkingTime, 0);
  EXPECT_EQ(PlayUci("stop\n"), "");
}

TEST_F(DeclinedPonder, PonderhitSearchesWithTheClock) {
  Decline();
  script = {{{}, "g1f3"}};
  EXPECT_EQ(PlayUci("ponderhit\n"),
            "PONDER HIT. CONTINUING\n"
            "Allowing 2400 ms for move (0, 60000, 0)\n"
            "Ponder hits = 1, misses = 0, percenthits = 100.0%\n"
            "bestmove g1f3 \n");
  ASSERT_EQ(searches.size(), 2U);
  EXPECT_EQ(searches[1].FixedTimePerMove, 2400);
  EXPECT_EQ(searches[1].InfiniteThinkingTime, 0);
  EXPECT_FALSE(searches[1].pondering);
  // It has been answered, so no best move is pending.
  EXPECT_EQ(PlayUci("stop\n"), "");
}

TEST_F(DeclinedPonder, ItsBestMoveIsNotDelayedWhateverCameBefore) {
  script = {{{"stop\n"}, "e2e4", "", mateMark}, {{}, "e7e5"}};
  PlayUci("go infinite\n");
  EXPECT_EQ(PlayUci("go ponder\nponderhit\n"), std::string(hitLines) + "bestmove e7e5 \n");
  EXPECT_TRUE(fakeInput.pauses.empty());
}

TEST_F(DeclinedPonder, ASwitchOfProtocolCancelsTheDebt) {
  Decline();
  Play("xboard\nucix\n");
  EXPECT_EQ(Play("stop\n"), "");
}

TEST_F(DeclinedPonder, ANewGoPositionOrGameCancelsTheDebt) {
  for (const char* line : {"position startpos\n", "ucinewgame\n"}) {
    SetUp();
    Decline();
    PlayUci(line);
    EXPECT_EQ(PlayUci("stop\n"), "") << line;
  }
  SetUp();
  Decline();
  script = {{{}, "g1f3"}};
  PlayUci("go\n");
  EXPECT_EQ(PlayUci("stop\n"), "");
}

TEST_F(DeclinedPonder, AnOrdinaryGoAfterAMateSearches) {
  script = {{{}, "e2e4", "", mateMark}, {{}, "e7e5"}};
  EXPECT_EQ(PlayUci("go\ngo\n"),
            std::string(noTime) + "bestmove e2e4 \n" + noTime + "bestmove e7e5 \n");
}

TEST_F(DeclinedPonder, AStopThatWaitedBehindItGetsItsAnswer) {
  script = {{{"go ponder\nstop\n"}, "e2e4", "", mateMark}, {{}, "e7e5"}};
  EXPECT_EQ(PlayUci("go\n"), std::string(noTime) + "bestmove e2e4 \nbestmove e7e5 \n");
}

}  // namespace
}  // namespace mirvo
