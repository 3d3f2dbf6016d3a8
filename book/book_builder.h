// Building books from PGN games and merging book files.
#pragma once

#include <cstdint>

#include "book/opening_book.h"

namespace mirvo {

/// Reads the games of `pgnPath` into the book and prints the progress. Returns the
/// number of games (0: nothing was built).
std::int32_t CreateBook(OpeningBook& book, const char* pgnPath, std::int32_t maxPlies,
                        std::int32_t minHits);

/// Cleans, normalises, sorts and writes the book.
void SaveBook(OpeningBook& book, const char* path);

/// Merges two book files into a third.
void MergeBooks(OpeningBook& book, const char* first, const char* second, const char* outPath);

}  // namespace mirvo
