// The static evaluation with and without its caches.
#include <benchmark/benchmark.h>

#include "bench/bench_positions.h"
#include "eval/evaluate.h"
#include "shell/config/config.h"

namespace mirvo::bench {
namespace {

/// Removes one position from a cache, so that the next probe fails.
void Forget(HashTable& table, std::uint64_t key) { HashSlot(table, key).key = 0; }

/// No cache has the position. The pawn key is private to the evaluation, so it is
/// read from the one slot that a first evaluation fills in a small table.
void EvaluateCold(benchmark::State& state) {
  Board board;
  LoadPosition(static_cast<int>(state.range(0)), board);
  EvalRecord record;
  EmptyTable(PawnHashTable, 0);  // the smallest table there is
  Forget(EvalHashTable, board.positionKey);
  Evaluate(record, board, board.sideToMove);
  const HashTable filled = PawnHashTable;
  std::uint64_t pawnKey = 0;
  for (std::uint32_t i = 0; i < filled.size; ++i) {
    if (filled.entries[i].key != 0) pawnKey = filled.entries[i].key;
  }
  for (auto _ : state) {
    Forget(EvalHashTable, board.positionKey);
    Forget(PawnHashTable, pawnKey);
    benchmark::DoNotOptimize(Evaluate(record, board, board.sideToMove));
  }
  EmptyTable(PawnHashTable, engineConfig.PawnHashSize);
  state.SetLabel(benchPositions[state.range(0)].name);
}
BENCHMARK(EvaluateCold)->DenseRange(0, nBenchPositions - 1);

/// The pawn cache has the structure, the evaluation cache not the position: the usual
/// case.
void EvaluateKnownPawns(benchmark::State& state) {
  Board board;
  LoadPosition(static_cast<int>(state.range(0)), board);
  EvalRecord record;
  for (auto _ : state) {
    Forget(EvalHashTable, board.positionKey);
    benchmark::DoNotOptimize(Evaluate(record, board, board.sideToMove));
  }
  state.SetLabel(benchPositions[state.range(0)].name);
}
BENCHMARK(EvaluateKnownPawns)->DenseRange(0, nBenchPositions - 1);

/// The whole score is in the cache.
void EvaluateWarm(benchmark::State& state) {
  Board board;
  LoadPosition(static_cast<int>(state.range(0)), board);
  EvalRecord record;
  for (auto _ : state) benchmark::DoNotOptimize(Evaluate(record, board, board.sideToMove));
  state.SetLabel(benchPositions[state.range(0)].name);
}
BENCHMARK(EvaluateWarm)->DenseRange(0, nBenchPositions - 1);

}  // namespace
}  // namespace mirvo::bench
