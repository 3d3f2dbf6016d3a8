// Reads lines from standard input, recognises the protocol and routes each
// line to its front end; from the idle loop and from inside the search.
#pragma once

#include "protocol/input.h"
#include "shell/base/protocol_mode.h"

namespace mirvo {

/// Handles the next line (idle), or the complete lines already waiting (poll).
/// Idle, it waits for input a while and may return without a line. A poll
/// never waits; lines that need the board are held until the search is over
/// and are the next ones that idle calls handle.
void Dispatch(ProtocolMode& mode, bool poll);

/// For the search's hook: Dispatch with poll set.
void PollInput();

/// One look at the input while a finished search waits for a command that
/// lets it answer; a short sleep first.
void WaitForInput();

/// Handles lines for ever; the process ends through "quit".
[[noreturn]] void RunIdleLoop(ProtocolMode& mode);

/// Takes lines from `source` from now on (tests), null for standard input
/// again. Forgets everything that was read or held before.
void SetInputSource(const InputSource* source);

}  // namespace mirvo
