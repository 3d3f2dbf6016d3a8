#include "board/occupancy_maps.h"

#include <gtest/gtest.h>

#include <set>

#include "tests/support/board_support.h"

namespace mirvo {
namespace {

int Of(const std::array<std::int32_t, nSquares>& map, const std::string& square) {
  return map[static_cast<std::size_t>(test::Square(square))];
}

TEST(OccupancyMaps, Rot90MapLaysFilesSideBySide) {
  for (int file = 0; file < 8; ++file) {
    for (int rank = 0; rank < 8; ++rank) {
      EXPECT_EQ(Rot90Map[static_cast<std::size_t>(rank * 8 + file)], (7 - file) * 8 + rank);
    }
  }
  EXPECT_EQ(Of(Rot90Map, "a1"), 56);
  EXPECT_EQ(Of(Rot90Map, "b1"), 48);
  EXPECT_EQ(Of(Rot90Map, "a2"), 57);
  EXPECT_EQ(Of(Rot90Map, "h8"), 7);
}

TEST(OccupancyMaps, DiagA1H8MapGoesFromTheH1CornerToTheA8Corner) {
  const char* const inOrder[] = {"h1", "g1", "h2", "f1", "g2", "h3", "e1", "f2", "g3", "h4", "d1",
                                 "e2", "f3", "g4", "h5", "c1", "d2", "e3", "f4", "g5", "h6", "b1",
                                 "c2", "d3", "e4", "f5", "g6", "h7", "a1", "b2", "c3", "d4", "e5",
                                 "f6", "g7", "h8", "a2", "b3", "c4", "d5", "e6", "f7", "g8", "a3",
                                 "b4", "c5", "d6", "e7", "f8", "a4", "b5", "c6", "d7", "e8", "a5",
                                 "b6", "c7", "d8", "a6", "b7", "c8", "a7", "b8", "a8"};
  int index = 0;
  for (const char* square : inOrder) EXPECT_EQ(Of(DiagA1H8Map, square), index++) << square;
  EXPECT_EQ(index, 64);
}

TEST(OccupancyMaps, DiagA8H1MapGoesFromTheA1CornerToTheH8Corner) {
  const char* const inOrder[] = {"a1", "b1", "a2", "c1", "b2", "a3", "d1", "c2", "b3", "a4", "e1",
                                 "d2", "c3", "b4", "a5", "f1", "e2", "d3", "c4", "b5", "a6", "g1",
                                 "f2", "e3", "d4", "c5", "b6", "a7", "h1", "g2", "f3", "e4", "d5",
                                 "c6", "b7", "a8", "h2", "g3", "f4", "e5", "d6", "c7", "b8", "h3",
                                 "g4", "f5", "e6", "d7", "c8", "h4", "g5", "f6", "e7", "d8", "h5",
                                 "g6", "f7", "e8", "h6", "g7", "f8", "h7", "g8", "h8"};
  int index = 0;
  for (const char* square : inOrder) EXPECT_EQ(Of(DiagA8H1Map, square), index++) << square;
  EXPECT_EQ(index, 64);
}

TEST(OccupancyMaps, FlipMapMirrorsTheRanks) {
  EXPECT_EQ(Of(FlipMap, "a1"), test::Square("a8"));
  EXPECT_EQ(Of(FlipMap, "e2"), test::Square("e7"));
  for (std::size_t square = 0; square < nSquares; ++square) {
    EXPECT_EQ(FlipMap[square], static_cast<std::int32_t>(square ^ 56));
  }
}

TEST(OccupancyMaps, EveryViewKeepsSquaresApart) {
  std::set<std::int32_t> seen[3];
  for (std::size_t square = 0; square < nSquares; ++square) {
    seen[0].insert(Rot90Map[square]);
    seen[1].insert(DiagA1H8Map[square]);
    seen[2].insert(DiagA8H1Map[square]);
    EXPECT_EQ(RotatedBitsOf[square].rot90, Bitboard{1} << Rot90Map[square]);
    EXPECT_EQ(RotatedBitsOf[square].diagA1H8, Bitboard{1} << DiagA1H8Map[square]);
    EXPECT_EQ(RotatedBitsOf[square].diagA8H1, Bitboard{1} << DiagA8H1Map[square]);
  }
  for (const auto& indices : seen) EXPECT_EQ(indices.size(), 64U);
}

TEST(OccupancyMaps, FileMasksAndTheirSpans) {
  for (int file = 0; file < 8; ++file) {
    Bitboard own = 0;
    Bitboard span = 0;
    for (int square = 0; square < nSquares; ++square) {
      const int distance = square % 8 - file;
      if (distance == 0) own |= Bitboard{1} << square;
      if (distance >= -1 && distance <= 1) span |= Bitboard{1} << square;
    }
    EXPECT_EQ(FileMask[static_cast<std::size_t>(file)], own) << file;
    EXPECT_EQ(FileSpan3[static_cast<std::size_t>(file)], span) << file;
  }
  EXPECT_EQ(FileMask[0], 0x0101010101010101ULL);
  EXPECT_EQ(FileSpan3[0], 0x0303030303030303ULL);
  EXPECT_EQ(FileSpan3[7], 0xC0C0C0C0C0C0C0C0ULL);
}

}  // namespace
}  // namespace mirvo
