#include "board/occupancy_maps.h"

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

constexpr std::array<Bitboard, 8> fileMasks = {
    0x0101010101010101ULL << 0, 0x0101010101010101ULL << 1, 0x0101010101010101ULL << 2,
    0x0101010101010101ULL << 3, 0x0101010101010101ULL << 4, 0x0101010101010101ULL << 5,
    0x0101010101010101ULL << 6, 0x0101010101010101ULL << 7};

constexpr std::array<Bitboard, 8> BuildFileSpan3() {
  std::array<Bitboard, 8> spans{};
  for (std::size_t file = 0; file < 8; ++file) {
    spans[file] = fileMasks[file];
    if (file > 0) spans[file] |= fileMasks[file - 1];
    if (file < 7) spans[file] |= fileMasks[file + 1];
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
extern constexpr std::array<Bitboard, 8> FileMask = fileMasks;
extern constexpr std::array<Bitboard, 8> FileSpan3 = BuildFileSpan3();

}  // namespace mirvo
