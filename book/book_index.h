// A hash index from position key to the first entry with that key, so that
// finding a position takes the same time in a book of any size.
#pragma once

#include <cstdint>

namespace mirvo {

struct BookEntry;

struct BookIndex {
  std::int32_t* slots = nullptr;  // entry number + 1, 0 = free
  std::uint32_t nSlots = 0;       // slots in use, a power of two; the table grows with the book
  std::int32_t nIndexed = 0;      // entries 0..nIndexed-1 are in the index
  std::uint64_t seed = 0;         // differs between runs: no file can be made to collide
};

/// Allocates an empty index. False when there is no memory.
bool CreateBookIndex(BookIndex& index);

void DestroyBookIndex(BookIndex& index);

/// Empties the index. Needed after entries have been moved, removed or rewritten;
/// appended entries are found without it.
void ResetBookIndex(BookIndex& index);

/// Indexes the entries appended since the last call.
void UpdateBookIndex(BookIndex& index, const BookEntry* entries, std::int32_t count);

/// Lowest entry number with that key among entries 0..count-1, or -1.
std::int32_t FindInBookIndex(BookIndex& index, const BookEntry* entries, std::int32_t count,
                             std::uint64_t key);

}  // namespace mirvo
