// How the process reacts to a closed output pipe and to the file size limit.
#pragma once

namespace mirvo {

/// Makes a write to a closed pipe, or beyond the user's file size limit, fail
/// like a write to a full disk instead of ending the process. So the log stays
/// complete when the interface stops reading. Called first at start-up.
void PrepareProcess();

/// Lets a closed pipe end the process again, at the next write or, while nothing
/// is printed, within a second: nobody reads the result of a command-line task
/// any more. Works even if the parent process ignores the signal.
void EndWithClosedPipe();

/// Undoes EndWithClosedPipe (tests that go on as the engine in one process).
void UndoEndWithClosedPipe();

}  // namespace mirvo
