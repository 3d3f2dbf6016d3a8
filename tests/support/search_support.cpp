#include "tests/support/search_support.h"

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <sstream>

#include "board/attack_tables.h"
#include "board/fen.h"
#include "board/notation.h"
#include "eval/king.h"
#include "search/hash/hash_allocation.h"
#include "search/hash/hash_memory.h"
#include "search/hash/hash_table.h"
#include "search/iterate.h"
#include "search/move_order.h"
#include "search/pondering.h"
#include "search/reductions.h"
#include "search/search_flags.h"
#include "search/search_hooks.h"
#include "search/search_stats.h"
#include "shell/base/protocol_mode.h"
#include "shell/config/config.h"

namespace mirvo::test {
namespace {

void AllocateTable(HashTable& table, std::int32_t megabytes) {
  table.size = static_cast<std::uint32_t>(megabytes);
  HashAllocate(table);
}

}  // namespace

void PrepareEngine() {
  static const bool prepared = [] {
    InitAttackTables();
    BuildKingDangerTable();
    BuildReductionTables();
    return true;
  }();
  (void)prepared;
}

void SetTableSizes(std::int32_t megabytes) {
  engineConfig.EvalHashSize = megabytes;
  engineConfig.PawnHashSize = megabytes;
  engineConfig.TTHashSize = megabytes;
}

void SetDefaultTableSizes() {
  static const auto defaults = std::make_unique<EngineConfig>();
  engineConfig.EvalHashSize = defaults->EvalHashSize;
  engineConfig.PawnHashSize = defaults->PawnHashSize;
  engineConfig.TTHashSize = defaults->TTHashSize;
}

void ColdStart() {
  PrepareEngine();
  // Fresh zeroed blocks are cheaper than clearing every slot.
  AllocateTable(EvalHashTable, engineConfig.EvalHashSize);
  AllocateTable(PawnHashTable, engineConfig.PawnHashSize);
  AllocateTable(TranspositionTable, engineConfig.TTHashSize);
  // Without this a search would check clock and input more often.
  HashPrefaultAll();
  ResetHashCounters();
  ClearKillers();
  ClearHistory();
  ClearPreviousPv();
  searchStats = SearchStats{};
  searchFlags = SearchFlags{};
  searchHooks = SearchHooks{};
  ponderStats = PonderStats{};
  protocolMode = ProtocolMode{};
}

void SetPosition(Board& board, const std::string& text) {
  std::istringstream words(text);
  std::string placement;
  words >> placement;
  if (placement != "startpos") {
    std::string side;
    std::string castling;
    words >> side >> castling;
    BeginFromFen(placement.c_str(), side.c_str(), castling.c_str(), board);
    return;
  }
  BeginFromStart(board);
  std::string move;
  words >> move;  // "moves"
  while (words >> move) PlayCoordinateMove(move.c_str(), board, board.sideToMove);
}

std::vector<std::string> SplitLines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

std::vector<std::string> SearchToDepth(Board& board, int depth, SearchResult& result) {
  engineConfig.InfiniteThinkingTime = 1;
  engineConfig.DepthSearch = depth;
  protocolMode.mode = uciProtocol;
  SearchRecord record = PrepareSearch(board);
  testing::internal::CaptureStdout();
  result = Think(record);
  std::vector<std::string> lines;
  for (const std::string& line : SplitLines(testing::internal::GetCapturedStdout())) {
    if (line.starts_with("info currmove")) continue;
    const std::size_t time = line.find(" time ");
    if (!line.starts_with("info")) {
      lines.push_back(line);
    } else if (time != std::string::npos) {
      const std::size_t score = line.find(" score ");
      const std::size_t speed = line.find(" nps ");
      const std::size_t pv = line.find(" pv ");
      lines.push_back(line.substr(5, time - 5) + line.substr(score, speed - score) +
                      line.substr(pv));
    }
  }
  return lines;
}

std::vector<std::string> StatisticsLines() {
  testing::internal::CaptureStdout();
  PrintSearchStats();
  return SplitLines(testing::internal::GetCapturedStdout());
}

std::vector<std::string> ReferenceLines(const std::string& name) {
  std::ifstream file(std::string(MIRVO_SOURCE_DIR) + "/tests/data/reference/" + name);
  EXPECT_TRUE(file.good()) << name;
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  return lines;
}

std::string MoveText(Move move) {
  if (move == noMove) return "0000";
  char text[moveTextCapacity];
  MoveToCoordinates(move, text);
  return text;
}

}  // namespace mirvo::test
