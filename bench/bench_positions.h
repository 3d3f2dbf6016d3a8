// The positions of the benchmarks, and their common set-up.
#pragma once

#include "board/board.h"
#include "search/hash/hash_table.h"

namespace mirvo::bench {

/// One position as the first three FEN fields.
struct BenchPosition {
  const char* name;
  const char* placement;
  const char* side;
  const char* castling;
};

inline constexpr int nBenchPositions = 6;

/// From the opening to a pawn ending.
extern const BenchPosition benchPositions[nBenchPositions];

/// Loads position `index` into `board`, key and key history included.
void LoadPosition(int index, Board& board);

/// Replaces a hash table's memory by a zeroed block, which is faster than clearing.
void EmptyTable(HashTable& table, std::int32_t megabytes);

/// Builds every start-up table, allocates the hash tables, silences the output.
void PrepareEngine();

/// Clears the tables, killers, history and previous line.
void ForgetEverything();

}  // namespace mirvo::bench
