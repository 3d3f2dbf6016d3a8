// Entry point of the benchmarks: first builds the engine's tables.
#include <benchmark/benchmark.h>

#include "bench/bench_positions.h"

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  mirvo::bench::PrepareEngine();
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
