#include <csignal>

#include "protocol/signals.h"

namespace mirvo {

// An interface on Windows ends its engines by closing the pipe, so only the
// console's own interrupt matters here.
void FollowSignals(bool xboard) { std::signal(SIGINT, xboard ? SIG_IGN : SIG_DFL); }

bool TerminationRequested() { return false; }

}  // namespace mirvo
