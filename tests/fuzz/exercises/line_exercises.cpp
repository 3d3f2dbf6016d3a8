// Sessions in one protocol, sent line by line.
#include <string>

#include "shell/base/protocol_mode.h"
#include "shell/base/text.h"
#include "tests/fuzz/exercises/exercises.h"
#include "tests/fuzz/exercises/scripted_interface.h"

namespace mirvo {
namespace {

/// The engine splits longer lines, and then a command may begin anywhere.
constexpr std::size_t longestCountedLine = 4000;

/// Sends the input line by line and counts the commands that need an answer.
class LineSender : public ScriptedInterface {
 public:
  /// `foreignWord` would switch to the other protocol. A byte-order mark would hide the
  /// first command.
  LineSender(std::string_view input, const char* foreignWord)
      : rest(WithoutByteOrderMark(input)), foreign(foreignWord) {}

  bool SayWhileIdle(std::string& text) override {
    if (rest.empty()) return false;
    const std::size_t end = rest.find('\n');
    std::string line(rest.substr(0, end));
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    for (std::size_t at; (at = line.find(foreign)) != std::string::npos;) line[at] = 'k';
    text = HarmlessLine(line);
    Count(text.c_str());
    text += '\n';
    return true;
  }

  bool SayDuringSearch(std::string& text) override { return SayWhileIdle(text); }

  int nReadyAsked = 0;
  int nGo = 0;      // requests for a search
  int nPonder = 0;  // of them those that may be declined
  bool longLine = false;

 private:
  void Count(const char* line) {
    const std::string text(line);
    longLine = longLine || text.size() > longestCountedLine;
    if (text.starts_with("isready")) ++nReadyAsked;
    if (!text.starts_with("go")) return;
    ++nGo;
    if (text.find("ponder") != std::string::npos) ++nPonder;
  }

  std::string_view rest;
  const char* foreign;
};

}  // namespace

BrokenPromise ExerciseUciLines(std::string_view input) {
  LineSender sender(input, "xboard");
  SessionCounts counts;
  if (const BrokenPromise broken = RunSession(sender, uciProtocol, counts)) return broken;
  if (counts.nAnswers != counts.nSearches) return "a search has none or two answers";
  if (sender.longLine) return nullptr;
  if (counts.nReady != sender.nReadyAsked) return "isready has none or two answers";
  if (counts.nAnswers > sender.nGo) return "an answer has no go";
  if (counts.nAnswers < sender.nGo - sender.nPonder) return "a go has no answer";
  return nullptr;
}

BrokenPromise ExerciseXBoardLines(std::string_view input) {
  LineSender sender(input, "uci");
  SessionCounts counts;
  if (const BrokenPromise broken = RunSession(sender, xboardProtocol, counts)) return broken;
  return counts.nMoves <= counts.nSearches ? nullptr : "a move was told without a search";
}

}  // namespace mirvo
