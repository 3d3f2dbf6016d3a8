// Hash tables in tests.
#pragma once

#include <cstdint>

#include "search/hash/hash_allocation.h"
#include "search/hash/hash_memory.h"
#include "search/hash/hash_table.h"

namespace mirvo::test {

/// Gives `table` a fresh block of `megabytes`, after all memory that tables had
/// before went back to the system. Otherwise the next slices of prefaulting
/// would give that memory back first, which takes as long as the system likes.
inline void AllocateAfresh(HashTable& table, std::uint32_t megabytes) {
  HashRelease(table);
  HashPrefaultAll();
  table.size = megabytes;
  HashAllocate(table);
}

}  // namespace mirvo::test
