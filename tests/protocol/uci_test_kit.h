// A fixture that drives dispatcher and UCI front end with scripted input and
// scripted searches: each defines what arrives at its polls and what it answers.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <deque>
#include <string>
#include <vector>

#include "board/attack_tables.h"
#include "board/fen.h"
#include "board/make_move.h"
#include "board/notation.h"
#include "protocol/dispatcher.h"
#include "protocol/game_board.h"
#include "protocol/uci_session.h"
#include "protocol/xboard_game.h"
#include "protocol/xboard_ponder.h"
#include "search/pondering.h"
#include "search/search_flags.h"
#include "shell/config/config.h"
#include "tests/protocol/fake_input.h"

namespace mirvo {

/// What a "go" under XBoard prints first where no clock was told.
inline constexpr char noTime[] = "Allowing 0 ms for move (0, 0, 0)\n";

struct ScriptedSearch {
  std::vector<std::string> arrivals;  // bytes that arrive before each of its polls
  std::string best = "";              // empty: no legal move
  std::string ponder = "";            // empty: no expected reply
  Move marks = noMove;                // added to the best move's word
};

/// Limits and flags at the start of a search.
struct SearchSeen {
  std::int32_t depth;
  std::int32_t InfiniteThinkingTime;
  std::int32_t FixedTimePerMove;
  bool pondering;
  bool stoppedAtStart;
  std::int32_t deadline;
};

class UciTest : public ::testing::Test {
 protected:
  void SetUp() override {
    static const bool tablesBuilt = (InitAttackTables(), true);
    (void)tablesBuilt;
    current = this;
    fakeInput = FakeInput{};
    SetInputSource(&fakeSource);
    protocolMode = ProtocolMode{};
    uciSession = UciSession{};
    uciSession.think = RunScript;
    ForgetXBoardGame();
    xboardGame.think = RunScript;
    xboardPonder = XBoardPonder{};
    ponderStats = PonderStats{};
    searchFlags = SearchFlags{};
    engineConfig.Quiet = true;
    engineConfig.Ponder = 1;
    engineConfig.DepthSearch = 40;
    engineConfig.InfiniteThinkingTime = 0;
    engineConfig.FixedTimePerMove = noFixedTime;
    engineConfig.MoveOverhead = 0;
    BeginFromStart(gameBoard);
  }

  void TearDown() override {
    SetInputSource(nullptr);
    uciSession = UciSession{};
    ForgetXBoardGame();
    protocolMode = ProtocolMode{};
    current = nullptr;
  }

  /// Sends the text, handles lines until no input is left, returns the output.
  std::string Play(const std::string& text) {
    fakeInput.bytes += text;
    testing::internal::CaptureStdout();
    RunIdle();
    std::fflush(stdout);
    return testing::internal::GetCapturedStdout();
  }

  /// The same after "uci", whose output is left out.
  std::string PlayUci(const std::string& text) {
    protocolMode.mode = uciProtocol;
    return Play(text);
  }

  static void RunIdle() {
    fakeInput.ranDry = false;
    while (!fakeInput.ranDry) Dispatch(protocolMode, false);
  }

  std::deque<ScriptedSearch> script;
  std::vector<SearchSeen> searches;
  SearchLimits lastLimits;  // of the last scripted search, at its end

 private:
  static void ForgetXBoardGame() {
    ReleaseRecord(xboardGame.record);
    xboardGame = XBoardGame{};
  }

  static SearchResult RunScript(SearchRecord& record) { return current->NextSearch(record); }

  SearchResult NextSearch(SearchRecord& record) {
    searches.push_back({record.limits.depth, engineConfig.InfiniteThinkingTime,
                        engineConfig.FixedTimePerMove, searchFlags.pondering,
                        searchFlags.StopSearch, record.limits.deadline});
    ExpectStoredLimits(record.limits);
    if (script.empty()) return {noMove, noMove};
    const ScriptedSearch search = script.front();
    script.pop_front();
    searchFlags.searching = true;
    for (const std::string& arrival : search.arrivals) {
      FakePauseSends(arrival);
      PollInput();
      if (searchFlags.StopSearch) break;
    }
    searchFlags.searching = false;
    ExpectStoredLimits(record.limits);
    lastLimits = record.limits;
    return Answer(search, *record.gameBoard);
  }

  /// The settings show what a search is given, at its start and after a hit.
  static void ExpectStoredLimits(const SearchLimits& limits) {
    EXPECT_EQ(engineConfig.FixedTimePerMove, limits.milliseconds);
    EXPECT_EQ(engineConfig.InfiniteThinkingTime, limits.infinite ? 1 : 0);
  }

  static void FakePauseSends(const std::string& arrival) {
    if (arrival == inputEnds) {
      fakeInput.ended = true;
    } else {
      fakeInput.bytes += arrival;
    }
  }

  static SearchResult Answer(const ScriptedSearch& search, const Board& position) {
    if (search.best.empty()) return {noMove, noMove};
    static Board board;
    CopyBoard(board, position);
    const Move best = MoveFromCoordinates(search.best.c_str(), board, board.sideToMove);
    MakeMove(board, best);
    const Move ponder = search.ponder.empty()
                            ? noMove
                            : MoveFromCoordinates(search.ponder.c_str(), board, board.sideToMove);
    return {best | search.marks, ponder};
  }

  inline static UciTest* current = nullptr;
};

}  // namespace mirvo
