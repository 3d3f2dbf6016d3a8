// The UCI front end: one line in, replies out, and what the dispatcher has to
// know about lines that arrive while a search runs.
#pragma once

#include <cstdint>

#include "protocol/deferred_commands.h"

namespace mirvo {

/// Handles one line (line end allowed). Lines it does not know are ignored.
/// "go" returns when its search is over and answered.
void HandleUciLine(std::uint8_t& state, const char* line);

/// Classifies a line while a search runs: it waits until the search is over when it
/// needs the board or a search of its own. `hasGo` tells whether a "go" waits
/// already, and is set by one.
///
/// No search is left that nothing can end: a "go" stops a running search that
/// only a command ends. Behind a waiting "go" nobody can tell which search a
/// "stop" or "ponderhit" is for, so it counts for the running one at once and
/// waits for the others too.
LineTiming ClassifyUciLine(const char* line, bool& hasGo);

/// Whether the line acts on the running search or asks for a sign of life.
bool UciLineIsUrgent(const char* line);

/// No more commands will come for the running search: one that only a command
/// could end is stopped.
void UciInputEnded();

/// The interface switches to the other protocol: an answer that is still owed
/// is forgotten.
void UciLeave();

}  // namespace mirvo
