// What the UCI front end keeps between commands, for the whole process.
#pragma once

#include <cstdint>

#include "board/coding.h"
#include "search/iterate.h"

namespace mirvo {

/// What ends a "go" whose search has nothing left to do.
enum class AnswerRule : std::uint8_t {
  whenDone,     // its answer is given at once
  onCommand,    // "go infinite": delayed until "stop"
  onPonderEnd,  // "go ponder": delayed until "stop" or "ponderhit"
};

struct UciSession {
  /// Colour bit of the next text move and choice of the clock. Counts from
  /// White at the start of every move list, after any FEN.
  std::int32_t UciSideToMove = white;
  // Clock values of the newest "go" that named them: ms and moves.
  std::int32_t whiteTime = 0;
  std::int32_t blackTime = 0;
  std::int32_t whiteIncrement = 0;
  std::int32_t blackIncrement = 0;
  std::int32_t movesToGo = 0;
  bool clockReceived[nSides] = {false, false};  // a "go" has named this side's clock
  /// The last search ended on a mate score.
  bool LastMoveFlagged = false;
  /// A "go ponder" was declined; "stop" or "ponderhit" still gets a best move.
  bool bestMovePending = false;
  /// Of the "go" that is running.
  AnswerRule answerRule = AnswerRule::whenDone;
  SearchLimits* running = nullptr;  // its limits; null when none is
  /// The search; tests install their own.
  SearchResult (*think)(SearchRecord& record) = Think;
  /// One look at the input while a best move is delayed. Installed by the
  /// dispatcher; null when there is no input to wait for.
  void (*waitForInput)() = nullptr;
};

/// Owner: uci.cpp. Writers: the UCI front end.
extern UciSession uciSession;

}  // namespace mirvo
