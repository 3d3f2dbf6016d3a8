// What the UCI front end keeps between commands, for the whole process.
#pragma once

#include <cstdint>

#include "board/coding.h"
#include "search/iterate.h"

namespace mirvo {

/// When the best move of a finished search is printed.
enum class AnswerRule : std::uint8_t {
  whenDone,     // at once
  onCommand,    // "go infinite": delayed until "stop"
  onPonderEnd,  // "go ponder": delayed until "stop" or "ponderhit"
};

struct UciSession {
  /// Colour bit of the next text move, and the clock to use. Starts with White at every
  /// move list, after any FEN.
  std::int32_t UciSideToMove = white;
  // Clock values, as last sent: ms and moves.
  std::int32_t whiteTime = 0;
  std::int32_t blackTime = 0;
  std::int32_t whiteIncrement = 0;
  std::int32_t blackIncrement = 0;
  std::int32_t movesToGo = 0;
  bool clockReceived[nSides] = {false, false};  // a "go" has sent this side's clock
  /// The last search ended on a mate score.
  bool LastMoveFlagged = false;
  /// A "go ponder" was declined; "stop" or "ponderhit" will get its best move.
  bool bestMovePending = false;
  /// For the running "go".
  AnswerRule answerRule = AnswerRule::whenDone;
  SearchLimits* running = nullptr;  // limits of the search; null when none is running
  /// The search; tests install their own.
  SearchResult (*think)(SearchRecord& record) = Think;
  /// Polls the input while a best move is delayed. Installed by the dispatcher; null
  /// when there is no input to wait for.
  void (*waitForInput)() = nullptr;
};

/// Owner: uci.cpp. Writers: the UCI front end.
extern UciSession uciSession;

}  // namespace mirvo
