#include "shell/base/process.h"

namespace mirvo {

// On Windows a write to a closed pipe is an ordinary error.
void PrepareProcess() {}

// Nothing on Windows ends a process for that; a tool runs to its end.
void EndWithClosedPipe() {}

void UndoEndWithClosedPipe() {}

}  // namespace mirvo
