#include "search/hash/hash_table.h"

#include <cstring>

namespace mirvo {

constinit HashTable TranspositionTable{};
constinit HashTable PawnHashTable{};
constinit HashTable EvalHashTable{};

namespace {

/// Calls `visit(i)` for each slot in use. Skips unused slots eight at a time by their
/// tags, without touching their memory.
template <typename Visitor>
void ForEachUsedSlot(const HashTable& table, Visitor visit) {
  static_assert(minHashSlots % sizeof(std::uint64_t) == 0);
  for (std::uint32_t i = 0; i < table.size; i += sizeof(std::uint64_t)) {
    std::uint64_t eightTags = 0;
    std::memcpy(&eightTags, table.tags + i, sizeof eightTags);
    if (eightTags == 0) continue;
    for (std::uint32_t j = i; j < i + sizeof(std::uint64_t); ++j) {
      if (table.tags[j] != 0) visit(j);
    }
  }
}

/// Empties the slots in use: clears their tags and, unless the table is too large,
/// calls `empty(slot)` for each.
template <typename Writer>
void EmptyUsedSlots(HashTable& table, Writer empty) {
  if (table.entries == nullptr) return;
  const bool writesSlots = table.size <= maxSlotsToWrite;
  ForEachUsedSlot(table, [&](std::uint32_t index) {
    if (writesSlots) empty(table.entries[index]);
    table.tags[index] = 0;
  });
}

/// The common part of HashClear and HashResetSearch.
void EmptySlot(HashEntry& slot) {
  slot.key = 0;
  slot.depth = 0;
  slot.score = EmptyScore;
  slot.bound = noBound;
}

}  // namespace

void HashClear(HashTable& table) {
  EmptyUsedSlots(table, [](HashEntry& slot) {
    EmptySlot(slot);
    slot.evalScore = EmptyScore;
  });
}

void HashResetSearch(HashTable& table) {
  EmptyUsedSlots(table, [](HashEntry& slot) {
    EmptySlot(slot);
    slot.move = noMove;
  });
}

bool HashProbe(HashTable& table, std::uint64_t key, Move& move, std::int32_t& score,
               std::int32_t alpha, std::int32_t beta, std::int32_t depth) {
  const HashFinding found = HashLookUp(table, key, alpha, beta, depth);
  if (found.slot == nullptr) return false;
  if (found.decides) score = found.slot->score;
  if (!found.decides || found.slot->bound != exactBound) move = found.slot->move;
  return found.decides;
}

void HashStore(HashTable& table, std::uint64_t key, Move move, std::int32_t score, HashBound bound,
               std::int32_t depth) {
  const std::uint32_t index = HashLocate(table, key);
  HashEntry& slot = table.entries[index];
  if (key == 0) return;  // 0 marks an empty slot
  if (table.tags[index] == 0) EmptySlot(slot);
  if (depth < slot.depth && slot.move != noMove && slot.score != EmptyScore) return;
  // A result without a move keeps the move stored for the same position.
  if (slot.key != key || move != noMove) slot.move = move;
  slot.score = score;
  slot.bound = bound;
  slot.depth = depth;
  HashClaim(table, index, key);
}

bool HashMoveLookup(std::uint64_t key, std::int32_t& score) {
  const std::uint32_t index = HashLocate(EvalHashTable, key);
  if (HashHolds(EvalHashTable, index, key)) score = EvalHashTable.entries[index].score;
  return false;
}

}  // namespace mirvo
