#include "protocol/dispatcher.h"

#include <cstdlib>
#include <string>
#include <utility>

#include "protocol/deferred_commands.h"
#include "protocol/input_lines.h"
#include "protocol/signals.h"
#include "protocol/uci.h"
#include "protocol/uci_session.h"
#include "protocol/xboard.h"
#include "protocol/xboard_ponder.h"
#include "search/hash/hash_memory.h"
#include "search/search_flags.h"
#include "shell/base/clock.h"
#include "shell/base/output.h"
#include "shell/base/text.h"

namespace mirvo {
namespace {

/// Sleep of one idle turn after the end of input, and between two looks at
/// the input while a best move is delayed.
constexpr std::uint32_t endedPause = 10;   // ms
constexpr std::uint32_t delayedPause = 5;  // ms

/// Most lines that one poll reads, so that a flood of them cannot keep the
/// search from its clock.
constexpr int maxLinesPerPoll = 1024;

/// Everything that has been read and not been handled.
struct PendingInput {
  LineReader reader;
  DeferredCommands deferred;
};

PendingInput pending;

LineReader& Reader() {
  if (pending.reader.source == nullptr) pending.reader.source = &SystemInput();
  return pending.reader;
}

bool IsUciWord(const char* line) { return StartsWith(line, "uci"); }
bool IsXBoardWord(const char* line) { return StartsWith(line, "xboard"); }

/// One look at the input, after a short sleep, while a best move is delayed.
void WaitForInput() {
  Reader().source->pause(delayedPause);
  PollInput();
}

void SwitchToUci(ProtocolMode& mode) {
  mode.detected = true;
  if (mode.mode == xboardProtocol) {
    XBoardLeave();
    FollowSignals(false);
  }
  mode.mode = uciProtocol;
}

void SwitchToXBoard(ProtocolMode& mode) {
  mode.detected = true;
  if (mode.mode == uciProtocol) UciLeave();
  if (mode.mode != xboardProtocol) FollowSignals(true);
  mode.mode = xboardProtocol;
  Output(output, "feature myname=\"%s %s\" name=1 setboard=1 ics=1 done=1\n", engineName,
         engineVersion);
}

/// Either word counts on every line, not only on the first.
void DetectProtocol(ProtocolMode& mode, const char* line) {
  if (IsUciWord(line)) {
    SwitchToUci(mode);
  } else if (IsXBoardWord(line)) {
    SwitchToXBoard(mode);
  }
}

/// Before a protocol is known every line is dropped.
void Route(ProtocolMode& mode, const char* line) {
  if (mode.mode == xboardProtocol) HandleXBoardLine(mode.xboardState, line);
  if (mode.mode == uciProtocol) {
    uciSession.waitForInput = WaitForInput;
    HandleUciLine(mode.uciState, line);
  }
}

void HandleReadLine(ProtocolMode& mode, const char* line) {
  if (line[0] == 0) return;
  DetectProtocol(mode, line);
  Route(mode, line);
}

/// A request to terminate is followed once every waiting line was handled.
void EndIfRequested() {
  if (TerminationRequested() && pending.deferred.lines.empty() && !InputWaits(Reader()))
    std::exit(0);
}

// ---- Inside a search ----

/// Whether input has ended and nobody reads the output: the interface was killed.
bool IsCutOff(LineStatus status) {
  return status == LineStatus::ended && Reader().source->outputClosed();
}

/// No more commands will come for the running search.
void EndCommands(const ProtocolMode& mode) {
  if (mode.mode == xboardProtocol) XBoardInputEnded();
  if (mode.mode == uciProtocol) UciInputEnded();
}

bool SwitchesProtocol(const ProtocolMode& mode, const char* line) {
  return mode.mode == uciProtocol ? IsXBoardWord(line) : IsUciWord(line);
}

/// Whether a line that arrived during a search has to wait for its end. Asked
/// once for each line and search, in order: the answer may end the search.
bool MustWait(const ProtocolMode& mode, DeferredCommands& deferred, const char* line) {
  if (SwitchesProtocol(mode, line)) {
    deferred.hasSwitch = true;
    // Whoever speaks the other protocol has no command to end this search.
    EndCommands(mode);
    return true;
  }
  if (mode.mode == uciProtocol) {
    if (UciLineMustWait(line, deferred.hasGo)) return true;
    return deferred.hasSwitch && !UciLineIsUrgent(line);
  }
  // Behind a switch to the other protocol the lines are no longer XBoard's.
  if (deferred.hasSwitch) return !StartsWith(line, "quit");
  return XBoardLineMustWait(line);
}

/// Handles a line that acts at once; false when it has to wait.
bool HandleDuringSearch(ProtocolMode& mode, const char* line) {
  if (MustWait(mode, pending.deferred, line)) return false;
  HandleReadLine(mode, line);
  return true;
}

/// Classifies the commands that an earlier search left behind.
void ClassifyDeferredCommands(ProtocolMode& mode) {
  DeferredCommands& deferred = pending.deferred;
  while (deferred.nClassified < deferred.lines.size() && !XBoardHasOwnLine()) {
    const auto position =
        deferred.lines.begin() + static_cast<std::ptrdiff_t>(deferred.nClassified);
    const std::string line = std::move(*position);
    if (HandleDuringSearch(mode, line.c_str())) {
      deferred.lines.erase(position);
    } else {
      *position = line;
      ++deferred.nClassified;
    }
  }
}

/// Reads what waits. While the front end itself has the next line, the rest
/// keeps its place behind that one.
void ReadDuringSearch(ProtocolMode& mode) {
  DeferredCommands& deferred = pending.deferred;
  char line[lineCapacity];
  for (int i = 0; i < maxLinesPerPoll && !XBoardHasOwnLine(); ++i) {
    // With no room left nothing is read any more: to this search that is the
    // end of its input.
    LineStatus status = LineStatus::ended;
    if (deferred.lines.size() < maxDeferredCommands) {
      status = ReadLine(Reader(), false, line);
      // Nobody waits for the answer of this search.
      if (IsCutOff(status)) std::exit(0);
    }
    if (status == LineStatus::ended) EndCommands(mode);
    if (status != LineStatus::line) return;
    if (line[0] == 0) continue;
    if (!HandleDuringSearch(mode, line)) {
      deferred.lines.emplace_back(line);
      deferred.nClassified = deferred.lines.size();
    }
  }
}

void DispatchDuringSearch(ProtocolMode& mode) {
  ClassifyDeferredCommands(mode);
  if (InputWaits(Reader())) ReadDuringSearch(mode);
  EndIfRequested();
}

// ---- Idle ----

/// An interface that crashed leaves no engine behind; otherwise the process
/// stays, without using the processor.
void PassIdleTurnAfterEnd() {
  const InputSource& source = *Reader().source;
  if (source.parentExited() || source.outputClosed()) std::exit(0);
  source.pause(endedPause);
}

/// Takes the next line: the front end's own, then deferred ones, then new input.
LineStatus TakeLine(const ProtocolMode& mode, char* line) {
  DeferredCommands& deferred = pending.deferred;
  if (mode.mode == xboardProtocol && XBoardHasOwnLine()) {
    TakeXBoardOwnLine(line, lineCapacity);
    return LineStatus::line;
  }
  if (deferred.lines.empty()) return ReadLine(Reader(), true, line);
  CopyText(line, lineCapacity, deferred.lines.front().c_str());
  deferred.lines.pop_front();
  return LineStatus::line;
}

/// Whether TakeLine need not wait.
bool LineWaits(const ProtocolMode& mode) {
  const bool ownLine = mode.mode == xboardProtocol && XBoardHasOwnLine();
  return ownLine || !pending.deferred.lines.empty() || InputWaits(Reader());
}

/// Uses the time until the next line for the memory of searches to come.
void PrefaultWhileIdle(const ProtocolMode& mode) {
  if (!mode.detected) return;
  while (!LineWaits(mode) && HashPrefaultSlice()) EndIfRequested();
}

void DispatchIdle(ProtocolMode& mode) {
  DeferredCommands& deferred = pending.deferred;
  deferred.nClassified = 0;
  deferred.hasGo = false;
  deferred.hasSwitch = false;
  char line[lineCapacity];
  const LineStatus status = TakeLine(mode, line);
  if (status == LineStatus::line) HandleReadLine(mode, line);
  EndIfRequested();
  if (status == LineStatus::ended) PassIdleTurnAfterEnd();
}

}  // namespace

void Dispatch(ProtocolMode& mode, bool poll) {
  if (poll) {
    DispatchDuringSearch(mode);
  } else {
    DispatchIdle(mode);
  }
}

void PollInput() { Dispatch(protocolMode, true); }

void RunIdleLoop(ProtocolMode& mode) {
  SystemInput();
  for (;;) {
    PrefaultWhileIdle(mode);
    Dispatch(mode, false);
    YieldTimeSlice();
  }
}

void SetInputSource(const InputSource* source) {
  pending = PendingInput{};
  pending.reader.source = source;
}

}  // namespace mirvo
