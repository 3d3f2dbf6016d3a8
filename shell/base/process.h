// What the process asks of the platform before anything else, and what it then
// wants changed.
#pragma once

namespace mirvo {

/// Makes a write to a closed pipe, or past the largest size that the user's
/// files may have, fail like a write to a full disk instead of ending the
/// process: what can still be written is complete whoever stops reading.
void PrepareProcess();

/// Lets a closed pipe end the process again, by the next write or, while nothing
/// is printed, within a second: a run that nobody reads any more is of no use to
/// anyone. That whoever started the process ignores the signal does not count.
void EndWithClosedPipe();

/// Undoes EndWithClosedPipe (tests, which go on as the engine in one process).
void UndoEndWithClosedPipe();

}  // namespace mirvo
