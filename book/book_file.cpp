#include "book/book_file.h"

#include <algorithm>
#include <cstdlib>

#include "board/coding.h"
#include "book/opening_book.h"
#include "shell/base/file.h"

namespace mirvo {
namespace {

// The number whose bytes, the most significant first, are those of `value`, then `byte`.
std::uint64_t AppendByte(std::uint64_t value, std::uint8_t byte) { return (value << 8) | byte; }

std::uint64_t BigEndian64(const std::uint8_t* bytes) {
  std::uint64_t value = 0;
  for (int i = 0; i < 8; ++i) value = AppendByte(value, bytes[i]);
  return value;
}

// Number of complete records in an open file, from its size. A stream without a
// size has none; a directory reports a huge size and then fails to read.
std::int64_t CountRecords(std::FILE* file) {
  if (std::fseek(file, 0, SEEK_END) != 0) return 0;
  const std::int64_t size = std::ftell(file);
  std::rewind(file);
  return size < 0 ? 0 : size / bookRecordSize;
}

// The records of a position are adjacent in a file, so every new key starts an
// entry without a search for an older one. `hits` is not written: it counts only
// when building and merging.
void ReadIntoFreshBook(OpeningBook& book, ByteReader& file, std::int64_t nRecords) {
  book.count = 0;
  BookRecord record;
  std::uint64_t previousKey = 0;
  for (std::int64_t i = 0; i < nRecords && ReadBookRecord(file, record); ++i) {
    if (i == 0 || record.key != previousKey) {
      if (book.count >= bookCapacity) return;
      book.entries[book.count].key = record.key;
      book.entries[book.count].moveCount = 0;
      ++book.count;
    }
    previousKey = record.key;
    BookEntry& entry = book.entries[book.count - 1];
    if (entry.moveCount >= bookMovesPerPosition) continue;
    entry.moves[entry.moveCount] = DecodeBookMove(record.move);
    entry.weights[entry.moveCount] = record.weight;
    ++entry.moveCount;
  }
}

// Adds an empty entry between the old and the new positions, which saving drops,
// and does not read the file's last record. Kept so that the same books always
// give the same merged file.
void MergeIntoBook(OpeningBook& book, ByteReader& file, std::int64_t nRecords) {
  if (book.count < bookCapacity) {
    BookEntry& separator = book.entries[book.count++];
    separator.key = 0;
    separator.moveCount = 0;
  }
  BookRecord record;
  for (std::int64_t i = 0; i < nRecords - 1 && ReadBookRecord(file, record); ++i) {
    AddBookPosition(book, record.key, DecodeBookMove(record.move), record.weight);
  }
}

}  // namespace

Move DecodeBookMove(std::uint16_t bookMove) {
  const int toFile = bookMove & 7;
  const int toRank = (bookMove >> 3) & 7;
  const int fromFile = (bookMove >> 6) & 7;
  const int fromRank = (bookMove >> 9) & 7;
  const int promotion = (bookMove >> 12) & 7;
  const bool onBackRank = fromRank == toRank && (toRank == rank1 || toRank == rank8);
  if (fromFile == fileE && onBackRank && std::abs(fromFile - toFile) > 1) {
    const int kingFile = toFile >= fromFile ? fileG : fileC;
    return BuildMove(SquareAt(fromRank, fromFile), SquareAt(toRank, kingFile), white, king);
  }
  const Move move = BuildMove(SquareAt(fromRank, fromFile), SquareAt(toRank, toFile), white, pawn);
  return promotion == 0 ? move : move | PromotionBits(promotion);
}

std::uint16_t EncodeBookMove(Move move) {
  int from = FromSquare(move);
  int to = ToSquare(move);
  if (MovingKind(move) == king && std::abs(FileOf(from) - FileOf(to)) == 2) {
    const int rank = RankOf(to) == rank8 ? rank8 : rank1;
    const int rookFile = FileOf(to) > FileOf(from) ? fileH : fileA;
    from = SquareAt(rank, fileE);
    to = SquareAt(rank, rookFile);
  }
  return static_cast<std::uint16_t>(to | (from << 6));
}

int ReadBigEndian(ByteReader& file, int n, std::uint64_t& value) {
  value = 0;
  for (int i = 0; i < n; ++i) {
    const int byte = file.Next();
    if (byte == endOfFile) return 1;
    value = AppendByte(value, static_cast<std::uint8_t>(byte));
  }
  return 0;
}

bool ReadBookRecord(ByteReader& file, BookRecord& record) {
  std::uint64_t rest = 0;
  if (const std::uint8_t* bytes = file.Take(bookRecordSize); bytes != nullptr) {
    record.key = BigEndian64(bytes);
    rest = BigEndian64(bytes + 8);
  } else if (ReadBigEndian(file, 8, record.key) != 0 || ReadBigEndian(file, 8, rest) != 0) {
    return false;
  }
  record.move = static_cast<std::uint16_t>(rest >> 48);
  record.weight = static_cast<std::uint16_t>(rest >> 32);
  record.learn = static_cast<std::uint32_t>(rest);
  return true;
}

void WriteBigEndian(std::FILE* file, int n, std::uint64_t value) {
  for (int shift = 8 * (n - 1); shift >= 0; shift -= 8) {
    std::fputc(static_cast<int>((value >> shift) & 255), file);
  }
}

void WriteBookRecord(std::FILE* file, const BookRecord& record) {
  WriteBigEndian(file, 8, record.key);
  WriteBigEndian(file, 2, record.move);
  WriteBigEndian(file, 2, record.weight);
  WriteBigEndian(file, 4, record.learn);
}

bool LoadBook(OpeningBook& book, const char* path, bool replace) {
  const File file = book.entries == nullptr ? nullptr : OpenFile(path, "rb");
  if (file == nullptr) {
    book.loaded = 0;
    return false;
  }
  const std::int64_t nRecords = CountRecords(file.get());
  ByteReader reader(file.get());
  if (replace) {
    ResetBookIndex(book.index);
    ReadIntoFreshBook(book, reader, nRecords);
  } else {
    MergeIntoBook(book, reader, nRecords);
  }
  // Indexing now keeps it off the clock of the first move.
  UpdateBookIndex(book.index, book.entries, book.count);
  book.loaded = 1;
  return true;
}

}  // namespace mirvo
