#include "search/hash_table.h"

#include <cstdlib>
#include <initializer_list>

#include "shell/large_pages.h"

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

// Memory comes with the first write to a page. Large pages are passed over in
// small steps, which costs next to nothing.
void MakeResident(HashTable& table) {
  constexpr std::size_t smallestPage = 4096;
  const std::size_t bytes = table.size * (slotSize + tagSize);
  volatile char* const memory = reinterpret_cast<char*>(table.entries);
  for (std::size_t offset = 0; offset < bytes; offset += smallestPage) {
    const char kept = memory[offset];
    memory[offset] = kept;
  }
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
  table.tags = nullptr;
  // The megabytes are counted in 32 bits: sizes from 4096 on wrap around.
  std::uint32_t nSlots = (table.size << megabyteShift) >> slotShift;
  if (nSlots == 0) nSlots = minHashSlots;
  for (; nSlots != 0; nSlots /= 2) {
    const std::size_t bytes = nSlots * (slotSize + tagSize) + (slotSize - 1);
    // Zeroed pages come from the system only when they are first touched, and
    // an all-zero slot counts as empty, so a large table costs nothing unused.
    table.block = std::calloc(bytes, 1);
    if (table.block != nullptr) break;
  }
  table.size = nSlots;
  table.reciprocal = nSlots == 0 ? 0 : ~std::uint64_t{0} / nSlots + 1;
  if (table.block == nullptr) return;
  PreferLargePages(table.block, nSlots * (slotSize + tagSize));
  const auto address = reinterpret_cast<std::uintptr_t>(table.block);
  const std::uintptr_t aligned = (address + slotSize - 1) & ~std::uintptr_t{slotSize - 1};
  // Rounding an address up takes the way over an integer; it is done once.
  // NOLINTNEXTLINE(performance-no-int-to-ptr)
  table.entries = reinterpret_cast<HashEntry*>(aligned);
  table.tags = reinterpret_cast<std::uint8_t*>(table.entries + nSlots);
}

void HashMakeResident() {
  for (HashTable* table : {&EvalHashTable, &PawnHashTable, &TranspositionTable})
    MakeResident(*table);
}

void HashRelease(HashTable& table) {
  std::free(table.block);
  table.block = nullptr;
  table.entries = nullptr;
  table.tags = nullptr;
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
