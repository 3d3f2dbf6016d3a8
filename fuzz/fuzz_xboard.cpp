// Fuzzer: invented lines for the XBoard front end with the real search. A line
// arrives at each poll of a search and whenever nothing runs.
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <string>
#include <string_view>

#include "eval/evaluate.h"
#include "fuzz/fuzz_input.h"
#include "protocol/game_board.h"
#include "protocol/xboard.h"
#include "protocol/xboard_game.h"
#include "protocol/xboard_ponder.h"
#include "search/hash_table.h"
#include "search/reductions.h"
#include "search/search_flags.h"
#include "search/search_hooks.h"
#include "shell/clock.h"
#include "shell/config.h"

namespace mirvo {
namespace {

std::string_view left;
std::deque<std::string> waiting;

/// The next line of the input; "quit" would end the fuzzer.
std::string NextLine() {
  const std::size_t end = left.find('\n');
  std::string line(left.substr(0, end));
  left = end == std::string_view::npos ? std::string_view() : left.substr(end + 1);
  line.resize(line.find('\0') == std::string::npos ? line.size() : line.find('\0'));
  return line.starts_with("quit") ? std::string() : line;
}

void Handle(const std::string& line) {
  std::uint8_t state = 0;
  HandleXBoardLine(state, line.c_str());
}

void Poll() {
  if (left.empty()) {
    searchFlags.StopSearch = 1;
    XBoardInputEnded();
    return;
  }
  const std::string line = NextLine();
  if (XBoardLineMustWait(line.c_str())) {
    waiting.push_back(line);
  } else {
    Handle(line);
  }
}

std::uint32_t CountTicks() {
  static std::uint32_t ticks = 0;
  return ++ticks;
}

void PrepareEngine() {
  static bool prepared = false;
  if (prepared) return;
  prepared = true;
  PrepareFuzzing();
  BuildKingDangerTable();
  BuildReductionTables();
  for (HashTable* table : {&TranspositionTable, &PawnHashTable, &EvalHashTable}) {
    HashInitialise(*table);
    table->size = 1;
    HashAllocate(*table);
  }
  engineConfig.Quiet = 1;
  engineConfig.DepthSearch = 2;
  searchHooks.pollInput = Poll;
  SetTickSource(CountTicks);
}

std::string IdleLine() {
  if (XBoardHasOwnLine()) {
    char line[32];
    TakeXBoardOwnLine(line, sizeof line);
    return line;
  }
  if (waiting.empty()) return NextLine();
  std::string line = waiting.front();
  waiting.pop_front();
  return line;
}

}  // namespace
}  // namespace mirvo

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace mirvo;
  PrepareEngine();
  left = {reinterpret_cast<const char*>(data), size};
  Handle("new");
  while (XBoardHasOwnLine() || !waiting.empty() || !left.empty()) {
    Handle(IdleLine());
    const bool settled = searchFlags.pondering == 0 && xboardPonder.searchAbandoned == 0 &&
                         xboardPonder.ponderMiss == xboardPonder.PendingMove;
    if (!settled) std::abort();
  }
  return 0;
}
