#include <csignal>

#include "protocol/signals.h"

namespace mirvo {

// On Windows an interface ends its engines by closing the pipe, so only the console's
// interrupt matters.
void FollowSignals(bool xboard) { std::signal(SIGINT, xboard ? SIG_IGN : SIG_DFL); }

bool TerminationRequested() { return false; }

}  // namespace mirvo
