// Static exchange, hash probes, and whole searches of fixed depth.
#include <benchmark/benchmark.h>

#include "bench/bench_positions.h"
#include "board/bb_move_generator.h"
#include "search/iterate.h"
#include "search/search_stats.h"
#include "search/static_exchange.h"
#include "shell/config/config.h"

namespace mirvo::bench {
namespace {

constexpr int searchDepth = 8;

void StaticExchangeOfCaptures(benchmark::State& state) {
  Board board;
  LoadPosition(static_cast<int>(state.range(0)), board);
  BBMoveGenerator2 generator(board, board.sideToMove);
  generator.GenerateCaptures();
  std::int64_t nCaptures = 0;
  for (auto _ : state) {
    for (int i = 0; i < generator.count; ++i) {
      const Move move = generator.moves[i];
      benchmark::DoNotOptimize(StaticExchange(board, move, CaptureVictim(board, move)));
    }
    nCaptures += generator.count;
  }
  state.SetLabel(benchPositions[state.range(0)].name);
  state.SetItemsProcessed(nCaptures);
}
BENCHMARK(StaticExchangeOfCaptures)->DenseRange(1, 4);

/// Random keys in a full-size table: mostly waiting for memory.
void ProbeTranspositionTable(benchmark::State& state) {
  std::uint64_t key = 0x9E3779B97F4A7C15;
  Move move = noMove;
  std::int32_t score = 0;
  for (auto _ : state) {
    key = key * 6364136223846793005 + 1442695040888963407;
    benchmark::DoNotOptimize(
        HashProbe(TranspositionTable, key >> 16, move, score, -infiniteScore, infiniteScore, 4));
  }
}
BENCHMARK(ProbeTranspositionTable);

/// A search from empty tables without clock, book and input; the tables' memory is
/// already in use, so the figure does not include page faults.
void SearchFixedDepth(benchmark::State& state) {
  engineConfig.InfiniteThinkingTime = 1;
  engineConfig.DepthSearch = searchDepth;
  double nNodes = 0;
  Board board;
  for (auto _ : state) {
    state.PauseTiming();
    ForgetEverything();
    LoadPosition(static_cast<int>(state.range(0)), board);
    state.ResumeTiming();
    SearchRecord record = PrepareSearch(board);
    benchmark::DoNotOptimize(Think(record));
    nNodes += record.state.nodeCount;
  }
  state.SetLabel(benchPositions[state.range(0)].name);
  state.counters["nodes"] = benchmark::Counter(nNodes, benchmark::Counter::kAvgIterations);
  state.counters["nodes/s"] = benchmark::Counter(nNodes, benchmark::Counter::kIsRate);
}
BENCHMARK(SearchFixedDepth)->DenseRange(0, nBenchPositions - 1)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace mirvo::bench
