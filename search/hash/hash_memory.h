// Memory of the hash tables: reserved when a table is allocated, prefaulted in slices
// while nobody waits, released in slices. A table of any size costs nothing until it
// is used, and prefaulting keeps page faults out of a search's time.
#pragma once

#include <cstddef>
#include <cstdint>

#include "search/hash/hash_table.h"

namespace mirvo {

/// Most memory of all three tables together that is prefaulted before any use: enough
/// for the default sizes.
inline constexpr std::size_t prefaultLimit = std::size_t{240} << 20;

/// Milliseconds of prefaulting at commands whose answer the interface waits for.
/// Together they are enough for the default sizes, except on virtual machines that get
/// memory from their host; a new game and the "isready" after it stay below 50.
inline constexpr std::int32_t identifyPrefaultTime = 20;
inline constexpr std::int32_t newGamePrefaultTime = 10;
inline constexpr std::int32_t readyPrefaultTime = 30;

/// Gives a table without memory a zeroed block of `bytes`. Less than a large page comes
/// from the heap and is usable at once, more is only reserved. False when the system
/// refuses.
bool HashReserve(HashTable& table, std::size_t bytes);

/// Takes a table's memory away. Small blocks are released at once, large ones in slices
/// by HashPrefaultSlice.
void HashRetire(HashTable& table);

/// Whether part of the three tables has not been prefaulted.
inline bool HashMemoryMissing() {
  return (TranspositionTable.nMissing | EvalHashTable.nMissing | PawnHashTable.nMissing) != 0;
}

/// Releases a slice of retired memory or, if there is none, prefaults a slice of the
/// three tables, up to the limit and what use has earned. False when nothing is left
/// to do. Takes less than a millisecond, or about ten on a virtual machine that gets
/// memory from its host.
bool HashPrefaultSlice();

/// Repeats that for so many milliseconds, at least once.
void HashPrefaultFor(std::int32_t milliseconds);

/// The same until nothing is left to do, however long that takes: for work that nobody
/// waits for and whose results must not depend on the machine's load. A search with
/// missing memory checks its clock more often.
void HashPrefaultAll();

/// Notes that a search counted so many nodes while memory was missing, which earns
/// memory beyond the limit.
void HashNoteUse(std::uint32_t nNodes);

}  // namespace mirvo
