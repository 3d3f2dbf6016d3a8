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

/// Reads the number one character after the first occurrence of `keyword`, anywhere in
/// the text. Without the keyword `value` does not change.
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

void AllotTime(const UciSession& session, SearchLimits& limits) {
  const bool isWhite = session.UciSideToMove == white;
  AllocateTime(limits, session.movesToGo, isWhite ? session.whiteTime : session.blackTime,
               isWhite ? session.whiteIncrement : session.blackIncrement);
}

/// The clock of the side to move on the board, which runs during the search, even if
/// the time is allotted from the other clock.
OwnClock ClockOfMover(const UciSession& session) {
  const bool isWhite = gameBoard.sideToMove == white;
  return {isWhite ? session.whiteTime : session.blackTime,
          session.clockReceived[gameBoard.sideToMove]};
}

/// Whether only a command can release the best move of the running "go".
bool NeedsCommand(const UciSession& session) {
  if (session.answerRule == AnswerRule::onPonderEnd) return searchFlags.pondering;
  return session.answerRule == AnswerRule::onCommand;
}

/// Delays the best move of a search that finished early until it may be printed.
void DelayBestMove(const UciSession& session) {
  while (session.waitForInput != nullptr && NeedsCommand(session) && !searchFlags.StopSearch) {
    session.waitForInput();
  }
}

void PrintBestMove(const SearchResult& result) {
  char best[moveTextCapacity] = "0000";
  char expected[moveTextCapacity] = "";
  if (result.best != noMove) MoveToCoordinates(result.best, best);
  const bool mayPonder = engineConfig.Ponder != 0 && !searchFlags.BookInUse;
  const bool tellsReply = mayPonder && result.ponder != noMove;
  if (tellsReply) MoveToCoordinates(result.ponder, expected);
  // Without an expected reply the line ends with a blank.
  Output(output, "bestmove %s %s%s\n", best, tellsReply ? "ponder " : "", expected);
}

/// Searches the game board within the record's limits, makes the move and answers.
void SearchAndAnswer(UciSession& session, SearchRecord& record) {
  StoreTimeLimits(engineConfig, record.limits);
  searchFlags.StopSearch = false;
  searchFlags.pondering = record.limits.ponder;
  session.running = &record.limits;
  const SearchResult result = session.think(record);
  DelayBestMove(session);
  session.running = nullptr;
  session.answerRule = AnswerRule::whenDone;
  searchFlags.pondering = false;
  session.LastMoveFlagged = (result.best & mateMark) != 0;
  if (result.best != noMove) MakeMove(gameBoard, result.best & ~mateMark);
  PrintBestMove(result);
}

}  // namespace

void Go(UciSession& session, const char* text) {
  session.bestMovePending = false;
  ReadClocks(session, text);
  SearchRecord record = PrepareSearch(gameBoard);
  SearchLimits& limits = record.limits;
  limits.infinite = Occurs(text, "infinite");
  limits.ponder = Occurs(text, "ponder");
  StoreTimeLimits(engineConfig, limits);
  if (limits.ponder && session.LastMoveFlagged) {
    session.bestMovePending = true;
    return;
  }
  session.answerRule = limits.ponder     ? AnswerRule::onPonderEnd
                       : limits.infinite ? AnswerRule::onCommand
                                         : AnswerRule::whenDone;
  // Also without a clock: pondering and searches limited by depth.
  limits.infinite |= limits.ponder || Occurs(text, "depth");
  ReadKeyword(text, "depth", limits.depth);
  AllotTime(session, limits);
  SetDeadline(limits, engineConfig.MoveOverhead, ClockOfMover(session));
  SearchAndAnswer(session, record);
}

void EndSearchWithoutEnd(const UciSession& session) {
  if (NeedsCommand(session)) searchFlags.StopSearch = true;
}

void Stop(UciSession& session) {
  searchFlags.StopSearch = true;
  if (!session.bestMovePending) return;
  session.bestMovePending = false;
  // A search without time ends at its first reading of the clock.
  SearchRecord record = PrepareSearch(gameBoard);
  record.limits.infinite = false;
  record.limits.milliseconds = 0;
  SearchAndAnswer(session, record);
}

void PonderHitCommand(UciSession& session) {
  SearchRecord record = PrepareSearch(gameBoard);
  SearchLimits& limits = session.running != nullptr ? *session.running : record.limits;
  PonderHit(limits, session.movesToGo, session.whiteTime, session.whiteIncrement);
  SetDeadline(limits, engineConfig.MoveOverhead, ClockOfMover(session));
  StoreTimeLimits(engineConfig, limits);
  if (!session.bestMovePending) return;
  session.bestMovePending = false;
  SearchAndAnswer(session, record);
}

}  // namespace mirvo
