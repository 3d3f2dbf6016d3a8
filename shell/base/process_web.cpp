#include "shell/base/host_web.h"
#include "shell/base/process.h"

namespace mirvo {

// Writing to a closed pipe is an ordinary error here already.
void PrepareProcess() {}

void EndWithClosedPipe() { HostEndWithClosedOutput(1); }

void UndoEndWithClosedPipe() { HostEndWithClosedOutput(0); }

}  // namespace mirvo
