// The one hash-table mechanism behind the search's transposition table, the
// evaluation cache and the pawn cache: 64-byte slots, one slot per index.
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
  void* block;               // memory of the slots and, behind them, the tags
  std::int32_t lastIndex;    // of the newest probe or store; kept for debuggers, nothing reads it
  std::uint64_t lastKey;     // likewise
  std::uint64_t reciprocal;  // of `size`, for HashIndex; set by allocation
  std::uint8_t* tags;        // by slot: HashTag of the key that it holds, 0 when empty
  std::size_t nPages;        // large ones of the block; 0 when it is the heap's
  std::size_t nMissing;      // the first of them, which were not prefaulted yet
};

/// Owner: hash_table.cpp. They live for the whole run.
extern HashTable TranspositionTable;
extern HashTable PawnHashTable;
extern HashTable EvalHashTable;

/// Slots of a table that was asked for with a size that gives none.
inline constexpr std::uint32_t minHashSlots = 16384;

/// Slots up to which a table is emptied slot by slot. In a larger one only the
/// tags are, so that a new game waits for no table, however large and full.
inline constexpr std::uint32_t maxSlotsToWrite = 1U << 21;

/// Empties every slot; the move fields stay where slots are written. Touches
/// only what is in use.
void HashClear(HashTable& table);

/// The search's own clearing: key, depth, score, bound and move; evalScore stays.
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

/// A byte of a key that takes no part in its index. The tags of a table are a
/// sixty-fourth of it, so that they stay in the processor's caches: most probes
/// are told by them that the slot holds another key and need not wait for it.
/// Never 0, by which a slot is known as empty whatever else is left in it.
inline std::uint8_t HashTag(std::uint64_t key) { return static_cast<std::uint8_t>(key >> 56 | 1); }

/// Whether the slot `index` of the key holds it. Nothing holds key 0, which
/// empty slots have.
inline bool HashHolds(const HashTable& table, std::uint32_t index, std::uint64_t key) {
  return table.tags[index] == HashTag(key) && table.entries[index].key == key && key != 0;
}

/// Writes a key, other than 0, into its slot `index`. The only way to do so:
/// HashHolds finds nothing else.
inline void HashClaim(HashTable& table, std::uint32_t index, std::uint64_t key) {
  table.entries[index].key = key;
  table.tags[index] = HashTag(key);
}

/// Index of a key's slot, noted with the key as the table's newest.
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

/// What a table knows of a position for a search of some depth and window.
struct HashFinding {
  const HashEntry* slot = nullptr;  // holds the position; null when none does
  bool deepEnough = false;          // its result is of at least that depth
  bool decides = false;             // and its score is exact or a bound beyond the window
};

/// Looks `key` up for a search of `depth` with the window (alpha, beta) and counts
/// the probe: a conflict without a slot, a hit when it decides, else a miss.
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

/// The same as a yes or no: true with the slot's score when it decides. The move
/// is written whenever the slot holds the position, unless an exact score decides.
bool HashProbe(HashTable& table, std::uint64_t key, Move& move, std::int32_t& score,
               std::int32_t alpha, std::int32_t beta, std::int32_t depth);

/// Stores a search result, preferring deeper ones.
void HashStore(HashTable& table, std::uint64_t key, Move move, std::int32_t score, HashBound bound,
               std::int32_t depth);

/// Copies the score field of the evaluation cache's slot if it holds `key`, and
/// returns false in any case. Kept for drivers of the search; nothing calls it.
bool HashMoveLookup(std::uint64_t key, std::int32_t& score);

/// "Cache usage:" line of one table.
void PrintCacheUsage(const HashTable& table);

/// The usage of all three tables.
void PrintHashReport(bool quiet);

/// Zeroes hits, conflicts and misses of all three tables.
void ResetHashCounters();

}  // namespace mirvo
