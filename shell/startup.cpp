#include "shell/startup.h"

#include <cstdio>

#include "board/attack_tables.h"
#include "book/book_random.h"
#include "book/opening_book.h"
#include "eval/king.h"
#include "protocol/dispatcher.h"
#include "search/hash/hash_allocation.h"
#include "search/hash/hash_table.h"
#include "search/reductions.h"
#include "search/search_flags.h"
#include "search/search_hooks.h"
#include "shell/base/clock.h"
#include "shell/base/output.h"
#include "shell/base/process.h"
#include "shell/command_line.h"
#include "shell/config/config.h"
#include "shell/config/config_file.h"

namespace mirvo {

constinit std::uint64_t RandomSeed = 0;

namespace {

constexpr std::uint64_t randomSeedValue = 0x8709934132ef9cd4;

/// The warm-up draws as many numbers as the clock modulo this: enough for games to
/// differ, and still done in well under a millisecond.
constexpr std::uint32_t warmUpModulus = 100000;

/// Prints a dot when a step of the sequence is done.
void ShowProgress() { Output(output, "."); }

/// Interfaces exchange lines through pipes, so nothing may stay in a buffer, not
/// even text that does not go through the print routine.
void MakeStreamsUnbuffered() {
  std::setvbuf(stdout, nullptr, _IONBF, 0);
  std::setvbuf(stdin, nullptr, _IONBF, 0);
}

/// The hash tables get memory later, when the settings are known.
void InitialiseHashRecords() {
  HashInitialise(EvalHashTable);
  HashInitialise(PawnHashTable);
  HashInitialise(TranspositionTable);
  ShowProgress();
}

void BuildTables() {
  for (const TableBuilder build : boardTableBuilders) {
    build();
    ShowProgress();
  }
  BuildKingDangerTable();
  ShowProgress();
  BuildReductionTables();
  ShowProgress();
}

/// Without memory the book stays empty and every probe fails.
void CreateBookObject() {
  CreateOpeningBook(openingBook);
  ShowProgress();
}

/// The command line comes second, so it overrides the file.
void ReadSettings(int argc, const char* const* argv) {
  ReadConfigFile(engineConfig, configFileName);
  ParseCommandLine(engineConfig, argc, argv);
  ShowProgress();
}

void SetBookFlag() {
  searchFlags.BookInUse = engineConfig.UseOpeningBook == 1;
  ShowProgress();
}

void AllocateHashTables() {
  EvalHashTable.size = static_cast<std::uint32_t>(engineConfig.EvalHashSize);
  PawnHashTable.size = static_cast<std::uint32_t>(engineConfig.PawnHashSize);
  TranspositionTable.size = static_cast<std::uint32_t>(engineConfig.TTHashSize);
  HashAllocate(EvalHashTable);
  HashAllocate(PawnHashTable);
  HashAllocate(TranspositionTable);
  RandomSeed = randomSeedValue;
  ShowProgress();
}

/// Makes book choices differ between runs, by the time of the start.
void WarmUpRandom() {
  for (std::uint32_t nSteps = TickCount() % warmUpModulus; nSteps > 0; --nSteps) NextRandom();
  ShowProgress();
}

}  // namespace

void StartUp(int argc, const char* const* argv) {
  PrepareProcess();
  searchHooks.pollInput = PollInput;
  Output(output, "Welcome to %s (%s) by %s\n", engineName, engineVersion, engineAuthor);
  MakeStreamsUnbuffered();
  Output(output, "Setup");
  InitialiseHashRecords();
  BuildTables();
  CreateBookObject();
  ReadSettings(argc, argv);
  SetBookFlag();
  AllocateHashTables();
  WarmUpRandom();
  Output(output, "Done.\n");
  if (!engineConfig.ToolRunOnly) PrintConfig(engineConfig);
}

}  // namespace mirvo
