#include "search/hash/hash_allocation.h"

#include <cstddef>
#include <cstdint>
#include <limits>

#include "search/hash/hash_memory.h"

namespace mirvo {
namespace {

constexpr int megabyteShift = 20;
constexpr int slotShift = 6;
constexpr std::size_t slotSize = sizeof(HashEntry);
constexpr std::size_t tagSize = sizeof(std::uint8_t);
static_assert(slotSize == std::size_t{1} << slotShift);

/// Bytes for slots and tags, with room for aligning the slots. 64 bits wide, because the
/// largest tables exceed a 32-bit address space.
std::uint64_t BlockSize(std::uint32_t nSlots) {
  return std::uint64_t{nSlots} * (slotSize + tagSize) + (slotSize - 1);
}

/// No system allocates more than half of the address space.
constexpr std::uint64_t largestBlock = std::numeric_limits<std::size_t>::max() / 2;

bool ReserveSlots(HashTable& table, std::uint32_t nSlots) {
  const std::uint64_t bytes = BlockSize(nSlots);
  return bytes <= largestBlock && HashReserve(table, static_cast<std::size_t>(bytes));
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
  // Sizes are computed in 32 bits, so 4096 megabytes and more wrap around.
  std::uint32_t nSlots = (table.size << megabyteShift) >> slotShift;
  if (nSlots == 0) nSlots = minHashSlots;
  while (nSlots != 0 && !ReserveSlots(table, nSlots)) nSlots /= 2;
  table.size = nSlots;
  table.reciprocal = nSlots == 0 ? 0 : HashReciprocal(nSlots);
  if (table.block == nullptr) return;
  // Fresh memory is zero, and an all-zero slot counts as empty.
  const auto address = reinterpret_cast<std::uintptr_t>(table.block);
  const std::uintptr_t aligned = (address + slotSize - 1) & ~std::uintptr_t{slotSize - 1};
  // Rounding an address up needs a conversion from an integer.
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

}  // namespace mirvo
