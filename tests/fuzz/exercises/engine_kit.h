// What the exercises share: an engine made ready once, files of a scratch
// folder, and a record of everything that the engine prints.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

#include "shell/config/config.h"

namespace mirvo {

/// Builds the start-up tables and an empty book once; then, on every call,
/// settings, flags, game and hash tables are those of a fresh process with the
/// smallest hash tables, and nothing is printed on the console.
void FreshEngine();

/// What can be seen of the engine since it was made fresh: what it printed into
/// a PrintedText, the positions it stands at, what its searches counted and how
/// often it looked at the clock. The same input always leaves the same.
std::string EngineTrace();

/// A folder of this process that is removed when it ends.
const std::string& ScratchFolder();

/// Writes a file of exactly these bytes into the folder; returns its path.
std::string WriteScratchFile(const char* name, std::string_view bytes);

/// Drops what `Output` prints from its construction on; afterwards console and
/// log are used as before.
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

/// Searches of test suites go one ply deep and end at their first look at the
/// clock. Boards full of queens take their time all the same, so to a fuzzer
/// most inputs are not searched: their answers are the first legal moves.
void LimitSearches(EngineConfig& config, std::string_view input);

/// Lines of `text` that begin with `prefix`.
int CountLines(std::string_view text, std::string_view prefix);

}  // namespace mirvo
