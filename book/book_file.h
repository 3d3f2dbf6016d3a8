// The book file: 16-byte big-endian records of position key, move, weight and
// learn value, those of one position together. Reading and writing of records
// and the two move codings, and loading a whole book.
#pragma once

#include <cstdint>
#include <cstdio>

#include "board/move.h"
#include "book/byte_reader.h"
#include "book/opening_book.h"

namespace mirvo {

inline constexpr int bookRecordSize = 16;

struct BookRecord {
  std::uint64_t key;
  std::uint16_t move;
  std::uint16_t weight;
  std::uint32_t learn;  // not used; written as 0
};

/// The engine's word for a move of a book file: squares, promotion, and for
/// castling (either spelling) the king's two-file move with kind king. The
/// moving kind of all other moves stays 0.
Move DecodeBookMove(std::uint16_t bookMove);

/// The book file's word for a move. Castling is written as king takes rook; a
/// promotion is written as a plain pawn move, so that readers take their own
/// default for the piece.
std::uint16_t EncodeBookMove(Move move);

/// Reads an unsigned number of n <= 8 bytes, most significant first. Returns 1
/// at the end of the file (`value` then holds the bytes that were there), else 0.
int ReadBigEndian(ByteReader& file, int n, std::uint64_t& value);

/// Reads one record; false when the file ends before its last byte.
bool ReadBookRecord(ByteReader& file, BookRecord& record);

/// Writes the n low bytes of value, most significant first.
void WriteBigEndian(std::FILE* file, int n, std::uint64_t value);

void WriteBookRecord(std::FILE* file, const BookRecord& record);

/// Reads a book file. Replace mode starts a fresh book, merge mode adds to it.
/// Returns whether the file could be opened; clears `loaded` if not.
bool LoadBook(OpeningBook& book, const char* path, bool replace);

}  // namespace mirvo
