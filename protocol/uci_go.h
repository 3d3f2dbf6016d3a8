// UCI "go" and the commands that act on its search.
#pragma once

#include "protocol/uci_session.h"

namespace mirvo {

/// "go": `text` holds its keywords. Searches the game board, makes the best
/// move on it and prints exactly one "bestmove" line, unless the expected
/// reply to a mate is to be pondered: that is declined in silence.
void Go(UciSession& session, const char* text);

/// Stops the running search if only a command could end it.
void EndSearchWithoutEnd(const UciSession& session);

/// "stop": ends the running search, or gives the answer that is owed.
void Stop(UciSession& session);

/// "ponderhit": the running search goes on with White's clock, or the search
/// that was declined takes place.
void PonderHitCommand(UciSession& session);

}  // namespace mirvo
