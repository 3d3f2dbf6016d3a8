// Uses a book file or a collection of games in every way. The tests run this on
// stored files, the fuzzers on generated ones.
#pragma once

#include "book/opening_book.h"

namespace mirvo {

/// Loads the file into an empty book and merges it, probes its entries, then
/// cleans, scales, sorts and writes it to `scratchPath` and reads that back.
/// Returns false when a property fails. The book is empty afterwards.
bool ExerciseBookFile(OpeningBook& book, const char* path, const char* scratchPath);

/// Builds a book from the games and writes it to `scratchPath`, as above.
bool ExerciseGames(OpeningBook& book, const char* path, const char* scratchPath);

}  // namespace mirvo
