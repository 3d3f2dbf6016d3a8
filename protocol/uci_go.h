// UCI "go" and the commands that act on its search.
#pragma once

#include "protocol/uci_session.h"

namespace mirvo {

/// "go" with the keywords in `text`. Searches the game board, makes the best move on it
/// and prints exactly one "bestmove" line. After a mate score it declines "go ponder"
/// without output; the best move is then pending.
void Go(UciSession& session, const char* text);

/// Stops the running search if only a command could end it.
void EndSearchWithoutEnd(const UciSession& session);

/// "stop": ends the running search, or prints a pending best move.
void Stop(UciSession& session);

/// "ponderhit": the running search continues with White's clock, or the declined
/// search takes place.
void PonderHitCommand(UciSession& session);

}  // namespace mirvo
