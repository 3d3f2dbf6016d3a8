#include "tests/fuzz/exercises/engine_kit.h"

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <random>

#include "board/attack_tables.h"
#include "board/fen.h"
#include "book/opening_book.h"
#include "eval/king.h"
#include "protocol/dispatcher.h"
#include "protocol/game_board.h"
#include "protocol/uci_session.h"
#include "protocol/xboard_game.h"
#include "protocol/xboard_ponder.h"
#include "search/hash_table.h"
#include "search/move_order.h"
#include "search/pondering.h"
#include "search/reductions.h"
#include "search/search_flags.h"
#include "search/search_hooks.h"
#include "search/search_stats.h"
#include "shell/clock.h"
#include "shell/config.h"
#include "shell/output.h"

namespace mirvo {
namespace {

/// Every look at the clock is a millisecond.
std::uint32_t ticks = 0;
std::uint32_t CountTicks() { return ++ticks; }

struct Folder {
  Folder()
      : path((std::filesystem::temp_directory_path() /
              ("mirvo_fuzz_" + std::to_string(std::random_device{}())))
                 .string()) {
    std::filesystem::create_directories(path);
  }
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  std::string path;
};

/// A table of the smallest size, and empty: results may not depend on what
/// earlier inputs left behind.
void EmptyTable(HashTable& table) {
  if (table.entries == nullptr || table.size != minHashSlots) {
    table.size = 1;
    HashAllocate(table);
    return;
  }
  std::memset(static_cast<void*>(table.entries), 0, sizeof(HashEntry) * table.size);
  std::memset(table.tags, 0, table.size);
  table.hits = table.misses = table.conflicts = table.stores = 0;
}

void PrepareOnce() {
  static bool prepared = false;
  if (prepared) return;
  prepared = true;
  InitAttackTables();
  BuildKingDangerTable();
  BuildReductionTables();
  for (HashTable* table : {&TranspositionTable, &PawnHashTable, &EvalHashTable}) {
    HashInitialise(*table);
  }
  CreateOpeningBook(openingBook);
}

void FreshGame() {
  BeginFromStart(gameBoard);
  ReleaseRecord(xboardGame.record);
  xboardGame = XBoardGame{};
  xboardPonder = XBoardPonder{};
  uciSession = UciSession{};
  protocolMode = ProtocolMode{};
  ponderStats = PonderStats{};
}

void FreshSearch() {
  searchFlags = SearchFlags{};
  searchHooks = SearchHooks{};
  searchStats = SearchStats{};
  ClearKillers();
  ClearHistory();
  ClearPreviousPv();
  for (HashTable* table : {&TranspositionTable, &PawnHashTable, &EvalHashTable}) {
    EmptyTable(*table);
  }
}

std::FILE* printedFile = nullptr;
std::FILE* formerLog = nullptr;
std::int32_t formerConsole = 1;

}  // namespace

void FreshEngine() {
  PrepareOnce();
  static const auto defaults = std::make_unique<EngineConfig>();
  engineConfig = *defaults;
  engineConfig.Quiet = 1;
  engineConfig.TTHashSize = engineConfig.PawnHashSize = engineConfig.EvalHashSize = 1;
  std::snprintf(bookFileOptionText, bookNameCapacity, "unique2.bin");
  if (openingBook.count > 0) {
    openingBook.count = 0;
    ResetBookIndex(openingBook.index);
  }
  ticks = 0;
  SetTickSource(CountTicks);
  FreshGame();
  FreshSearch();
}

const std::string& ScratchFolder() {
  static const Folder folder;
  return folder.path;
}

std::string WriteScratchFile(const char* name, std::string_view bytes) {
  std::string path = ScratchFolder() + "/" + name;
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) return path;
  std::fwrite(bytes.data(), 1, bytes.size(), file);
  std::fclose(file);
  return path;
}

PrintedText::PrintedText() {
  if (printedFile == nullptr) {
    printedFile = std::fopen((ScratchFolder() + "/printed").c_str(), "w+b");
  }
  formerLog = output.log;
  formerConsole = output.toConsole;
  output.log = printedFile;
  output.toConsole = 0;
  std::rewind(printedFile);
}

PrintedText::~PrintedText() {
  output.log = formerLog;
  output.toConsole = formerConsole;
}

std::string PrintedText::Text() const {
  const auto length = static_cast<std::size_t>(std::ftell(printedFile));
  std::string text(length, '\0');
  std::rewind(printedFile);
  text.resize(std::fread(text.data(), 1, length, printedFile));
  std::fseek(printedFile, 0, SEEK_CUR);
  return text;
}

int CountLines(std::string_view text, std::string_view prefix) {
  int n = 0;
  while (!text.empty()) {
    if (text.starts_with(prefix)) ++n;
    const std::size_t end = text.find('\n');
    if (end == std::string_view::npos) break;
    text.remove_prefix(end + 1);
  }
  return n;
}

}  // namespace mirvo
