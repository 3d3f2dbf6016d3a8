// What a WebAssembly program asks of the JavaScript that runs it
// (web/package/host.js), in place of an operating system: the functions that
// the platform files import. Everything else comes through the C library.
#pragma once

#include <cstdint>

extern "C" {

/// Milliseconds from a clock that is never set back.
double HostMilliseconds();

/// Gives up the processor for about so long.
void HostSleep(std::uint32_t milliseconds);

/// Opens a file; `flags` are those of open(). A descriptor, or the negative
/// number of an error.
std::int32_t HostOpenFile(const char* path, std::int32_t flags);

/// Removes a file. 0, or the negative number of an error.
std::int32_t HostRemoveFile(const char* path);

/// The members of InputSource (protocol/input.h) of the same names. A read that
/// waits may not return: where the host cannot wait for input it leaves the
/// program as it stands and calls ResumeEngine when there is some.
std::uint32_t HostInputWaiting();
std::int32_t HostReadInput(char* buffer, std::uint32_t size, std::int32_t wait);
std::int32_t HostOutputClosed();
void HostPauseInput(std::uint32_t milliseconds);

/// protocol/signals.h: the host hears the signals.
void HostFollowSignals(std::int32_t xboard);
std::int32_t HostTerminationRequested();

/// Whether a write that nobody will read ends the program.
void HostEndWithClosedOutput(std::int32_t ends);

}  // extern "C"
