// The opening book held in memory, and the calls that the engine makes on it.
#pragma once

#include <cstdint>

#include "board/board.h"
#include "board/move.h"

namespace mirvo {

inline constexpr int bookCapacity = 200000;
inline constexpr int bookMovesPerPosition = 20;

struct BookEntry {
  std::uint64_t key;
  Move moves[bookMovesPerPosition];
  std::int32_t moveCount;
  std::int32_t hits[bookMovesPerPosition];
  std::int32_t weights[bookMovesPerPosition];
};
static_assert(sizeof(BookEntry) == 256);

struct OpeningBook {
  std::uint64_t loaded = 0;      // 1 after a file was read
  BookEntry* entries = nullptr;  // bookCapacity records, zeroed
  std::int32_t count = 0;
  std::int32_t maxPlies = 40;  // plies per game that the builder takes
  std::int32_t minHits = 0;    // hits a move needs to be kept by the builder
};

/// The one book; null entries until start-up creates it (or when memory is short).
extern OpeningBook openingBook;

/// Allocates the entry buffer (lazily zeroed). False when there is no memory.
bool CreateOpeningBook(OpeningBook& book);

/// Reads a book file. Replace mode starts a fresh book, merge mode adds to it.
/// A missing file clears `loaded` and switches config.UseOpeningBook off.
/// Returns whether the file could be opened.
bool LoadBook(OpeningBook& book, const char* path, bool replace);

/// Picks a legal book move for the position by weight at random and prints the
/// entry's list. False when the book has none.
bool ProbeBook(OpeningBook& book, Board& board, Move& move);

/// The "-bookstats" summary.
void PrintBookStats(const OpeningBook& book);

/// Next word of the book's random generator.
std::uint32_t NextRandom();

}  // namespace mirvo
