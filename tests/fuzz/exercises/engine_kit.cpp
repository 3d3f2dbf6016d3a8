#include "tests/fuzz/exercises/engine_kit.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <functional>
#include <memory>
#include <random>

#include "board/attack_tables.h"
#include "board/fen.h"
#include "book/book_random.h"
#include "book/opening_book.h"
#include "eval/king.h"
#include "protocol/dispatcher.h"
#include "protocol/game_board.h"
#include "protocol/uci_session.h"
#include "protocol/xboard_game.h"
#include "protocol/xboard_ponder.h"
#include "search/game_counters.h"
#include "search/hash/hash_allocation.h"
#include "search/hash/hash_table.h"
#include "search/move_order.h"
#include "search/pondering.h"
#include "search/reductions.h"
#include "search/search_flags.h"
#include "search/search_hooks.h"
#include "search/search_stats.h"
#include "search/time_control.h"
#include "shell/base/clock.h"
#include "shell/base/output.h"
#include "shell/config/config.h"
#include "tests/fuzz/exercises/exercises.h"

namespace mirvo {
namespace {

/// The clock advances by 1 ms per reading, and by an hour between two inputs, so
/// that what the engine does at most once a second is due again.
constexpr std::uint32_t hour = 3600000;
std::uint32_t ticks = 0;
std::uint32_t firstTick = 0;
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

/// A hash table of a few slots: fast to clear, and positions soon compete for a
/// slot.
struct SmallTable {
  static constexpr std::uint32_t nSlots = 256;
  HashEntry slots[nSlots];
  std::uint8_t tags[nSlots];

  /// Replaces the table's slots by these, emptied, so that results do not depend on
  /// earlier inputs.
  void LendTo(HashTable& table) {
    if (table.block != nullptr) HashRelease(table);
    std::memset(static_cast<void*>(slots), 0, sizeof slots);
    std::memset(tags, 0, sizeof tags);
    table = HashTable{};
    table.size = nSlots;
    table.reciprocal = HashReciprocal(nSlots);
    table.entries = slots;
    table.tags = tags;
  }
};

/// Most entries that the books of one input use.
constexpr std::size_t nBookEntries = 128;

/// Restores the book as it was created.
void EmptyBook() {
  if (openingBook.entries == nullptr) return;
  const OpeningBook fresh;
  openingBook.loaded = fresh.loaded;
  openingBook.count = fresh.count;
  openingBook.maxPlies = fresh.maxPlies;
  openingBook.minHits = fresh.minHits;
  ResetBookIndex(openingBook.index);
  std::memset(static_cast<void*>(openingBook.entries), 0, nBookEntries * sizeof(BookEntry));
}

void LendTables() {
  static SmallTable tables[3];
  tables[0].LendTo(TranspositionTable);
  tables[1].LendTo(PawnHashTable);
  tables[2].LendTo(EvalHashTable);
}

void PrepareOnce() {
  static bool prepared = false;
  if (prepared) return;
  prepared = true;
  InitAttackTables();
  BuildKingDangerTable();
  BuildReductionTables();
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
  gameCounters = GameCounters{};
  timeControl = TimeControl{};
  LendTables();
}

/// Holds what was printed since the file was last rewound.
std::FILE* printedFile = nullptr;

std::string PrintedBytes() {
  if (printedFile == nullptr) return "";
  const auto length = static_cast<std::size_t>(std::ftell(printedFile));
  std::string text(length, '\0');
  std::rewind(printedFile);
  text.resize(std::fread(text.data(), 1, length, printedFile));
  std::fseek(printedFile, 0, SEEK_CUR);
  return text;
}

}  // namespace

void FreshEngine() {
  PrepareOnce();
  static const auto defaults = std::make_unique<EngineConfig>();
  const bool ranBookTool = engineConfig.ToolRunOnly;
  std::construct_at(&engineConfig, *defaults);
  engineConfig.Quiet = true;
  engineConfig.TTHashSize = engineConfig.PawnHashSize = engineConfig.EvalHashSize = 1;
  std::snprintf(bookFileOptionText, bookNameCapacity, "unique2.bin");
  if (ranBookTool) EmptyBook();
  ResetRandom();
  firstTick = ticks += hour;
  SetTickSource(CountTicks);
  if (printedFile != nullptr) std::rewind(printedFile);
  FreshGame();
  FreshSearch();
}

std::string EngineTrace() {
  const SearchStats& stats = searchStats;
  char figures[256];
  std::snprintf(figures, sizeof figures,
                "keys %016llx %016llx, nodes %d + %d, %d extended, clock %u\n",
                static_cast<unsigned long long>(gameBoard.positionKey),
                static_cast<unsigned long long>(engineConfig.CommandLineBoard.positionKey),
                stats.nNodes, stats.nQSNodes, stats.nExt, ticks - firstTick);
  return figures + PrintedBytes();
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

Silence::Silence() : formerLog(output.log), formerConsole(output.toConsole) {
  output.log = nullptr;
  output.toConsole = 0;
}

Silence::~Silence() {
  output.log = formerLog;
  output.toConsole = formerConsole;
}

PrintedText::PrintedText() {
  if (printedFile == nullptr) {
    printedFile = std::fopen((ScratchFolder() + "/printed").c_str(), "w+b");
  }
  output.log = printedFile;
  std::rewind(printedFile);
}

std::string PrintedText::Text() const { return PrintedBytes(); }

void LimitSearches(EngineConfig& config, std::string_view input) {
  constexpr unsigned inputsPerSearch = 256;
  const bool searches = thorough || std::hash<std::string_view>{}(input) % inputsPerSearch == 0;
  config.DepthSearch = std::min(config.DepthSearch, searches ? 1 : 0);
  config.InfiniteThinkingTime = 0;
  config.FixedTimePerMove = 0;
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
