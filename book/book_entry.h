// One position of an opening book, and how many a book holds.
#pragma once

#include <cstdint>

#include "board/move.h"

namespace mirvo {

inline constexpr int bookCapacity = 200000;
inline constexpr int bookMovesPerPosition = 20;

/// Most entries when building or merging, which leave the last one free. Loading
/// a single file uses all of bookCapacity.
inline constexpr int bookGrowthLimit = bookCapacity - 1;

/// One position. The three move arrays run in parallel, 0..moveCount-1.
struct BookEntry {
  std::uint64_t key;
  Move moves[bookMovesPerPosition];
  std::int32_t moveCount;
  std::int32_t hits[bookMovesPerPosition];     // records or games that gave the move
  std::int32_t weights[bookMovesPerPosition];  // never negative
};
static_assert(sizeof(BookEntry) == 256);

}  // namespace mirvo
