// A fixture that drives the XBoard front end with scripted searches: each defines
// the lines that arrive while it runs and what it answers.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <deque>
#include <string>
#include <vector>

#include "board/fen.h"
#include "board/make_move.h"
#include "protocol/game_board.h"
#include "protocol/position_line.h"
#include "protocol/xboard.h"
#include "protocol/xboard_game.h"
#include "protocol/xboard_play.h"
#include "protocol/xboard_ponder.h"
#include "search/pondering.h"
#include "search/search_flags.h"
#include "shell/config/config.h"

namespace mirvo {

/// The position line after e4 e5.
inline constexpr char afterE4E5Line[] =
    "rnbqkbnr/pppp1ppp/8/4p3/4P3/8/PPPP1PPP/RNBQKBNR w KQkq -\n";

struct ScriptedAnswer {
  std::vector<std::string> lines;  // arrive while it runs, in order
  std::string best;                // empty: no legal move
  std::string ponder = "";         // expected reply
  Move marks = noMove;             // bits added to the best move's word
};

class XBoardTest : public ::testing::Test {
 protected:
  void SetUp() override {
    current = this;
    xboardGame = XBoardGame{};
    xboardGame.think = RunScript;
    xboardPonder = XBoardPonder{};
    ponderStats = PonderStats{};
    searchFlags = SearchFlags{};
    engineConfig.Quiet = true;
    engineConfig.Ponder = 1;
    engineConfig.LoggingMode = 0;
    BeginFromStart(gameBoard);
  }

  void TearDown() override {
    ReleaseRecord(xboardGame.record);
    xboardGame = XBoardGame{};
    current = nullptr;
  }

  /// Handles the lines as the dispatcher does between searches: the front end's own
  /// line first, then waiting ones. Returns the output.
  std::string Play(const std::vector<std::string>& lines) {
    testing::internal::CaptureStdout();
    for (const std::string& line : lines) {
      Handle(line);
      FinishWaitingLines();
    }
    std::fflush(stdout);
    return testing::internal::GetCapturedStdout();
  }

  static std::string Position() {
    char text[positionLineCapacity];
    FormatPositionLine(gameBoard, text);
    return text;
  }

  std::deque<ScriptedAnswer> script;
  std::vector<std::string> searchKinds;  // "timed" or "ponder", one per search
  std::deque<std::string> waiting;
  SearchLimits lastLimits;  // of the last scripted search, at its end

 private:
  static void Handle(const std::string& line) {
    std::uint8_t state = 0;
    HandleXBoardLine(state, line.c_str());
  }

  void FinishWaitingLines() {
    while (XBoardHasOwnLine() || !waiting.empty()) {
      if (XBoardHasOwnLine()) {
        char line[32];
        TakeXBoardOwnLine(line, sizeof line);
        Handle(line);
      } else {
        const std::string line = waiting.front();
        waiting.pop_front();
        Handle(line);
      }
    }
  }

  static SearchResult RunScript(SearchRecord& record) { return current->NextSearch(record); }

  SearchResult NextSearch(SearchRecord& record) {
    searchKinds.emplace_back(record.limits.ponder ? "ponder" : "timed");
    ExpectStoredLimits(record.limits);
    EXPECT_FALSE(searchFlags.StopSearch) << "a stop was left over";
    if (script.empty()) return {noMove, noMove};
    const ScriptedAnswer search = script.front();
    script.pop_front();
    for (const std::string& line : search.lines) {
      if (ClassifyXBoardLine(line.c_str()) == LineTiming::afterSearch) {
        waiting.push_back(line);
      } else {
        Handle(line);
      }
    }
    ExpectStoredLimits(record.limits);
    lastLimits = record.limits;
    return Answer(search, *record.gameBoard);
  }

  /// The settings show what a search is given, at its start and after a hit.
  static void ExpectStoredLimits(const SearchLimits& limits) {
    EXPECT_EQ(engineConfig.FixedTimePerMove, limits.milliseconds);
    EXPECT_EQ(engineConfig.InfiniteThinkingTime, limits.infinite ? 1 : 0);
  }

  static SearchResult Answer(const ScriptedAnswer& search, const Board& position) {
    if (search.best.empty()) return {noMove, noMove};
    static Board board;
    CopyBoard(board, position);
    const Move best = CompleteTextMove(search.best.c_str(), board);
    MakeMove(board, best);
    const Move ponder =
        search.ponder.empty() ? noMove : CompleteTextMove(search.ponder.c_str(), board);
    return {best | search.marks, ponder};
  }

  inline static XBoardTest* current = nullptr;
};

}  // namespace mirvo
