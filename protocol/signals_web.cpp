#include "protocol/signals.h"
#include "shell/base/host_web.h"

namespace mirvo {

void FollowSignals(bool xboard) { HostFollowSignals(xboard ? 1 : 0); }

bool TerminationRequested() { return HostTerminationRequested() != 0; }

}  // namespace mirvo
