#include "board/geometry_tables.h"

#include <algorithm>
#include <cstdlib>

namespace mirvo {

std::int32_t ManhattanDistance[nSquares][nSquares];
std::int32_t ChebyshevDistance[nSquares][nSquares];
Bitboard ManhattanWithin[nSquares][maxBallRadius + 1];
Bitboard FrontSpanWhite[nSquares];
Bitboard FrontSpanBlack[nSquares];
Bitboard RookPath[nSquares][nSquares];
Bitboard BishopPath[nSquares][nSquares];

namespace {

int Sign(int value) {
  if (value == 0) return 0;
  return value > 0 ? 1 : -1;
}

// Squares from the first (excluded) to the second (included); the two lie on
// one line.
Bitboard PathBetween(int from, int to) {
  const int rankStep = Sign(RankOf(to) - RankOf(from));
  const int fileStep = Sign(FileOf(to) - FileOf(from));
  Bitboard path = 0;
  for (int square = from; square != to;) {
    square = SquareAt(RankOf(square) + rankStep, FileOf(square) + fileStep);
    path |= Bit(square);
  }
  return path;
}

}  // namespace

void BuildPaths() {
  for (int from = 0; from < nSquares; ++from) {
    for (int to = 0; to < nSquares; ++to) {
      const int ranks = std::abs(RankOf(to) - RankOf(from));
      const int files = std::abs(FileOf(to) - FileOf(from));
      const bool orthogonal = (ranks == 0) != (files == 0);
      const bool diagonal = ranks == files && ranks != 0;
      RookPath[from][to] = orthogonal ? PathBetween(from, to) : 0;
      BishopPath[from][to] = diagonal ? PathBetween(from, to) : 0;
    }
  }
}

void BuildFrontSpans() {
  for (int square = 0; square < nSquares; ++square) {
    FrontSpanWhite[square] = 0;
    FrontSpanBlack[square] = 0;
    for (int other = 0; other < nSquares; ++other) {
      if (std::abs(FileOf(other) - FileOf(square)) > 1) continue;
      if (RankOf(other) > RankOf(square)) FrontSpanWhite[square] |= Bit(other);
      if (RankOf(other) < RankOf(square)) FrontSpanBlack[square] |= Bit(other);
    }
  }
}

void BuildDistances() {
  for (int from = 0; from < nSquares; ++from) {
    for (int to = 0; to < nSquares; ++to) {
      const int ranks = std::abs(RankOf(to) - RankOf(from));
      const int files = std::abs(FileOf(to) - FileOf(from));
      ManhattanDistance[from][to] = ranks + files;
      ChebyshevDistance[from][to] = std::max(ranks, files);
    }
  }
}

void BuildManhattanWithin() {
  for (int square = 0; square < nSquares; ++square) {
    ManhattanWithin[square][0] = Bit(square);
    for (int radius = 1; radius <= maxBallRadius; ++radius) {
      ManhattanWithin[square][radius] = 0;
      for (int other = 0; other < nSquares; ++other) {
        if (ManhattanDistance[square][other] <= radius) {
          ManhattanWithin[square][radius] |= Bit(other);
        }
      }
    }
  }
}

}  // namespace mirvo
