#include "book/book_writer.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "book/book_file.h"
#include "shell/base/file.h"

namespace mirvo {
namespace {

constexpr float fullWeight = 65535.0F;

void RemoveMove(BookEntry& entry, int place) {
  for (int i = place; i + 1 < entry.moveCount; ++i) {
    entry.moves[i] = entry.moves[i + 1];
    entry.hits[i] = entry.hits[i + 1];
    entry.weights[i] = entry.weights[i + 1];
  }
  --entry.moveCount;
}

void CleanEntry(BookEntry& entry, std::int32_t minHits) {
  for (int i = 0; i < entry.moveCount; ++i) {
    if (entry.hits[i] < minHits || entry.weights[i] == 0) RemoveMove(entry, i);
  }
}

void NormalizeEntry(BookEntry& entry) {
  std::int64_t total = 0;
  for (int i = 0; i < entry.moveCount; ++i) total += entry.weights[i];
  for (int i = 0; i < entry.moveCount; ++i) {
    const float share =
        total > 0 ? static_cast<float>(entry.weights[i]) / static_cast<float>(total) : 0.0F;
    entry.weights[i] = static_cast<std::int32_t>(share * fullWeight);
  }
}

struct SortKey {
  std::uint64_t key;
  std::int32_t source;  // index of the entry that belongs here
};

// Permutes the entries in place, cycle by cycle, so that no second buffer of
// entries is needed.
void ApplyOrder(BookEntry* entries, std::vector<SortKey>& order) {
  for (std::size_t start = 0; start < order.size(); ++start) {
    const BookEntry first = entries[start];
    std::size_t place = start;
    for (;;) {
      const auto source = static_cast<std::size_t>(order[place].source);
      order[place].source = static_cast<std::int32_t>(place);
      if (source == start) break;
      entries[place] = entries[source];
      place = source;
    }
    if (place != start) entries[place] = first;
  }
}

}  // namespace

void CleanBook(OpeningBook& book) {
  std::int32_t nKept = 0;
  for (std::int32_t i = 0; i < book.count; ++i) {
    CleanEntry(book.entries[i], book.minHits);
    if (book.entries[i].moveCount == 0) continue;
    if (nKept != i) book.entries[nKept] = book.entries[i];
    ++nKept;
  }
  book.count = nKept;
  ResetBookIndex(book.index);
}

void NormalizeBook(OpeningBook& book) {
  for (std::int32_t i = 0; i < book.count; ++i) NormalizeEntry(book.entries[i]);
}

void SortBook(OpeningBook& book) {
  std::vector<SortKey> order(static_cast<std::size_t>(book.count));
  for (std::int32_t i = 0; i < book.count; ++i) {
    order[static_cast<std::size_t>(i)] = {book.entries[i].key, i};
  }
  std::sort(order.begin(), order.end(), [](const SortKey& a, const SortKey& b) {
    return a.key != b.key ? a.key < b.key : a.source < b.source;
  });
  ApplyOrder(book.entries, order);
  ResetBookIndex(book.index);
}

std::int32_t WriteBook(const OpeningBook& book, const char* path) {
  const File file = OpenFile(path, "wb");
  if (file == nullptr) return 0;
  std::int32_t nRecords = 0;
  for (std::int32_t i = 0; i < book.count; ++i) {
    const BookEntry& entry = book.entries[i];
    for (int m = 0; m < entry.moveCount; ++m) {
      if (entry.hits[m] < book.minHits) continue;
      const auto weight = static_cast<std::uint16_t>(entry.weights[m] & 0xFFFF);
      WriteBookRecord(file.get(), {entry.key, EncodeBookMove(entry.moves[m]), weight, 0});
      ++nRecords;
    }
  }
  return nRecords;
}

}  // namespace mirvo
