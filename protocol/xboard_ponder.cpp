#include "protocol/xboard_ponder.h"

#include "board/notation.h"
#include "search/search_flags.h"
#include "shell/base/text.h"

namespace mirvo {

constinit XBoardPonder xboardPonder;

bool XBoardHasOwnLine() { return xboardPonder.ReplayPonderMove || xboardPonder.PendingMove; }

void TakeXBoardOwnLine(char* line, std::size_t size) {
  char text[moveTextCapacity] = "";
  if (xboardPonder.ReplayPonderMove) MoveToCoordinates(xboardPonder.expectedMove, text);
  if (xboardPonder.PendingMove) {
    MoveToCoordinates(xboardPonder.heldMove, text);
    xboardPonder.PendingMove = false;
    xboardPonder.ponderMiss = false;
  }
  CopyText(line, size, text);
}

void AbandonPondering() {
  searchFlags.StopSearch = true;
  searchFlags.pondering = false;
  xboardPonder.ponderMiss = true;
}

LineTiming ClassifyXBoardLine(const char* line) {
  if (StartsWith(line, "quit")) return LineTiming::atOnce;
  // After a line that ended the search, all lines wait, which keeps their order.
  if (xboardPonder.searchAbandoned) return LineTiming::afterSearch;
  const bool newGame = StartsWith(line, "new");
  const bool needsBoard = newGame || StartsWith(line, "go") || StartsWith(line, "setboard");
  if (newGame) xboardPonder.PendingMove = false;
  if (needsBoard && (newGame || searchFlags.pondering)) {
    if (searchFlags.pondering) AbandonPondering();
    searchFlags.StopSearch = true;
    xboardPonder.searchAbandoned = true;
  }
  const bool moves = !searchFlags.pondering && IsCoordinateMove(line);
  return needsBoard || moves ? LineTiming::afterSearch : LineTiming::atOnce;
}

void XBoardInputEnded() {
  if (searchFlags.pondering) AbandonPondering();
}

void XBoardLeave() {
  xboardPonder.ReplayPonderMove = false;
  xboardPonder.PendingMove = false;
}

}  // namespace mirvo
