// What the process asks of the platform once, before anything else.
#pragma once

namespace mirvo {

/// Makes a write to a closed pipe, or past the largest size that the user's
/// files may have, fail like a write to a full disk instead of ending the
/// process: what can still be written is complete whoever stops reading.
void PrepareProcess();

}  // namespace mirvo
