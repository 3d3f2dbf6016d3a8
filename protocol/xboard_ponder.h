// XBoard: how the one thread thinks on the opponent's time. The expected reply
// is played on the game board as if it had been typed and searched without a
// clock; a line that arrives meanwhile keeps, ends or abandons that search.
#pragma once

#include <cstddef>
#include <cstdint>

#include "board/move.h"

namespace mirvo {

struct XBoardPonder {
  bool ReplayPonderMove = false;  // expectedMove is the next line
  bool PendingMove = false;       // heldMove is the next line
  bool ponderMiss = false;        // companion: the ponder search is to be undone
  bool searchAbandoned = false;   // nothing of the running search is kept
  bool replyUnwanted = false;     // heldMove is recorded but not answered
  Move expectedMove = noMove;     // the reply that is pondered
  Move heldMove = noMove;         // the opponent's real move after a miss
};

/// Owner: xboard_ponder.cpp. Writers: the XBoard front end, and the dispatcher
/// through the calls below.
extern XBoardPonder xboardPonder;

/// Whether the front end itself has the next line; while it has, the
/// dispatcher reads none. Never true inside a search except between a ponder
/// miss and the end of the search, where the line is not yet to be taken.
bool XBoardHasOwnLine();

/// Writes that line (coordinate text of the expected or the held move) into
/// `line` and clears the held move's flags. Call only between searches.
void TakeXBoardOwnLine(char* line, std::size_t size);

/// Classifies a line while a search runs: true when it must wait in the queue
/// until the search is over, false when it acts at once. May stop the running
/// search on behalf of a line that waits. Call it once for each arriving line
/// in order; lines that still wait when the next search starts are classified
/// again, in order, at its first poll.
bool XBoardLineMustWait(const char* line);

/// Ends the ponder search without counting a hit or a miss; the pondered move
/// is taken back when it returns.
void AbandonPondering();

/// No more input will come: a ponder search is given up without a word.
void XBoardInputEnded();

/// The interface switches to the other protocol: forgets both own lines.
void XBoardLeave();

}  // namespace mirvo
