// Reads lines from standard input, recognises the protocol and routes each
// line to its front end; from the idle loop and from inside the search.
#pragma once

#include "protocol/protocol_mode.h"

namespace mirvo {

/// Handles one line (idle), or the complete lines already waiting (poll).
void Dispatch(ProtocolMode& mode, bool poll);

/// For the search's hook: Dispatch with poll set.
void PollInput();

/// Handles lines for ever; the process ends through "quit".
[[noreturn]] void RunIdleLoop(ProtocolMode& mode);

}  // namespace mirvo
