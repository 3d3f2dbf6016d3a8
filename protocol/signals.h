// How the process reacts to the signals that XBoard sends to its engines.
#pragma once

namespace mirvo {

/// XBoard interrupts an engine before it writes a line. With `xboard` set, interrupts
/// are ignored and a request to terminate is only noted, so that lines already waiting
/// are handled first; the process ends with status 0 at most a second later.
/// Otherwise both signals have their default action.
void FollowSignals(bool xboard);

/// Whether a request to terminate was noted: end as soon as no input is waiting.
bool TerminationRequested();

}  // namespace mirvo
