#include "board/occupancy_maps.h"

#include "board/square_sets.h"

namespace mirvo {
namespace {

constexpr std::array<std::int32_t, nSquares> BuildRot90Map() {
  std::array<std::int32_t, nSquares> map{};
  for (int square = 0; square < nSquares; ++square) {
    map[static_cast<std::size_t>(square)] = (7 - FileOf(square)) * 8 + RankOf(square);
  }
  return map;
}

// Numbers the squares diagonal by diagonal, from the h1 corner (file minus
// rank = 7) to the a8 corner (-7), each diagonal in rising rank.
constexpr std::array<std::int32_t, nSquares> BuildDiagA1H8Map() {
  std::array<std::int32_t, nSquares> map{};
  int index = 0;
  for (int difference = 7; difference >= -7; --difference) {
    for (int rank = 0; rank < 8; ++rank) {
      const int file = rank + difference;
      if (file < 0 || file > 7) continue;
      map[static_cast<std::size_t>(SquareAt(rank, file))] = index++;
    }
  }
  return map;
}

// The same for the other direction, from the a1 corner (file plus rank = 0) to
// the h8 corner (14).
constexpr std::array<std::int32_t, nSquares> BuildDiagA8H1Map() {
  std::array<std::int32_t, nSquares> map{};
  int index = 0;
  for (int sum = 0; sum <= 14; ++sum) {
    for (int rank = 0; rank < 8; ++rank) {
      const int file = sum - rank;
      if (file < 0 || file > 7) continue;
      map[static_cast<std::size_t>(SquareAt(rank, file))] = index++;
    }
  }
  return map;
}

constexpr std::array<std::int32_t, nSquares> BuildFlipMap() {
  std::array<std::int32_t, nSquares> map{};
  for (int square = 0; square < nSquares; ++square) {
    map[static_cast<std::size_t>(square)] = Flip(square);
  }
  return map;
}

constexpr std::array<Bitboard, 8> BuildFileMasks() {
  std::array<Bitboard, 8> masks{};
  for (int file = fileA; file <= fileH; ++file) {
    masks[static_cast<std::size_t>(file)] = FileSet(file);
  }
  return masks;
}

constexpr std::array<Bitboard, 8> BuildFileSpan3() {
  std::array<Bitboard, 8> spans{};
  for (int file = fileA; file <= fileH; ++file) {
    spans[static_cast<std::size_t>(file)] = FileSet(file) | AdjacentFileSet(file);
  }
  return spans;
}

constexpr auto rot90 = BuildRot90Map();
constexpr auto diagA1H8 = BuildDiagA1H8Map();
constexpr auto diagA8H1 = BuildDiagA8H1Map();

constexpr std::array<RotatedBits, nSquares> BuildRotatedBits() {
  std::array<RotatedBits, nSquares> bits{};
  for (std::size_t square = 0; square < nSquares; ++square) {
    bits[square] = {Bit(static_cast<int>(square)), Bit(rot90[square]), Bit(diagA1H8[square]),
                    Bit(diagA8H1[square])};
  }
  return bits;
}

static_assert(rot90[0] == 56 && rot90[1] == 48 && rot90[8] == 57 && rot90[63] == 7);
static_assert(diagA1H8[7] == 0 && diagA1H8[0] == 28 && diagA1H8[56] == 63);
static_assert(diagA8H1[0] == 0 && diagA8H1[7] == 28 && diagA8H1[63] == 63);

}  // namespace

extern constexpr std::array<std::int32_t, nSquares> Rot90Map = rot90;
extern constexpr std::array<std::int32_t, nSquares> DiagA1H8Map = diagA1H8;
extern constexpr std::array<std::int32_t, nSquares> DiagA8H1Map = diagA8H1;
extern constexpr std::array<std::int32_t, nSquares> FlipMap = BuildFlipMap();
extern constexpr std::array<RotatedBits, nSquares> RotatedBitsOf = BuildRotatedBits();
extern constexpr std::array<Bitboard, 8> FileMask = BuildFileMasks();
extern constexpr std::array<Bitboard, 8> FileSpan3 = BuildFileSpan3();

}  // namespace mirvo
