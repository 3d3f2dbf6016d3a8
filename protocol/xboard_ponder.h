// Pondering under XBoard, with one thread. The expected reply is played on the game
// board as if it had been sent, and searched without a clock; a line that arrives
// meanwhile continues, ends or abandons that search.
#pragma once

#include <cstddef>
#include <cstdint>

#include "board/move.h"
#include "protocol/deferred_commands.h"

namespace mirvo {

struct XBoardPonder {
  bool ReplayPonderMove = false;  // expectedMove is the next line
  bool PendingMove = false;       // heldMove is the next line
  bool ponderMiss = false;        // the pondered move must be unmade after the search
  bool searchAbandoned = false;   // the running search's result is dropped
  bool recordOnly = false;        // heldMove is recorded, not answered
  Move expectedMove = noMove;     // the reply that is pondered
  Move heldMove = noMove;         // the opponent's real move after a miss
};

/// Owner: xboard_ponder.cpp. Writers: the XBoard front end, and the dispatcher
/// through the calls below.
extern XBoardPonder xboardPonder;

/// Whether the front end itself has the next line; then the dispatcher reads none.
/// Inside a search this is true only between a ponder miss and the end of the search,
/// when the line may not be taken yet.
bool XBoardHasOwnLine();

/// Writes that line (coordinate text of the expected or the held move) into
/// `line` and clears the held move's flags. Call only between searches.
void TakeXBoardOwnLine(char* line, std::size_t size);

/// Classifies a line during a search. May stop the running search for a line that must
/// wait. Call it once for each arriving line, in order; lines still waiting when the
/// next search starts are classified again, in order, at its first poll.
LineTiming ClassifyXBoardLine(const char* line);

/// Ends the ponder search without counting a hit or a miss; the pondered move is unmade
/// when the search returns.
void AbandonPondering();

/// No more input will come: abandons a ponder search without output.
void XBoardInputEnded();

/// The interface switches to the other protocol: drops both own lines.
void XBoardLeave();

}  // namespace mirvo
