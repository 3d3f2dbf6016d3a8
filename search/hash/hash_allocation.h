// Allocates and releases the hash tables; converts megabytes to slots.
#pragma once

#include "search/hash/hash_table.h"

namespace mirvo {

/// Sets a record to its state before the first allocation.
void HashInitialise(HashTable& table);

/// Turns `size` from megabytes into slots and (re)allocates the slot array with
/// zeroed (empty) slots. If memory is short the table is halved until it fits. Only
/// reserves the memory: hash_memory.h says when it is provided.
void HashAllocate(HashTable& table);

/// Releases the memory (tests; the engine keeps its tables to the end).
void HashRelease(HashTable& table);

}  // namespace mirvo
