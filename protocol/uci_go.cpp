#include "protocol/uci_go.h"

#include <cstring>

#include "board/make_move.h"
#include "board/notation.h"
#include "protocol/game_board.h"
#include "search/pondering.h"
#include "search/search_flags.h"
#include "search/time_control.h"
#include "shell/base/output.h"
#include "shell/base/text.h"
#include "shell/config/config.h"

namespace mirvo {
namespace {

bool Occurs(const char* text, const char* keyword) { return std::strstr(text, keyword) != nullptr; }

/// Reads the number one character behind the first occurrence of `keyword`,
/// anywhere in the text. Without the keyword `value` stays.
void ReadKeyword(const char* text, const char* keyword, std::int32_t& value) {
  const char* found = std::strstr(text, keyword);
  if (found == nullptr) return;
  const char* number = found + std::strlen(keyword);
  value = *number == 0 ? 0 : ReadDecimal(number + 1);
}

void ReadClocks(UciSession& session, const char* text) {
  session.clockReceived[white] |= Occurs(text, "wtime");
  session.clockReceived[black] |= Occurs(text, "btime");
  ReadKeyword(text, "wtime", session.whiteTime);
  ReadKeyword(text, "btime", session.blackTime);
  ReadKeyword(text, "winc", session.whiteIncrement);
  ReadKeyword(text, "binc", session.blackIncrement);
  ReadKeyword(text, "movestogo", session.movesToGo);
}

void AllotTime(const UciSession& session) {
  const bool isWhite = session.UciSideToMove == white;
  AllocateTime(engineConfig, session.movesToGo, isWhite ? session.whiteTime : session.blackTime,
               isWhite ? session.whiteIncrement : session.blackIncrement);
}

/// The clock of the side to move on the board. It runs down whichever clock the
/// time is allotted from.
OwnClock ClockOfMover(const UciSession& session) {
  const bool isWhite = gameBoard.sideToMove == white;
  return {isWhite ? session.whiteTime : session.blackTime,
          session.clockReceived[gameBoard.sideToMove]};
}

/// Whether the running "go" has nothing but a command to wait for.
bool NeedsCommand(const UciSession& session) {
  if (session.answerRule == AnswerRule::onPonderEnd) return searchFlags.pondering != 0;
  return session.answerRule == AnswerRule::onCommand;
}

/// Keeps the best move of a search that finished early until it may be told.
void DelayBestMove(const UciSession& session) {
  while (session.waitForInput != nullptr && NeedsCommand(session) && searchFlags.StopSearch == 0) {
    session.waitForInput();
  }
}

void PrintBestMove(const SearchResult& result) {
  char best[moveTextCapacity] = "0000";
  char expected[moveTextCapacity] = "";
  if (result.best != noMove) MoveToCoordinates(result.best, best);
  const bool mayPonder = engineConfig.Ponder != 0 && searchFlags.BookInUse == 0;
  const bool tellsReply = mayPonder && result.ponder != noMove;
  if (tellsReply) MoveToCoordinates(result.ponder, expected);
  // Without an expected reply the line still ends with the blank before it.
  Output(output, "bestmove %s %s%s\n", best, tellsReply ? "ponder " : "", expected);
}

/// Searches the game board within the limits that are set, makes the move and
/// answers.
void SearchAndAnswer(UciSession& session, SearchRecord& record) {
  const SearchResult result = session.think(record);
  DelayBestMove(session);
  session.answerRule = AnswerRule::whenDone;
  searchFlags.pondering = 0;
  session.LastMoveFlagged = (result.best & mateMark) != 0 ? 1 : 0;
  if (result.best != noMove) MakeMove(gameBoard, result.best & ~mateMark);
  PrintBestMove(result);
}

/// Searches for and prints the best move of a "go ponder" that was declined.
void GivePendingBestMove(UciSession& session) {
  session.bestMovePending = 0;
  searchFlags.StopSearch = 0;
  SearchRecord record = PrepareSearch(gameBoard);
  SearchAndAnswer(session, record);
}

}  // namespace

void Go(UciSession& session, const char* text) {
  session.bestMovePending = 0;
  ReadClocks(session, text);
  const bool infinite = Occurs(text, "infinite");
  const bool ponders = Occurs(text, "ponder");
  engineConfig.InfiniteThinkingTime = infinite ? 1 : 0;
  if (ponders && session.LastMoveFlagged != 0) {
    session.bestMovePending = 1;
    return;
  }
  if (ponders) engineConfig.InfiniteThinkingTime = 1;
  searchFlags.pondering = ponders ? 1 : 0;
  session.answerRule = ponders    ? AnswerRule::onPonderEnd
                       : infinite ? AnswerRule::onCommand
                                  : AnswerRule::whenDone;

  SearchRecord record = PrepareSearch(gameBoard);
  if (Occurs(text, "depth")) {
    ReadKeyword(text, "depth", record.limits.depth);
    engineConfig.InfiniteThinkingTime = 1;
  }
  searchFlags.StopSearch = 0;
  AllotTime(session);
  SetDeadline(engineConfig, ClockOfMover(session));
  SearchAndAnswer(session, record);
}

void EndSearchWithoutEnd(const UciSession& session) {
  if (NeedsCommand(session)) searchFlags.StopSearch = 1;
}

void Stop(UciSession& session) {
  searchFlags.StopSearch = 1;
  if (session.bestMovePending == 0) return;
  // A search without time: it ends at its first look at the clock.
  engineConfig.InfiniteThinkingTime = 0;
  engineConfig.FixedTimePerMove = 0;
  GivePendingBestMove(session);
}

void PonderHitCommand(UciSession& session) {
  PonderHit(engineConfig, session.movesToGo, session.whiteTime, session.whiteIncrement);
  SetDeadline(engineConfig, ClockOfMover(session));
  if (session.bestMovePending != 0) GivePendingBestMove(session);
}

}  // namespace mirvo
