// An interface that talks to the engine: lines that arrive while the engine is
// idle, at polls of a search and while a best move is delayed. Searches are real
// but short.
#pragma once

#include <string>

#include "board/board.h"
#include "tests/fuzz/exercises/exercises.h"

namespace mirvo {

/// What an interface sends, step by step.
class ScriptedInterface {
 public:
  virtual ~ScriptedInterface() = default;
  /// Text (mostly one line with its end) for an idle engine. False when the
  /// interface has nothing more to send.
  virtual bool SayWhileIdle(std::string& text) = 0;
  /// The same at a poll of a search, or while its best move is delayed; an empty text
  /// sends nothing this time.
  virtual bool SayDuringSearch(std::string& text) = 0;
  /// A search of the position begins. Null when the interface has the same position.
  virtual BrokenPromise JudgePosition(const Board&) { return nullptr; }
};

struct SessionCounts {
  int nSearches = 0;  // begun
  int nAnswers = 0;   // lines "bestmove"
  int nReady = 0;     // lines "readyok"
  int nMoves = 0;     // lines "move"
};

/// Runs a session from its first line to the end of input, under a protocol or, with
/// noProtocol, before one is known.
BrokenPromise RunSession(ScriptedInterface& interface, std::uint32_t protocol,
                         SessionCounts& counts);

/// Searches begun by the session that runs.
int SearchesBegun();

/// Replaces a line that would end the process, use much memory or search for ever.
std::string HarmlessLine(std::string line);

}  // namespace mirvo
