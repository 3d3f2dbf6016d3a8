// The UCI front end: one line in, replies out, and the classification of lines that
// arrive during a search.
#pragma once

#include <cstdint>

#include "protocol/deferred_commands.h"

namespace mirvo {

/// Handles one line (line end allowed); ignores unknown ones. Returns from "go" when
/// its search is over and answered.
void HandleUciLine(std::uint8_t& state, const char* line);

/// Classifies a line during a search: it must wait until the search is over if it needs
/// the board or a search of its own. `hasGo` says whether a "go" is already waiting; a
/// "go" sets it.
///
/// A "go" stops a running search that only a command ends, so that every search ends.
/// After a waiting "go" it is unknown which search a "stop" or "ponderhit" is for, so
/// it acts on the running one at once and waits for the others too.
LineTiming ClassifyUciLine(const char* line, bool& hasGo);

/// Whether the line may overtake a waiting switch of the protocol: it acts on the running
/// search or needs no board. Not "uci", which switches back.
bool UciLineIsUrgent(const char* line);

/// No more commands will come: stops a running search that only a command could end.
void UciInputEnded();

/// The interface switches to the other protocol: drops a pending best move.
void UciLeave();

}  // namespace mirvo
