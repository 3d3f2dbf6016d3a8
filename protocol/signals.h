// What the process does on the signals that XBoard sends to its engines.
#pragma once

namespace mirvo {

/// XBoard interrupts an engine before it writes a line: while `xboard` is set
/// an interrupt is ignored and a request to terminate is only noted, so that
/// lines already waiting are handled first; at most a second later the process
/// ends with status 0. Otherwise both signals do what they do by default.
void FollowSignals(bool xboard);

/// A request to terminate was noted: end as soon as no input is waiting.
bool TerminationRequested();

}  // namespace mirvo
