// Reads lines from standard input, recognises the protocol and routes each
// line to its front end; from the idle loop and from inside the search.
#pragma once

#include "protocol/input.h"
#include "shell/base/protocol_mode.h"

namespace mirvo {

/// Handles the next line (idle), or the complete lines already waiting (poll).
/// Idle, it waits for input a while and may return without a line. A poll
/// never waits; commands that need the board are deferred until the search is over
/// and are the next ones that idle calls handle.
void Dispatch(ProtocolMode& mode, bool poll);

/// For the search's hook: Dispatch with poll set.
void PollInput();

/// Handles lines for ever; the process ends through "quit".
[[noreturn]] void RunIdleLoop(ProtocolMode& mode);

/// Takes lines from `source` from now on (tests), null for standard input
/// again. Forgets everything that was read or deferred before.
void SetInputSource(const InputSource* source);

}  // namespace mirvo
