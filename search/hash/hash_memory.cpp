#include "search/hash/hash_memory.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "shell/base/clock.h"
#include "shell/base/large_pages.h"

namespace mirvo {
namespace {

/// Memory that can be released in negligible time.
constexpr std::size_t smallBlock = std::size_t{16} << 20;

/// Nodes that earn no large page: they use less memory than the limit allows anyway.
constexpr std::uint64_t unearnedNodes = 16384;

/// Nodes that earn one large page. Their page faults on small pages would take about as
/// long as prefaulting that page.
constexpr std::uint64_t nodesPerPage = 256;

/// A block that no table uses any more.
struct RetiredBlock {
  void* start;
  std::size_t bytes;
};

constexpr int maxRetired = 8;

struct HashMemory {
  RetiredBlock retired[maxRetired];
  int nRetired;
  std::uint64_t nodes;  // searched while memory was missing, since the last allocation
};

constinit HashMemory memory{};

void DropRetired(int index) {
  --memory.nRetired;
  std::copy(memory.retired + index + 1, memory.retired + memory.nRetired + 1,
            memory.retired + index);
}

void ReleaseRetired() {
  for (int i = 0; i < memory.nRetired; ++i) {
    ReleaseMemory(memory.retired[i].start, memory.retired[i].bytes);
  }
  memory.nRetired = 0;
}

void ReleaseSlice() {
  RetiredBlock& block = memory.retired[0];
  block.bytes = ReleaseMemoryEnd(block.start, block.bytes, smallBlock);
  if (block.bytes == 0) DropRetired(0);
}

void* AllocateSmall(std::size_t bytes) {
  void* const block = std::calloc(bytes, 1);
  if (block != nullptr) TouchMemory(block, bytes);
  return block;
}

/// Prefaults the last missing large page.
void PrefaultPage(HashTable& table) {
  --table.nMissing;
  PrefaultLargePage(static_cast<char*>(table.block) + table.nMissing * largePageSize);
}

/// Whether part of the tags, which are at the end of the block, is missing.
bool MissesTags(const HashTable& table) {
  return table.nMissing * largePageSize > table.size * sizeof(HashEntry);
}

/// Tags first, because every probe reads one; then the table with the fewest missing
/// pages.
bool ComesBefore(const HashTable& a, const HashTable& b) {
  if (MissesTags(a) != MissesTags(b)) return MissesTags(a);
  return a.nMissing < b.nMissing;
}

HashTable* NextTable() {
  HashTable* next = nullptr;
  for (HashTable* table : {&EvalHashTable, &PawnHashTable, &TranspositionTable}) {
    if (table->nMissing == 0) continue;
    if (next == nullptr || ComesBefore(*table, *next)) next = table;
  }
  return next;
}

std::size_t PagesPresent() {
  std::size_t nPages = 0;
  for (const HashTable* table : {&EvalHashTable, &PawnHashTable, &TranspositionTable}) {
    nPages += table->nPages - table->nMissing;
  }
  return nPages;
}

std::size_t PagesAllowed() {
  const std::uint64_t nEarned =
      (std::max(memory.nodes, unearnedNodes) - unearnedNodes) / nodesPerPage;
  return prefaultLimit / largePageSize + static_cast<std::size_t>(nEarned);
}

}  // namespace

bool HashReserve(HashTable& table, std::size_t bytes) {
  table.nPages = bytes < largePageSize ? 0 : (bytes + largePageSize - 1) / largePageSize;
  table.nMissing = table.nPages;
  memory.nodes = 0;
  if (table.nPages == 0) {
    table.block = AllocateSmall(bytes);
    return table.block != nullptr;
  }
  table.block = ReserveMemory(table.nPages * largePageSize);
  if (table.block == nullptr && memory.nRetired != 0) {
    ReleaseRetired();
    table.block = ReserveMemory(table.nPages * largePageSize);
  }
  return table.block != nullptr;
}

void HashRetire(HashTable& table) {
  if (table.block == nullptr) return;
  const std::size_t bytes = table.nPages * largePageSize;
  if (bytes == 0) {
    std::free(table.block);
  } else if (bytes <= smallBlock) {
    ReleaseMemory(table.block, bytes);
  } else {
    if (memory.nRetired == maxRetired) ReleaseRetired();
    memory.retired[memory.nRetired++] = {table.block, bytes};
  }
  table.block = nullptr;
  table.nPages = 0;
  table.nMissing = 0;
}

bool HashPrefaultSlice() {
  if (memory.nRetired != 0) {
    ReleaseSlice();
    return true;
  }
  HashTable* const table = NextTable();
  if (table == nullptr || PagesPresent() >= PagesAllowed()) return false;
  PrefaultPage(*table);
  return true;
}

void HashPrefaultFor(std::int32_t milliseconds) {
  const std::uint32_t start = TickCount();
  while (HashPrefaultSlice() && ElapsedSince(start) < milliseconds) {
  }
}

void HashPrefaultAll() {
  while (HashPrefaultSlice()) {
  }
}

void HashNoteUse(std::uint32_t nNodes) { memory.nodes += nNodes; }

}  // namespace mirvo
