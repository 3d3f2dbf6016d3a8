// The UCI front end: one line in, replies out, and what the dispatcher has to
// know about lines that arrive while a search runs.
#pragma once

#include <cstdint>

namespace mirvo {

/// Handles one line (line end allowed). Lines it does not know are ignored.
/// "go" returns when its search is over and answered.
void HandleUciLine(std::uint8_t& state, const char* line);

/// Whether a line that arrives during a search waits for its end, because it
/// needs the board or a search of its own. "stop" and "ponderhit" wait
/// `behindGo`: they are meant for a "go" that waits already.
bool UciLineMustWait(const char* line, bool behindGo);

/// Whether the line is a "go".
bool UciLineSearches(const char* line);

/// Whether the line acts on the running search or asks for a sign of life.
bool UciLineIsUrgent(const char* line);

/// No more commands will come for the running search: one that only a command
/// could end is stopped.
void UciInputEnded();

/// The interface switches to the other protocol: an answer that is still owed
/// is forgotten.
void UciLeave();

}  // namespace mirvo
