#include "book/book_index.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "book/book_entry.h"
#include "shell/base/clock.h"

namespace mirvo {
namespace {

// Slots for a small book, and for a full one: more than twice the entries, so
// that probes stay short.
constexpr std::uint32_t fewestSlots = 256;
constexpr std::uint32_t mostSlots = std::uint32_t{1} << 19;
static_assert(mostSlots > 2 * bookCapacity);

// Mixes all bits of the key: keys come from files of any origin, which could be
// made so that low bits alone collide.
std::size_t HomeSlot(const BookIndex& index, std::uint64_t key) {
  std::uint64_t mixed = key ^ index.seed;
  mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9ULL;
  mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBULL;
  return static_cast<std::size_t>(mixed >> 40) & (index.nSlots - 1);
}

// The slot that holds `key`, or the free slot where it belongs.
std::size_t SlotOf(const BookIndex& index, const BookEntry* entries, std::uint64_t key) {
  std::size_t slot = HomeSlot(index, key);
  while (index.slots[slot] != 0 && entries[index.slots[slot] - 1].key != key) {
    slot = (slot + 1) & (index.nSlots - 1);
  }
  return slot;
}

void EmptySlots(BookIndex& index) {
  std::memset(index.slots, 0, index.nSlots * sizeof(std::int32_t));
}

// Indexes entries begin..end-1. A key that is already indexed keeps its first
// entry.
void Insert(BookIndex& index, const BookEntry* entries, std::int32_t begin, std::int32_t end) {
  for (std::int32_t i = begin; i < end; ++i) {
    std::int32_t& slot = index.slots[SlotOf(index, entries, entries[i].key)];
    if (slot == 0) slot = i + 1;
  }
}

// Doubles the slots until the entries take at most half of them.
void GrowFor(BookIndex& index, const BookEntry* entries, std::int32_t count) {
  const std::uint32_t before = index.nSlots;
  while (index.nSlots < mostSlots && index.nSlots < 2 * static_cast<std::uint32_t>(count)) {
    index.nSlots *= 2;
  }
  if (index.nSlots == before) return;
  EmptySlots(index);
  Insert(index, entries, 0, index.nIndexed);
}

}  // namespace

bool CreateBookIndex(BookIndex& index) {
  index.slots = static_cast<std::int32_t*>(std::calloc(mostSlots, sizeof(std::int32_t)));
  index.nSlots = fewestSlots;
  index.nIndexed = 0;
  index.seed = (static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(index.slots)) << 20) ^
               TickCount() * 0x9E3779B97F4A7C15ULL;
  return index.slots != nullptr;
}

void DestroyBookIndex(BookIndex& index) {
  std::free(index.slots);
  index = BookIndex{};
}

void ResetBookIndex(BookIndex& index) {
  if (index.slots != nullptr && index.nIndexed != 0) {
    EmptySlots(index);
    index.nSlots = fewestSlots;
  }
  index.nIndexed = 0;
}

void UpdateBookIndex(BookIndex& index, const BookEntry* entries, std::int32_t count) {
  if (index.slots == nullptr) return;
  if (count < index.nIndexed) ResetBookIndex(index);
  if (count == index.nIndexed) return;
  GrowFor(index, entries, count);
  Insert(index, entries, index.nIndexed, count);
  index.nIndexed = count;
}

std::int32_t FindInBookIndex(BookIndex& index, const BookEntry* entries, std::int32_t count,
                             std::uint64_t key) {
  if (index.slots == nullptr || entries == nullptr) return -1;
  UpdateBookIndex(index, entries, count);
  return index.slots[SlotOf(index, entries, key)] - 1;
}

}  // namespace mirvo
