#include "book/book_index.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "book/book_entry.h"
#include "shell/clock.h"

namespace mirvo {
namespace {

// A little over twice the entries, so probes stay short.
constexpr std::size_t nSlots = std::size_t{1} << 19;
static_assert(nSlots > 2 * std::size_t{bookCapacity});

// Spreads the key over all bits. Keys come from files of any origin, so the
// low bits alone could be made to collide.
std::size_t HomeSlot(std::uint64_t key, std::uint64_t seed) {
  std::uint64_t mixed = key ^ seed;
  mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9ULL;
  mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBULL;
  return static_cast<std::size_t>(mixed >> 40) & (nSlots - 1);
}

// The slot that holds `key`, or the free slot where it belongs.
std::size_t SlotOf(const BookIndex& index, const BookEntry* entries, std::uint64_t key) {
  std::size_t slot = HomeSlot(key, index.seed);
  while (index.slots[slot] != 0 && entries[index.slots[slot] - 1].key != key) {
    slot = (slot + 1) & (nSlots - 1);
  }
  return slot;
}

}  // namespace

bool CreateBookIndex(BookIndex& index) {
  index.slots = static_cast<std::int32_t*>(std::calloc(nSlots, sizeof(std::int32_t)));
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
    std::memset(index.slots, 0, nSlots * sizeof(std::int32_t));
  }
  index.nIndexed = 0;
}

void UpdateBookIndex(BookIndex& index, const BookEntry* entries, std::int32_t count) {
  if (index.slots == nullptr) return;
  if (count < index.nIndexed) ResetBookIndex(index);
  while (index.nIndexed < count) {
    const std::size_t slot = SlotOf(index, entries, entries[index.nIndexed].key);
    ++index.nIndexed;
    // A key that is there already keeps its first entry.
    if (index.slots[slot] == 0) index.slots[slot] = index.nIndexed;
  }
}

std::int32_t FindInBookIndex(BookIndex& index, const BookEntry* entries, std::int32_t count,
                             std::uint64_t key) {
  if (index.slots == nullptr || entries == nullptr) return -1;
  UpdateBookIndex(index, entries, count);
  return index.slots[SlotOf(index, entries, key)] - 1;
}

}  // namespace mirvo
