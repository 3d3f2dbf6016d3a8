// The steps by which a book that was built or merged becomes a file. Each
// works on the entries in place; the index is reset where they move.
#pragma once

#include "book/opening_book.h"

namespace mirvo {

/// Drops moves with too few hits or without weight, then positions without
/// moves. A move that slides into a freed place is not examined, so of two
/// adjacent candidates the second stays; WriteBook tests the hits again.
void CleanBook(OpeningBook& book);

/// Scales the weights of each position to a total of about 65535, truncated in
/// single precision. A position whose total is 0 keeps weights of 0.
void NormalizeBook(OpeningBook& book);

/// Orders the positions by key, as unsigned numbers; equal keys keep their order.
void SortBook(OpeningBook& book);

/// Writes the moves with enough hits, position by position. Returns the number
/// of records; 0 when the file cannot be opened.
std::int32_t WriteBook(const OpeningBook& book, const char* path);

}  // namespace mirvo
