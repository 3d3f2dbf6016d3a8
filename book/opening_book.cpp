#include "book/opening_book.h"

#include <cstdlib>

#include "shell/base/text.h"

namespace mirvo {
namespace {

// Two moves of an entry are the same if their squares, their moving kind and
// whether they promote are equal; the piece promoted to is not compared.
constexpr Move bookMoveMask = fromToMask | (Move{7} << moveKindShift) | promotionFlag;

}  // namespace

OpeningBook openingBook;

bool CreateOpeningBook(OpeningBook& book) {
  DestroyOpeningBook(book);
  book.entries = static_cast<BookEntry*>(std::calloc(bookCapacity, sizeof(BookEntry)));
  if (book.entries == nullptr || !CreateBookIndex(book.index)) {
    DestroyOpeningBook(book);
    return false;
  }
  return true;
}

void DestroyOpeningBook(OpeningBook& book) {
  std::free(book.entries);
  DestroyBookIndex(book.index);
  book = OpeningBook{};
}

std::int32_t FindEntry(OpeningBook& book, std::uint64_t key) {
  return FindInBookIndex(book.index, book.entries, book.count, key);
}

void AddBookMove(OpeningBook& book, std::int32_t index, Move move, std::int32_t weight) {
  BookEntry& entry = book.entries[index];
  for (int i = 0; i < entry.moveCount; ++i) {
    if (((entry.moves[i] ^ move) & bookMoveMask) != 0) continue;
    entry.hits[i] = Saturate(std::int64_t{entry.hits[i]} + 1);
    entry.weights[i] = Saturate(std::int64_t{entry.weights[i]} + weight);
    return;
  }
  if (entry.moveCount >= bookMovesPerPosition) return;
  entry.moves[entry.moveCount] = move;
  entry.hits[entry.moveCount] = 1;
  entry.weights[entry.moveCount] = weight;
  ++entry.moveCount;
}

void AddBookPosition(OpeningBook& book, std::uint64_t key, Move move, std::int32_t weight) {
  std::int32_t index = FindEntry(book, key);
  if (index < 0) {
    if (book.entries == nullptr || book.count >= bookGrowthLimit) return;
    index = book.count++;
    book.entries[index].key = key;
    book.entries[index].moveCount = 0;
  }
  AddBookMove(book, index, move, weight);
}

}  // namespace mirvo
