// Reads lines from standard input, detects the protocol and routes each line to its
// front end, from the idle loop and from inside the search.
#pragma once

#include "protocol/input.h"
#include "shell/base/protocol_mode.h"

namespace mirvo {

/// Without `poll`, handles the next line; waits for input for a while and may return
/// without a line. With `poll`, handles the complete lines already waiting and never
/// blocks; commands that need the board are deferred until the search is over, and
/// then handled first.
void Dispatch(ProtocolMode& mode, bool poll);

/// For the search's hook: Dispatch with poll set.
void PollInput();

/// Handles lines until the process ends.
[[noreturn]] void RunIdleLoop(ProtocolMode& mode);

/// Reads from `source` from now on (tests); null means standard input. Drops
/// everything that was read or deferred before.
void SetInputSource(const InputSource* source);

}  // namespace mirvo
