// Usage reports of the three tables.
#include <cmath>
#include <cstdio>

#include "search/hash/hash_table.h"
#include "shell/base/output.h"

namespace mirvo {

namespace {

struct PercentText {
  char text[32];
};

// A percentage with two decimals. C libraries print NaN in different ways; every build
// of this engine prints "-nan".
PercentText FormatPercent(double percent) {
  PercentText result{"-nan"};
  if (!std::isnan(percent)) std::snprintf(result.text, sizeof result.text, "%.2f", percent);
  return result;
}

}  // namespace

void PrintCacheUsage(const HashTable& table) {
  const std::uint32_t total = table.hits + table.misses + table.conflicts;
  // For an unused table the line shows the result of dividing by zero.
  const float fraction = 1.0F / static_cast<float>(total);
  const auto percent = [fraction](std::uint32_t count) {
    return FormatPercent(static_cast<double>(static_cast<float>(count) * fraction * 100.0F));
  };
  Output(output, "Cache usage: hits=%d(%s%%) misses=%d(%s%%) conflicts=%d(%s%%)\n",
         static_cast<std::int32_t>(table.hits), percent(table.hits).text,
         static_cast<std::int32_t>(table.misses), percent(table.misses).text,
         static_cast<std::int32_t>(table.conflicts), percent(table.conflicts).text);
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
