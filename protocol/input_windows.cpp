#include <windows.h>

#include "protocol/input.h"
#include "shell/base/clock.h"

namespace mirvo {
namespace {

constexpr DWORD maxPeekedEvents = 256;

/// The kind of standard input, determined at the first call.
struct InputProbe {
  bool InputProbed = false;
  bool InputIsPipe = false;  // anything that is not a console
  HANDLE handle = nullptr;
};

InputProbe probe;

/// On the first call, sets a console to queue only keys.
void ProbeInput() {
  if (probe.InputProbed) return;
  probe.InputProbed = true;
  probe.handle = GetStdHandle(STD_INPUT_HANDLE);
  DWORD mode = 0;
  probe.InputIsPipe = GetConsoleMode(probe.handle, &mode) == 0;
  if (probe.InputIsPipe) return;
  constexpr DWORD ignoredEvents = ENABLE_MOUSE_INPUT | ENABLE_WINDOW_INPUT;
  SetConsoleMode(probe.handle, mode & ~ignoredEvents);
  FlushConsoleInputBuffer(probe.handle);
}

using EventTest = bool (*)(const INPUT_RECORD& event);

/// Whether a console event that passes `test` is waiting; removes nothing.
bool ConsoleEventWaits(EventTest test) {
  DWORD nEvents = 0;
  if (GetNumberOfConsoleInputEvents(probe.handle, &nEvents) == 0 || nEvents == 0) return false;
  static INPUT_RECORD events[maxPeekedEvents];
  DWORD nPeeked = 0;
  if (PeekConsoleInputA(probe.handle, events, maxPeekedEvents, &nPeeked) == 0) return false;
  for (DWORD i = 0; i < nPeeked; ++i) {
    if (test(events[i])) return true;
  }
  return false;
}

bool IsKey(const INPUT_RECORD& event) { return event.EventType == KEY_EVENT; }

/// The key that completes a line; a console read returns only then.
bool IsEnterKey(const INPUT_RECORD& event) {
  return IsKey(event) && event.Event.KeyEvent.bKeyDown != 0 &&
         event.Event.KeyEvent.wVirtualKeyCode == VK_RETURN;
}

/// A failed peek, for example on a closed pipe, reports a byte, so that the caller
/// reads the end.
std::uint32_t PipeBytesWaiting() {
  DWORD nBytes = 0;
  if (PeekNamedPipe(probe.handle, nullptr, 0, nullptr, &nBytes, nullptr) == 0) return 1;
  return nBytes;
}

std::uint32_t BytesWaiting() {
  ProbeInput();
  if (!probe.InputIsPipe) return ConsoleEventWaits(IsKey) ? 1 : 0;
  return PipeBytesWaiting();
}

int ReadBytes(char* buffer, std::size_t size, bool wait) {
  ProbeInput();
  if (!wait) {
    const bool ready = probe.InputIsPipe ? PipeBytesWaiting() != 0 : ConsoleEventWaits(IsEnterKey);
    if (!ready) return nothingToRead;
  }
  DWORD nBytes = 0;
  if (ReadFile(probe.handle, buffer, static_cast<DWORD>(size), &nBytes, nullptr) == 0) {
    return inputEnded;
  }
  return static_cast<int>(nBytes);
}

/// The process runs until its interface sends "quit".
bool ParentExited() { return false; }

/// On Windows only a write could tell.
bool OutputClosed() { return false; }

constexpr InputSource systemInput{BytesWaiting, ReadBytes, ParentExited, OutputClosed,
                                  SleepMilliseconds};

}  // namespace

const InputSource& SystemInput() { return systemInput; }

}  // namespace mirvo
