// The book file: 16-byte big-endian records of position key, move, weight and
// learn value; the records of a position are adjacent. Reads and writes records,
// converts moves between the two encodings, loads a whole book.
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

/// Decodes a move of a book file: squares, promotion, and for castling (either
/// encoding) the king's two-file move with kind king. The moving kind of all other
/// moves stays 0.
Move DecodeBookMove(std::uint16_t bookMove);

/// Encodes a move for a book file. Castling becomes king takes rook; a promotion
/// becomes a plain pawn move, for which readers choose the piece themselves.
std::uint16_t EncodeBookMove(Move move);

/// Reads an unsigned number of n <= 8 bytes, most significant first. Returns 1
/// at the end of the file (`value` then holds the bytes that were there), else 0.
int ReadBigEndian(ByteReader& file, int n, std::uint64_t& value);

/// Reads one record; false when the file ends before its last byte.
bool ReadBookRecord(ByteReader& file, BookRecord& record);

/// Writes the n low bytes of value, most significant first.
void WriteBigEndian(std::FILE* file, int n, std::uint64_t value);

void WriteBookRecord(std::FILE* file, const BookRecord& record);

/// Reads a book file into an empty book (`replace`) or adds it to the book.
/// Returns whether the file could be opened; clears `loaded` if not.
bool LoadBook(OpeningBook& book, const char* path, bool replace);

}  // namespace mirvo
