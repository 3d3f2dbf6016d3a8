// Memory of the hash tables: reserved when a table is allocated, prefaulted in
// slices while nobody waits, given back in slices. A table of any size costs
// nothing until it is used, and a search spends no time of its clock on memory
// that could have been there before.
#pragma once

#include <cstddef>
#include <cstdint>

#include "search/hash/hash_table.h"

namespace mirvo {

/// Most memory, of all three tables together, that is prefaulted before any use:
/// enough for tables of the default sizes.
inline constexpr std::size_t prefaultLimit = std::size_t{240} << 20;

/// Milliseconds of prefaulting at commands whose end the interface waits for.
/// Together they are enough for the default sizes on a machine that has memory
/// at hand; a new game and the "isready" behind it stay below 50.
inline constexpr std::int32_t identifyPrefaultTime = 20;
inline constexpr std::int32_t newGamePrefaultTime = 10;
inline constexpr std::int32_t readyPrefaultTime = 30;

/// The same before the first position of a suite, for whose start nobody waits.
inline constexpr std::int32_t suitePrefaultTime = 2000;

/// Gives a table that has none a zeroed block of `bytes`.
/// Less than a large page comes from the heap and is there at once, more is only
/// reserved. False when the system refuses.
bool HashReserve(HashTable& table, std::size_t bytes);

/// Takes a table's memory away. It is given back at once where that is quick,
/// else in slices, as HashPrefaultSlice finds time.
void HashRetire(HashTable& table);

/// Whether a part of the three tables was not prefaulted yet.
inline bool HashMemoryMissing() {
  return (TranspositionTable.nMissing | EvalHashTable.nMissing | PawnHashTable.nMissing) != 0;
}

/// Gives a slice of retired memory back or, when there is none, prefaults one
/// of the three tables, within what may be had. False when nothing is left to
/// do. Takes less than a millisecond on a machine that has memory at hand, some
/// ten on a virtual one that has to fetch it from its host.
bool HashPrefaultSlice();

/// The same slice by slice for so many milliseconds, one slice at least.
void HashPrefaultFor(std::int32_t milliseconds);

/// Notes that a search went through so many nodes while memory was missing.
/// Use earns memory beyond the limit.
void HashNoteUse(std::uint32_t nNodes);

}  // namespace mirvo
