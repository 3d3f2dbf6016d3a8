// The steps that turn a built or merged book into a file. They change the entries
// in place; those that move entries reset the index.
#pragma once

#include "book/opening_book.h"

namespace mirvo {

/// Drops moves with too few hits or without weight, then positions without
/// moves. The move that follows a dropped one is not examined, so of two adjacent
/// candidates the second stays; WriteBook tests the hits again.
void CleanBook(OpeningBook& book);

/// Scales the weights of each position to a total of about 65535, in single
/// precision and truncated. A position whose total is 0 keeps weights of 0.
void NormalizeBook(OpeningBook& book);

/// Sorts the positions by key, as unsigned numbers; equal keys keep their order.
void SortBook(OpeningBook& book);

/// Writes the moves with enough hits, position by position. Returns the number
/// of records; 0 when the file cannot be opened.
std::int32_t WriteBook(const OpeningBook& book, const char* path);

}  // namespace mirvo
