// What an engine does with a book file or a collection of games from anywhere.
// Run on stored files by the tests and on invented ones by the fuzzers.
#pragma once

#include "book/opening_book.h"

namespace mirvo {

/// Loads the file as a fresh book and merges it, probes what it holds, then
/// cleans, scales, sorts and writes it to `scratchPath`, which is read back.
/// Returns false when a promise is broken. The book is empty afterwards.
bool ExerciseBookFile(OpeningBook& book, const char* path, const char* scratchPath);

/// Builds a book from the games and writes it to `scratchPath`, as above.
bool ExerciseGames(OpeningBook& book, const char* path, const char* scratchPath);

}  // namespace mirvo
