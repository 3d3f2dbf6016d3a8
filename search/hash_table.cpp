#include "search/hash_table.h"

#include <cstring>

#include "search/hash_memory.h"

namespace mirvo {

constinit HashTable TranspositionTable{};
constinit HashTable PawnHashTable{};
constinit HashTable EvalHashTable{};

namespace {

constexpr int megabyteShift = 20;
constexpr int slotShift = 6;
constexpr std::size_t slotSize = sizeof(HashEntry);
constexpr std::size_t tagSize = sizeof(std::uint8_t);
static_assert(slotSize == std::size_t{1} << slotShift);

/// Bytes for slots and tags, wherever the block begins.
std::size_t BlockSize(std::uint32_t nSlots) {
  return nSlots * (slotSize + tagSize) + (slotSize - 1);
}

/// Calls `visit(i)` for each slot in use. Unused slots are passed over eight at
/// a time, so that memory that nobody touched yet stays so.
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

/// Empties the slots in use, each written by `empty(slot)` unless there are too
/// many.
template <typename Writer>
void EmptyUsedSlots(HashTable& table, Writer empty) {
  if (table.entries == nullptr) return;
  const bool writesSlots = table.size <= maxSlotsToWrite;
  ForEachUsedSlot(table, [&](std::uint32_t index) {
    if (writesSlots) empty(table.entries[index]);
    table.tags[index] = 0;
  });
}

/// What HashClear and HashResetSearch have in common.
void EmptySlot(HashEntry& slot) {
  slot.key = 0;
  slot.depth = 0;
  slot.score = EmptyScore;
  slot.bound = noBound;
}

}  // namespace

void HashInitialise(HashTable& table) {
  HashRelease(table);
  table = HashTable{};
  HashClear(table);
}

void HashAllocate(HashTable& table) {
  HashRetire(table);
  table.entries = nullptr;
  table.tags = nullptr;
  // The megabytes are counted in 32 bits: sizes from 4096 on wrap around.
  std::uint32_t nSlots = (table.size << megabyteShift) >> slotShift;
  if (nSlots == 0) nSlots = minHashSlots;
  while (nSlots != 0 && !HashReserve(table, BlockSize(nSlots))) nSlots /= 2;
  table.size = nSlots;
  table.reciprocal = nSlots == 0 ? 0 : ~std::uint64_t{0} / nSlots + 1;
  if (table.block == nullptr) return;
  // Fresh memory is zero, and an all-zero slot counts as empty.
  const auto address = reinterpret_cast<std::uintptr_t>(table.block);
  const std::uintptr_t aligned = (address + slotSize - 1) & ~std::uintptr_t{slotSize - 1};
  // Rounding an address up takes the way over an integer; it is done once.
  // NOLINTNEXTLINE(performance-no-int-to-ptr)
  table.entries = reinterpret_cast<HashEntry*>(aligned);
  table.tags = reinterpret_cast<std::uint8_t*>(table.entries + nSlots);
}

void HashRelease(HashTable& table) {
  HashRetire(table);
  table.entries = nullptr;
  table.tags = nullptr;
  table.size = 0;
}

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
  if (key == 0) return;  // the mark of an empty slot
  if (table.tags[index] == 0) EmptySlot(slot);
  if (depth < slot.depth && slot.move != noMove && slot.score != EmptyScore) return;
  // The same position keeps its known move; another position never inherits one.
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
