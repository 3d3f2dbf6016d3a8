#include "search/hash_table.h"

#include <cstdlib>

#include "shell/large_pages.h"

namespace mirvo {

constinit HashTable TranspositionTable{};
constinit HashTable PawnHashTable{};
constinit HashTable EvalHashTable{};

namespace {

constexpr int megabyteShift = 20;
constexpr int slotShift = 6;
constexpr std::size_t slotSize = sizeof(HashEntry);
static_assert(slotSize == std::size_t{1} << slotShift);

// Notes where the newest probe or store went, so that the search can rewrite
// the slot without computing its index again.
HashEntry& Locate(HashTable& table, std::uint64_t key) {
  const std::uint32_t index = HashIndex(table, key);
  table.lastIndex = static_cast<std::int32_t>(index);
  table.lastKey = key;
  return table.entries[index];
}

}  // namespace

void HashInitialise(HashTable& table) {
  HashRelease(table);
  table = HashTable{};
  HashClear(table);
}

void HashAllocate(HashTable& table) {
  std::free(table.block);
  table.block = nullptr;
  table.entries = nullptr;
  // The megabytes are counted in 32 bits: sizes from 4096 on wrap around.
  std::uint32_t nSlots = (table.size << megabyteShift) >> slotShift;
  if (nSlots == 0) nSlots = minHashSlots;
  for (; nSlots != 0; nSlots /= 2) {
    const std::size_t bytes = static_cast<std::size_t>(nSlots) * slotSize + (slotSize - 1);
    // Zeroed pages come from the system only when they are first touched, and
    // an all-zero slot counts as empty, so a large table costs nothing unused.
    table.block = std::calloc(bytes, 1);
    if (table.block != nullptr) break;
  }
  table.size = nSlots;
  table.reciprocal = nSlots == 0 ? 0 : ~std::uint64_t{0} / nSlots + 1;
  if (table.block == nullptr) return;
  PreferLargePages(table.block, static_cast<std::size_t>(nSlots) * slotSize);
  const auto address = reinterpret_cast<std::uintptr_t>(table.block);
  const std::uintptr_t aligned = (address + slotSize - 1) & ~std::uintptr_t{slotSize - 1};
  // Rounding an address up takes the way over an integer; it is done once.
  // NOLINTNEXTLINE(performance-no-int-to-ptr)
  table.entries = reinterpret_cast<HashEntry*>(aligned);
}

void HashRelease(HashTable& table) {
  std::free(table.block);
  table.block = nullptr;
  table.entries = nullptr;
  table.size = 0;
}

void HashClear(HashTable& table) {
  if (table.entries == nullptr) return;
  for (std::uint32_t i = 0; i < table.size; ++i) {
    HashEntry& slot = table.entries[i];
    slot.key = 0;
    slot.evalScore = EmptyScore;
    slot.depth = 0;
    slot.score = EmptyScore;
    slot.bound = noBound;
  }
}

void HashResetSearch(HashTable& table) {
  if (table.entries == nullptr) return;
  for (std::uint32_t i = 0; i < table.size; ++i) {
    HashEntry& slot = table.entries[i];
    slot.key = 0;
    slot.depth = 0;
    slot.score = EmptyScore;
    slot.bound = noBound;
    slot.move = noMove;
  }
}

bool HashProbe(HashTable& table, std::uint64_t key, Move& move, std::int32_t& score,
               std::int32_t alpha, std::int32_t beta, std::int32_t depth) {
  const HashEntry& slot = Locate(table, key);
  if (slot.key != key || key == 0) {
    ++table.conflicts;
    return false;
  }
  if (slot.depth >= depth) {
    if (slot.bound == exactBound) {
      ++table.hits;
      score = slot.score;
      return true;
    }
    if ((slot.bound == upperBound && slot.score <= alpha) ||
        (slot.bound == lowerBound && slot.score >= beta)) {
      ++table.hits;
      score = slot.score;
      move = slot.move;
      return true;
    }
  }
  ++table.misses;
  move = slot.move;
  return false;
}

void HashStore(HashTable& table, std::uint64_t key, Move move, std::int32_t score, HashBound bound,
               std::int32_t depth) {
  HashEntry& slot = Locate(table, key);
  if (key == 0) return;  // the mark of an empty slot
  if (depth < slot.depth && slot.move != noMove && slot.score != EmptyScore) return;
  // The same position keeps its known move; another position never inherits one.
  if (slot.key != key || move != noMove) slot.move = move;
  slot.score = score;
  slot.bound = bound;
  slot.depth = depth;
  slot.key = key;
}

bool HashMoveLookup(std::uint64_t key, std::int32_t& score) {
  const HashEntry& slot = Locate(EvalHashTable, key);
  if (slot.key == key && key != 0) score = slot.score;
  return false;
}

}  // namespace mirvo
