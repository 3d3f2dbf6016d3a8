#include "protocol/uci.h"

#include <cstdlib>
#include <cstring>

#include "board/fen.h"
#include "eval/evaluate.h"
#include "protocol/game_board.h"
#include "protocol/uci_go.h"
#include "protocol/uci_options.h"
#include "protocol/uci_position.h"
#include "protocol/uci_session.h"
#include "search/hash/hash_memory.h"
#include "search/hash/hash_table.h"
#include "search/move_order.h"
#include "search/search_flags.h"
#include "shell/base/output.h"
#include "shell/base/text.h"

namespace mirvo {

UciSession uciSession;

namespace {

/// `rest` is the text after the command word and one more character.
using Action = void (*)(UciSession& session, const char* rest);

/// When a command that arrives during a search acts.
enum class Timing {
  atOnce,     // needs neither board nor search
  onSearch,   // at once, and again for a "go" that waits
  afterward,  // needs the board or a search of its own
};

struct Command {
  const char* word;
  Timing timing;
  Action action;
  void (*flag)() = nullptr;  // its effect on the running search, for onSearch
};

void FlagStop() { searchFlags.StopSearch = true; }

/// Only the flag that a search reads: the hit is counted, reported and timed once, for
/// the "go" that it follows.
void FlagPonderHit() { searchFlags.pondering = false; }

/// Clears the slots and their statistics.
void ClearTranspositionTable() {
  HashResetSearch(TranspositionTable);
  TranspositionTable.hits = 0;
  TranspositionTable.misses = 0;
  TranspositionTable.conflicts = 0;
  TranspositionTable.stores = 0;
}

void NewGame(UciSession& session, const char*) {
  session.bestMovePending = false;
  BeginFromStart(gameBoard);
  ClearHistory();
  ClearTranspositionTable();
  HashPrefaultFor(newGamePrefaultTime);
  // Even without a book; then the first probe fails and resets this.
  searchFlags.BookInUse = true;
}

/// The interface waits for the answer, so this is a good time to prefault memory.
void PrefaultBeforeAnswer(std::int32_t milliseconds) {
  if (!searchFlags.searching) HashPrefaultFor(milliseconds);
}

void Identify(UciSession&, const char*) {
  Output(output, "id name %s %s\n", engineName, engineVersion);
  Output(output, "id author %s\n", engineAuthor);
  PrintUciOptions();
  PrefaultBeforeAnswer(identifyPrefaultTime);
  Output(output, "uciok\n");
}

void ReportReady(UciSession&, const char*) {
  PrefaultBeforeAnswer(readyPrefaultTime);
  Output(output, "readyok\n");
}

void Position(UciSession& session, const char* rest) {
  session.bestMovePending = false;
  SetUpPosition(session, gameBoard, rest);
}

[[noreturn]] void Quit(UciSession&, const char*) { std::exit(0); }

void StopSearching(UciSession& session, const char*) { Stop(session); }

void HitPonderMove(UciSession& session, const char*) { PonderHitCommand(session); }

void SetOption(UciSession&, const char* rest) { SetUciOption(rest); }

void EvaluateBoard(UciSession&, const char*) {
  EvalRecord record{};
  Output(output, "Full eval: %d\n", Evaluate(record, gameBoard, gameBoard.sideToMove));
}

/// The first entry that a line starts with decides.
constexpr Command commands[] = {
    {"ucinewgame", Timing::afterward, NewGame},
    {"uci", Timing::atOnce, Identify},
    {"isready", Timing::atOnce, ReportReady},
    {"position", Timing::afterward, Position},
    {"quit", Timing::atOnce, Quit},
    {"stop", Timing::onSearch, StopSearching, FlagStop},
    {"go", Timing::afterward, Go},
    {"ponderhi", Timing::onSearch, HitPonderMove, FlagPonderHit},
    {"setoption name", Timing::afterward, SetOption},
    {"eval", Timing::afterward, EvaluateBoard},
};

const Command* FindCommand(const char* line) {
  for (const Command& command : commands) {
    if (StartsWith(line, command.word)) return &command;
  }
  return nullptr;
}

}  // namespace

void HandleUciLine(std::uint8_t&, const char* line) {
  const Command* command = FindCommand(line);
  if (command == nullptr) return;
  const char* rest = line + std::strlen(command->word);
  command->action(uciSession, *rest == 0 ? rest : rest + 1);
}

LineTiming ClassifyUciLine(const char* line, bool& hasGo) {
  const Command* command = FindCommand(line);
  if (command == nullptr || command->timing == Timing::atOnce) return LineTiming::atOnce;
  if (command->timing == Timing::onSearch) {
    if (!hasGo) return LineTiming::atOnce;
    command->flag();
    return LineTiming::afterSearch;
  }
  if (command->action == Go) {
    hasGo = true;
    EndSearchWithoutEnd(uciSession);
  }
  return LineTiming::afterSearch;
}

bool UciLineIsUrgent(const char* line) {
  const Command* command = FindCommand(line);
  return command != nullptr && command->timing != Timing::afterward && command->action != Identify;
}

void UciInputEnded() { EndSearchWithoutEnd(uciSession); }

void UciLeave() { uciSession.bestMovePending = false; }

}  // namespace mirvo
