// Entry point of the benchmarks: the engine's tables come first.
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
