// Speed of the opening book: loading a full one, finding a position, sorting.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <random>
#include <string>

#include "book/book_file.h"
#include "book/book_writer.h"
#include "book/opening_book.h"

namespace mirvo {
namespace {

// A full book with `nMoves` moves per position, keys ascending as in any file.
void FillBook(OpeningBook& book, int nMoves) {
  CreateOpeningBook(book);
  std::mt19937_64 random(1);
  for (book.count = 0; book.count < bookCapacity; ++book.count) {
    BookEntry& entry = book.entries[book.count];
    entry.key = random();
    entry.moveCount = nMoves;
    for (int i = 0; i < nMoves; ++i) {
      entry.moves[i] = BuildMove(i, 63 - i, white, pawn);
      entry.hits[i] = 1;
      entry.weights[i] = 100 + i;
    }
  }
}

void LoadFullBook(benchmark::State& state) {
  const std::string path = (std::filesystem::temp_directory_path() / "mirvo_bench.bk").string();
  OpeningBook book;
  FillBook(book, static_cast<int>(state.range(0)));
  SortBook(book);
  WriteBook(book, path.c_str());
  for (auto _ : state) {
    // The pages of a new buffer are part of the cost of a start.
    state.PauseTiming();
    CreateOpeningBook(book);
    state.ResumeTiming();
    LoadBook(book, path.c_str(), true);
  }
  std::remove(path.c_str());
  DestroyOpeningBook(book);
}
BENCHMARK(LoadFullBook)->Arg(2)->Arg(20)->Unit(benchmark::kMillisecond);

void FindEntryInFullBook(benchmark::State& state) {
  OpeningBook book;
  FillBook(book, 1);
  std::mt19937_64 random(2);
  for (auto _ : state) {
    const auto wanted = static_cast<std::uint32_t>(random()) % bookCapacity;
    benchmark::DoNotOptimize(FindEntry(book, book.entries[wanted].key));
  }
  DestroyOpeningBook(book);
}
BENCHMARK(FindEntryInFullBook);

void SortFullBook(benchmark::State& state) {
  OpeningBook book;
  for (auto _ : state) {
    state.PauseTiming();
    FillBook(book, 2);
    state.ResumeTiming();
    SortBook(book);
  }
  DestroyOpeningBook(book);
}
BENCHMARK(SortFullBook)->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace
}  // namespace mirvo
