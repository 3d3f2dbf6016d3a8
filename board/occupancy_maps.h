// Square re-indexing for rotated occupancies: in each rotated view the squares
// of a file or diagonal lie next to each other. Constant data.
#pragma once

#include <array>
#include <cstdint>

#include "board/coding.h"

namespace mirvo {

/// (file f, rank r) -> (7 - f) * 8 + r.
extern const std::array<std::int32_t, nSquares> Rot90Map;
/// Diagonals in a1-h8 direction, from the h1 corner to the a8 corner, each in
/// rising rank.
extern const std::array<std::int32_t, nSquares> DiagA1H8Map;
/// Diagonals in a8-h1 direction, from the a1 corner to the h8 corner, each in
/// rising rank.
extern const std::array<std::int32_t, nSquares> DiagA8H1Map;
/// square ^ 56. Kept beside the other maps; nothing reads it (Flip computes it).
extern const std::array<std::int32_t, nSquares> FlipMap;

/// The bit that a square has in each of the four views of the occupancy, in
/// the order in which a board keeps them.
struct alignas(32) RotatedBits {
  std::uint64_t plain;
  std::uint64_t rot90;
  std::uint64_t diagA1H8;
  std::uint64_t diagA8H1;
};
extern const std::array<RotatedBits, nSquares> RotatedBitsOf;

/// All squares of a file, and of a file with the files beside it. Kept beside the
/// maps; nothing reads them (FileSet and AdjacentFileSet compute them).
extern const std::array<Bitboard, 8> FileMask;
extern const std::array<Bitboard, 8> FileSpan3;

}  // namespace mirvo
