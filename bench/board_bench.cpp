// Move generation, making and unmaking moves, perft.
#include <benchmark/benchmark.h>

#include "bench/bench_positions.h"
#include "board/attacks.h"
#include "board/bb_move_generator.h"
#include "board/make_move.h"
#include "board/perft.h"

namespace mirvo::bench {
namespace {

void GenerateMoves(benchmark::State& state) {
  Board board;
  LoadPosition(static_cast<int>(state.range(0)), board);
  std::int64_t nMoves = 0;
  for (auto _ : state) {
    BBMoveGenerator2 generator(board, board.sideToMove);
    generator.GenerateAll();
    nMoves += generator.count;
    benchmark::DoNotOptimize(generator.moves);
  }
  state.SetLabel(benchPositions[state.range(0)].name);
  state.SetItemsProcessed(nMoves);
}
BENCHMARK(GenerateMoves)->DenseRange(0, nBenchPositions - 1);

void MakeAndUnmakeMoves(benchmark::State& state) {
  Board board;
  LoadPosition(static_cast<int>(state.range(0)), board);
  BBMoveGenerator2 generator(board, board.sideToMove);
  generator.GenerateAll();
  std::int64_t nMoves = 0;
  for (auto _ : state) {
    for (int i = 0; i < generator.count; ++i) {
      MakeMove(board, generator.moves[i]);
      benchmark::DoNotOptimize(MoverLeftInCheck(board));
      UnmakeMove(board);
    }
    nMoves += generator.count;
  }
  state.SetLabel(benchPositions[state.range(0)].name);
  state.SetItemsProcessed(nMoves);
}
BENCHMARK(MakeAndUnmakeMoves)->DenseRange(0, nBenchPositions - 1);

/// Every leaf made, tested and unmade: items are leaves.
void Perft(benchmark::State& state) {
  constexpr int depth = 4;
  Board board;
  LoadPosition(static_cast<int>(state.range(0)), board);
  std::int64_t nLeaves = 0;
  for (auto _ : state) {
    RunPerft(board, depth);
    nLeaves += static_cast<std::int64_t>(PerftCountAtDepth(depth));
  }
  state.SetLabel(benchPositions[state.range(0)].name);
  state.SetItemsProcessed(nLeaves);
}
BENCHMARK(Perft)->DenseRange(0, nBenchPositions - 1)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace mirvo::bench
