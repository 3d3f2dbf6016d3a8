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

/// Sleep of an idle turn after the end of input, and between two polls of the input
/// while a best move is delayed.
constexpr std::uint32_t endedPause = 10;   // ms
constexpr std::uint32_t delayedPause = 5;  // ms

/// Most lines that one poll reads, so that a flood of lines cannot keep the search
/// from reading the clock.
constexpr int maxLinesPerPoll = 1024;

/// Everything that has been read and not yet handled.
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

/// Polls the input once, after a short sleep, while a best move is delayed.
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

/// Either word switches the protocol on any line, not only on the first.
void DetectProtocol(ProtocolMode& mode, const char* line) {
  if (IsUciWord(line)) {
    SwitchToUci(mode);
  } else if (IsXBoardWord(line)) {
    SwitchToXBoard(mode);
  }
}

/// Ignores lines before a protocol is known.
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

/// Ends the process on a request to terminate, once every waiting line is handled.
void EndIfRequested() {
  if (TerminationRequested() && pending.deferred.lines.empty() && !InputWaits(Reader())) {
    std::exit(0);
  }
}

// ---- Inside a search ----

/// Whether input has ended and the output is closed: the interface was killed.
bool IsCutOff(LineStatus status) {
  return status == LineStatus::ended && Reader().source->outputClosed();
}

/// Tells the front end that no more commands will come for the running search.
void EndCommands(const ProtocolMode& mode) {
  if (mode.mode == xboardProtocol) XBoardInputEnded();
  if (mode.mode == uciProtocol) UciInputEnded();
}

bool SwitchesProtocol(const ProtocolMode& mode, const char* line) {
  return mode.mode == uciProtocol ? IsXBoardWord(line) : IsUciWord(line);
}

/// Classifies a line that arrived during a search. Called once for each line and
/// search, in order, because it may end the search.
LineTiming ClassifyLine(const ProtocolMode& mode, DeferredCommands& deferred, const char* line) {
  if (SwitchesProtocol(mode, line)) {
    deferred.hasSwitch = true;
    // The other protocol has no command that could end this search.
    EndCommands(mode);
    return LineTiming::afterSearch;
  }
  if (mode.mode == uciProtocol) {
    const LineTiming timing = ClassifyUciLine(line, deferred.hasGo);
    const bool behindSwitch = deferred.hasSwitch && !UciLineIsUrgent(line);
    return behindSwitch ? LineTiming::afterSearch : timing;
  }
  // After a switch to the other protocol the lines are no longer XBoard's.
  if (!deferred.hasSwitch) return ClassifyXBoardLine(line);
  return StartsWith(line, "quit") ? LineTiming::atOnce : LineTiming::afterSearch;
}

/// Handles a line if it acts at once; false when it has to wait.
bool HandleDuringSearch(ProtocolMode& mode, const char* line) {
  if (ClassifyLine(mode, pending.deferred, line) == LineTiming::afterSearch) return false;
  HandleReadLine(mode, line);
  return true;
}

/// Classifies the commands left by an earlier search.
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

/// Reads the waiting lines. While the front end itself has the next line, the others
/// stay unread, so that they follow it.
void ReadDuringSearch(ProtocolMode& mode) {
  DeferredCommands& deferred = pending.deferred;
  char line[lineCapacity];
  for (int i = 0; i < maxLinesPerPoll && !XBoardHasOwnLine(); ++i) {
    // With a full queue nothing is read, which for this search is the end of
    // input.
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

/// Ends the process if the interface has crashed; otherwise it stays, without using
/// the processor.
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

/// Whether TakeLine would return a line without waiting.
bool LineWaits(const ProtocolMode& mode) {
  const bool ownLine = mode.mode == xboardProtocol && XBoardHasOwnLine();
  return ownLine || !pending.deferred.lines.empty() || InputWaits(Reader());
}

/// Prefaults memory of the hash tables until the next line arrives.
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
