#include "protocol/xboard_ponder.h"

#include "board/notation.h"
#include "search/search_flags.h"
#include "shell/base/text.h"

namespace mirvo {

constinit XBoardPonder xboardPonder;

bool XBoardHasOwnLine() {
  return xboardPonder.ReplayPonderMove != 0 || xboardPonder.PendingMove != 0;
}

void TakeXBoardOwnLine(char* line, std::size_t size) {
  char text[moveTextCapacity] = "";
  if (xboardPonder.ReplayPonderMove != 0) MoveToCoordinates(xboardPonder.expectedMove, text);
  if (xboardPonder.PendingMove != 0) {
    MoveToCoordinates(xboardPonder.heldMove, text);
    xboardPonder.PendingMove = 0;
    xboardPonder.ponderMiss = 0;
  }
  CopyText(line, size, text);
}

void AbandonPondering() {
  searchFlags.StopSearch = 1;
  searchFlags.pondering = 0;
  xboardPonder.ponderMiss = 1;
}

bool XBoardLineMustWait(const char* line) {
  if (StartsWith(line, "quit")) return false;
  // Behind a line that ended the search everything keeps its order.
  if (xboardPonder.searchAbandoned != 0) return true;
  const bool newGame = StartsWith(line, "new");
  const bool needsBoard = newGame || StartsWith(line, "go") || StartsWith(line, "setboard");
  if (newGame) xboardPonder.PendingMove = 0;
  if (needsBoard && (newGame || searchFlags.pondering != 0)) {
    if (searchFlags.pondering != 0) AbandonPondering();
    searchFlags.StopSearch = 1;
    xboardPonder.searchAbandoned = 1;
  }
  if (needsBoard) return true;
  return searchFlags.pondering == 0 && IsCoordinateMove(line);
}

void XBoardInputEnded() {
  if (searchFlags.pondering != 0) AbandonPondering();
}

void XBoardLeave() {
  xboardPonder.ReplayPonderMove = 0;
  xboardPonder.PendingMove = 0;
}

}  // namespace mirvo
