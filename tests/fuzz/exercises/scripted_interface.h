// An interface at the other end of the engine's input: lines that arrive while
// nothing runs, at polls of a search and while an answer is withheld, and what
// the engine does in return. Searches are real but short.
#pragma once

#include <string>

#include "board/board.h"
#include "tests/fuzz/exercises/exercises.h"

namespace mirvo {

/// What an interface says, step by step.
class ScriptedInterface {
 public:
  virtual ~ScriptedInterface() = default;
  /// Text (mostly one line with its end) for an engine that waits for it. False
  /// when the interface has nothing more to say.
  virtual bool SayWhileIdle(std::string& text) = 0;
  /// The same at a poll of a search, or while a finished search waits; an empty
  /// text says nothing at this one.
  virtual bool SayDuringSearch(std::string& text) = 0;
  /// A search of the position begins. Null when it is the one that the
  /// interface believes in.
  virtual BrokenPromise JudgePosition(const Board&) { return nullptr; }
};

struct SessionCounts {
  int nSearches = 0;  // begun
  int nAnswers = 0;   // lines "bestmove"
  int nReady = 0;     // lines "readyok"
  int nMoves = 0;     // lines "move"
};

/// Runs a session from its first line to the end of input. The protocol is
/// known from the start unless it is noProtocol.
BrokenPromise RunSession(ScriptedInterface& interface, std::uint32_t protocol,
                         SessionCounts& counts);

/// Searches begun by the session that runs.
int SearchesBegun();

/// A line that would end the process, take much memory or search for ever is
/// changed into a harmless one.
std::string HarmlessLine(std::string line);

}  // namespace mirvo
