// The opening book in memory: its positions and their moves. Filled from a file
// (book_file.h) or from games (book_builder.h), probed by book_probe.h.
#pragma once

#include <cstdint>

#include "board/board.h"
#include "board/move.h"
#include "book/book_entry.h"
#include "book/book_index.h"

namespace mirvo {

struct OpeningBook {
  std::uint64_t loaded = 0;      // 1 after a file has been read
  BookEntry* entries = nullptr;  // bookCapacity records, zeroed
  std::int32_t count = 0;
  std::int32_t maxPlies = 40;  // plies per game that the builder takes
  std::int32_t minHits = 0;    // hits that a move needs to be written to a file
  BookIndex index;             // of the keys; updated when it is searched
};

/// The one book; null entries until start-up creates it, or without memory.
/// Owner: opening_book.cpp. Writers: start-up, book tools, ProbeBook.
extern OpeningBook openingBook;

/// Allocates zeroed entries and the index. False when there is no memory.
bool CreateOpeningBook(OpeningBook& book);

/// Frees what CreateOpeningBook allocated (tests; the engine's book lives until
/// the process ends).
void DestroyOpeningBook(OpeningBook& book);

/// Index of the first entry with that key, or -1.
std::int32_t FindEntry(OpeningBook& book, std::uint64_t key);

/// Counts `move` in the entry: a known move gets one more hit and the weight, a
/// new one is appended with one hit. A full entry takes no new move; sums
/// saturate at 32 bits.
void AddBookMove(OpeningBook& book, std::int32_t index, Move move, std::int32_t weight);

/// Adds `move` to the entry of `key`, which is created if necessary. Without room
/// for another entry the move is dropped.
void AddBookPosition(OpeningBook& book, std::uint64_t key, Move move, std::int32_t weight);

}  // namespace mirvo
