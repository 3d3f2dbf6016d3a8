// The hash table used for the transposition table, the evaluation cache and the pawn
// cache: 64-byte slots, one slot per index.
#pragma once

#include <cstddef>
#include <cstdint>

#include "board/move.h"
#include "search/hash/multiply_high.h"

namespace mirvo {

/// What a stored score says about the true score.
enum HashBound : std::int32_t { noBound = -1, upperBound = 0, lowerBound = 1, exactBound = 2 };

/// Score of a slot that never received one.
inline constexpr std::int32_t EmptyScore = -123456;

struct alignas(64) HashEntry {
  std::uint64_t key;       // full position key; 0 in an empty slot
  std::int32_t evalScore;  // evaluation and pawn caches
  std::uint64_t evalData[4];
  std::int32_t bound;  // HashBound
  std::int32_t depth;  // remaining depth of the stored result
  std::int32_t score;
  Move move;
};
static_assert(sizeof(HashEntry) == 64);

struct HashTable {
  std::uint32_t hits;
  std::uint32_t conflicts;
  std::uint32_t misses;
  std::uint32_t stores;
  std::uint32_t size;  // megabytes before allocation, slots afterwards
  HashEntry* entries;
  void* block;               // memory of the slots, followed by the tags
  std::int32_t lastIndex;    // of the newest probe or store; kept for debuggers, nothing reads it
  std::uint64_t lastKey;     // likewise
  std::uint64_t reciprocal;  // of `size`, for HashIndex; set by allocation
  std::uint8_t* tags;        // by slot: HashTag of the key that it holds, 0 when empty
  std::size_t nPages;        // large pages of the block; 0 when it is from the heap
  std::size_t nMissing;      // how many of them, from the first on, are not prefaulted yet
};

/// Owner: hash_table.cpp. Writers: allocation, search and evaluation; the front ends
/// and the suite runner clear them.
extern HashTable TranspositionTable;
extern HashTable PawnHashTable;
extern HashTable EvalHashTable;

/// Slots of a table whose size gives none.
inline constexpr std::uint32_t minHashSlots = 16384;

/// Tables up to so many slots are cleared slot by slot. In larger ones only the tags
/// are cleared, so that a new game never waits for a large table.
inline constexpr std::uint32_t maxSlotsToWrite = 1U << 21;

/// Empties every slot, touching only those in use. Does not clear the move fields.
void HashClear(HashTable& table);

/// Empties every slot for the search: like HashClear, but clears the move and keeps
/// evalScore.
void HashResetSearch(HashTable& table);

/// The reciprocal of a number of slots above 0, for HashIndex.
constexpr std::uint64_t HashReciprocal(std::uint32_t nSlots) {
  return ~std::uint64_t{0} / nSlots + 1;
}

/// Slot of a key: its low word modulo the number of slots, which need not be a
/// power of two. Multiplies by the reciprocal instead of dividing, which is
/// exact for 32-bit numbers (Lemire, Kaser, Kurz, "Faster remainder by direct
/// computation", 2019).
inline std::uint32_t HashIndex(const HashTable& table, std::uint64_t key) {
  const std::uint64_t fraction = table.reciprocal * static_cast<std::uint32_t>(key);
  return static_cast<std::uint32_t>(MultiplyHigh(fraction, table.size));
}

/// A byte of the key that is not part of the index. One tag per slot in a small array
/// that stays in the processor's caches: most misses are seen without touching the
/// slot. Never 0, which marks an empty slot, whatever the slot still contains.
inline std::uint8_t HashTag(std::uint64_t key) { return static_cast<std::uint8_t>(key >> 56 | 1); }

/// Whether slot `index` holds `key`. Never true for key 0, which empty slots have.
inline bool HashHolds(const HashTable& table, std::uint32_t index, std::uint64_t key) {
  return table.tags[index] == HashTag(key) && table.entries[index].key == key && key != 0;
}

/// Writes a key other than 0 and its tag into slot `index`. The only way to store a
/// key: HashHolds needs both.
inline void HashClaim(HashTable& table, std::uint32_t index, std::uint64_t key) {
  table.entries[index].key = key;
  table.tags[index] = HashTag(key);
}

/// Index of a key's slot; stores both in lastIndex and lastKey.
inline std::uint32_t HashLocate(HashTable& table, std::uint64_t key) {
  const std::uint32_t index = HashIndex(table, key);
  table.lastIndex = static_cast<std::int32_t>(index);
  table.lastKey = key;
  return index;
}

inline HashEntry& HashSlot(HashTable& table, std::uint64_t key) {
  return table.entries[HashIndex(table, key)];
}

/// Starts loading the slot of a key that is about to be probed.
inline void HashPrefetch(const HashTable& table, std::uint64_t key) {
  const std::uint32_t index = HashIndex(table, key);
  __builtin_prefetch(&table.tags[index]);
  __builtin_prefetch(&table.entries[index]);
}

/// The result of a probe for a search of some depth and window.
struct HashFinding {
  const HashEntry* slot = nullptr;  // the position's slot; null when the table has none
  bool deepEnough = false;          // its result has at least that depth
  bool decides = false;             // and its score is exact or a bound outside the window
};

/// Probes for a search of `depth` with the window (alpha, beta). Counts a conflict if
/// there is no slot, a hit if the score decides, else a miss.
inline HashFinding HashLookUp(HashTable& table, std::uint64_t key, std::int32_t alpha,
                              std::int32_t beta, std::int32_t depth) {
  const std::uint32_t index = HashLocate(table, key);
  if (!HashHolds(table, index, key)) {
    ++table.conflicts;
    return {};
  }
  const HashEntry& slot = table.entries[index];
  if (slot.depth < depth) {
    ++table.misses;
    return {&slot, false, false};
  }
  const bool decides = slot.bound == exactBound ||
                       (slot.bound == upperBound && slot.score <= alpha) ||
                       (slot.bound == lowerBound && slot.score >= beta);
  ++(decides ? table.hits : table.misses);
  return {&slot, true, decides};
}

/// The same with a simple result: true and the slot's score if it decides. Writes the
/// move if the slot holds the position, unless an exact score decides.
bool HashProbe(HashTable& table, std::uint64_t key, Move& move, std::int32_t& score,
               std::int32_t alpha, std::int32_t beta, std::int32_t depth);

/// Stores a search result, preferring deeper ones.
void HashStore(HashTable& table, std::uint64_t key, Move move, std::int32_t score, HashBound bound,
               std::int32_t depth);

/// Copies the score field of the evaluation cache's slot if it holds `key`, and
/// returns false in any case. Kept for drivers of the search; nothing calls it.
bool HashMoveLookup(std::uint64_t key, std::int32_t& score);

/// Prints the "Cache usage:" line of one table.
void PrintCacheUsage(const HashTable& table);

/// Prints the usage of all three tables unless `quiet`.
void PrintHashReport(bool quiet);

/// Zeroes hits, conflicts and misses of all three tables.
void ResetHashCounters();

}  // namespace mirvo
