// Usage reports of the three tables.
#include "search/hash_table.h"
#include "shell/output.h"

namespace mirvo {

void PrintCacheUsage(const HashTable& table) {
  const std::uint32_t total = table.hits + table.misses + table.conflicts;
  // An unused table has no meaningful percentages; the line shows what the
  // division by zero gives.
  const float fraction = 1.0F / static_cast<float>(total);
  const auto percent = [fraction](std::uint32_t count) {
    return static_cast<double>(static_cast<float>(count) * fraction * 100.0F);
  };
  Output(output, "Cache usage: hits=%d(%.2f%%) misses=%d(%.2f%%) conflicts=%d(%.2f%%)\n",
         static_cast<std::int32_t>(table.hits), percent(table.hits),
         static_cast<std::int32_t>(table.misses), percent(table.misses),
         static_cast<std::int32_t>(table.conflicts), percent(table.conflicts));
}

void PrintHashReport(bool quiet) {
  if (quiet) return;
  Output(output, "Eval hash: ");
  PrintCacheUsage(EvalHashTable);
  Output(output, "Pawn hash: ");
  PrintCacheUsage(PawnHashTable);
  Output(output, "TT:        ");
  PrintCacheUsage(TranspositionTable);
}

void ResetHashCounters() {
  HashTable* const tables[] = {&EvalHashTable, &PawnHashTable, &TranspositionTable};
  for (HashTable* table : tables) {
    table->hits = 0;
    table->conflicts = 0;
    table->misses = 0;
  }
}

}  // namespace mirvo
