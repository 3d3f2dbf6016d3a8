// What the exercises share: an engine made ready once, files of a scratch
// folder, and a record of everything that the engine prints.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace mirvo {

/// Builds the start-up tables and an empty book once; then, on every call,
/// settings, flags, game and hash tables are those of a fresh process with the
/// smallest hash tables, and nothing is printed on the console.
void FreshEngine();

/// A folder of this process that is removed when it ends.
const std::string& ScratchFolder();

/// Writes a file of exactly these bytes into the folder; returns its path.
std::string WriteScratchFile(const char* name, std::string_view bytes);

/// Keeps what `Output` prints from its construction on; afterwards the log
/// that was there before is in use again.
class PrintedText {
 public:
  PrintedText();
  ~PrintedText();
  PrintedText(const PrintedText&) = delete;
  PrintedText& operator=(const PrintedText&) = delete;

  /// Everything so far.
  std::string Text() const;
};

/// Lines of `text` that begin with `prefix`.
int CountLines(std::string_view text, std::string_view prefix);

}  // namespace mirvo
