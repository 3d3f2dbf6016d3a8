// What the process asks of the platform once, before anything else.
#pragma once

namespace mirvo {

/// Makes a write to a closed pipe fail like a write to a full disk instead of
/// ending the process, so that the log is complete whoever stops reading.
void PrepareProcess();

}  // namespace mirvo
