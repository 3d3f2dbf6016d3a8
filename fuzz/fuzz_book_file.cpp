// Fuzzer: runs generated inputs through ExerciseBookFile.
#include <cstdint>
#include <cstdlib>

#include "fuzz/fuzz_input.h"
#include "tests/book/book_exercise.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace mirvo;
  PrepareFuzzing();
  static OpeningBook book;
  if (book.entries == nullptr && !CreateOpeningBook(book)) std::abort();
  if (!ExerciseBookFile(book, InputFile(data, size).c_str(), OutputFile().c_str())) std::abort();
  return 0;
}
