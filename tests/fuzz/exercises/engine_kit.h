// Helpers for the exercises: an engine that is initialised once, files in a scratch
// folder, and a record of everything that the engine prints.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

#include "shell/config/config.h"

namespace mirvo {

/// Builds the start-up tables and an empty book once. Every call resets settings,
/// flags, game and hash tables to those of a new process with the smallest tables
/// and silences the console.
void FreshEngine();

/// What the engine did since FreshEngine: its output into a PrintedText, its
/// positions, the counts of its searches and the number of clock readings. The same
/// input always gives the same trace.
std::string EngineTrace();

/// A folder for this process, removed at its end.
const std::string& ScratchFolder();

/// Writes a file of exactly these bytes into the folder; returns its path.
std::string WriteScratchFile(const char* name, std::string_view bytes);

/// Suppresses what `Output` prints during the object's lifetime.
class Silence {
 public:
  Silence();
  ~Silence();
  Silence(const Silence&) = delete;
  Silence& operator=(const Silence&) = delete;

 private:
  std::FILE* const formerLog;
  const std::int32_t formerConsole;
};

/// The same, but keeps it.
class PrintedText : Silence {
 public:
  PrintedText();

  /// Everything so far.
  std::string Text() const;
};

/// Limits searches of test suites to one ply and the first reading of the clock.
/// Boards full of queens still take long, so under a fuzzer most inputs are not
/// searched: their answers are the first legal moves.
void LimitSearches(EngineConfig& config, std::string_view input);

/// Lines of `text` that begin with `prefix`.
int CountLines(std::string_view text, std::string_view prefix);

}  // namespace mirvo
