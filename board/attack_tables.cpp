#include "board/attack_tables.h"

#include <array>

#include "board/bits.h"
#include "board/geometry_tables.h"
#include "board/occupancy_maps.h"

namespace mirvo {

Bitboard RankAttacks[nSquares][nLineStates];
Bitboard FileAttacks[nSquares][nLineStates];
Bitboard DiagA1H8Attacks[nSquares][nLineStates];
Bitboard DiagA8H1Attacks[nSquares][nLineStates];
std::uint8_t RankShift[nSquares];
std::uint8_t FileShift[nSquares];
std::uint8_t DiagA1H8Shift[nSquares];
std::uint8_t DiagA8H1Shift[nSquares];
std::uint8_t DiagA1H8Length[nSquares];
std::uint8_t DiagA8H1Length[nSquares];
std::uint8_t DiagA1H8Mask[nSquares];
std::uint8_t DiagA8H1Mask[nSquares];
Bitboard KnightAttacks[nSquares];
Bitboard KingAttacks[nSquares];
Bitboard PawnAttacks[nSides][nSquares];

namespace {

// Squares that share a diagonal.
constexpr BishopLineTable LayBishopLines() {
  BishopLineTable lines{};
  for (int from = 0; from < nSquares; ++from) {
    for (int to = 0; to < nSquares; ++to) {
      const int ranks = RankOf(to) - RankOf(from);
      const int files = FileOf(to) - FileOf(from);
      if (from != to && (ranks == files || ranks == -files)) lines.of[from] |= Bit(to);
    }
  }
  return lines;
}

}  // namespace

constinit const BishopLineTable BishopLineSets = LayBishopLines();

namespace {

struct Step {
  int rank;
  int file;
};

constexpr bool OnBoard(int rank, int file) {
  return rank >= 0 && rank < 8 && file >= 0 && file < 8;
}

// Squares from `square` (excluded) in one direction up to and including the
// first member of `blockers`, or to the board edge.
Bitboard Ray(int square, Step step, Bitboard blockers) {
  Bitboard ray = 0;
  int rank = RankOf(square) + step.rank;
  int file = FileOf(square) + step.file;
  while (OnBoard(rank, file)) {
    const Bitboard target = Bit(SquareAt(rank, file));
    ray |= target;
    if ((blockers & target) != 0) break;
    rank += step.rank;
    file += step.file;
  }
  return ray;
}

// The first square of the line through `square`, found by walking against `step`.
int LineStart(int square, Step step) {
  int rank = RankOf(square);
  int file = FileOf(square);
  while (OnBoard(rank - step.rank, file - step.file)) {
    rank -= step.rank;
    file -= step.file;
  }
  return SquareAt(rank, file);
}

int LineLength(int square, Step step) {
  return 1 + PopCount(Ray(LineStart(square, step), step, 0));
}

// Fills one row of a sliding table: bit i of the index is the i-th square of
// the line counted from its start.
void FillLine(Bitboard (&row)[nLineStates], int square, Step step) {
  const int start = LineStart(square, step);
  const int length = LineLength(square, step);
  const Step back = {-step.rank, -step.file};
  for (int state = 0; state < (1 << length); ++state) {
    Bitboard blockers = 0;
    for (int i = 0; i < length; ++i) {
      if ((state >> i & 1) == 0) continue;
      blockers |= Bit(SquareAt(RankOf(start) + i * step.rank, FileOf(start) + i * step.file));
    }
    row[state] = Ray(square, step, blockers) | Ray(square, back, blockers);
  }
}

constexpr Step alongRank = {0, 1};
constexpr Step alongFile = {1, 0};
constexpr Step alongA1H8 = {1, 1};
constexpr Step alongA8H1 = {1, -1};

void BuildLineShifts() {
  for (int square = 0; square < nSquares; ++square) {
    const auto index = static_cast<std::size_t>(square);
    const auto a1h8Start = static_cast<std::size_t>(LineStart(square, alongA1H8));
    const auto a8h1Start = static_cast<std::size_t>(LineStart(square, alongA8H1));
    RankShift[index] = static_cast<std::uint8_t>(RankOf(square) * 8);
    FileShift[index] = static_cast<std::uint8_t>((7 - FileOf(square)) * 8);
    DiagA1H8Shift[index] = static_cast<std::uint8_t>(DiagA1H8Map[a1h8Start]);
    DiagA8H1Shift[index] = static_cast<std::uint8_t>(DiagA8H1Map[a8h1Start]);
    DiagA1H8Length[index] = static_cast<std::uint8_t>(LineLength(square, alongA1H8));
    DiagA8H1Length[index] = static_cast<std::uint8_t>(LineLength(square, alongA8H1));
    DiagA1H8Mask[index] = static_cast<std::uint8_t>((1 << DiagA1H8Length[index]) - 1);
    DiagA8H1Mask[index] = static_cast<std::uint8_t>((1 << DiagA8H1Length[index]) - 1);
  }
}

void BuildSlidingAttacks() {
  BuildLineShifts();
  for (int square = 0; square < nSquares; ++square) {
    FillLine(RankAttacks[square], square, alongRank);
    FillLine(FileAttacks[square], square, alongFile);
    FillLine(DiagA1H8Attacks[square], square, alongA1H8);
    FillLine(DiagA8H1Attacks[square], square, alongA8H1);
  }
}

Bitboard LeaperTargets(int square, const std::array<Step, 8>& steps) {
  Bitboard targets = 0;
  for (const Step& step : steps) {
    const int rank = RankOf(square) + step.rank;
    const int file = FileOf(square) + step.file;
    if (OnBoard(rank, file)) targets |= Bit(SquareAt(rank, file));
  }
  return targets;
}

void BuildKnightAttacks() {
  constexpr std::array<Step, 8> steps = {
      {{2, 1}, {1, 2}, {-1, 2}, {-2, 1}, {-2, -1}, {-1, -2}, {1, -2}, {2, -1}}};
  for (int square = 0; square < nSquares; ++square) {
    KnightAttacks[square] = LeaperTargets(square, steps);
  }
}

void BuildKingAttacks() {
  constexpr std::array<Step, 8> steps = {
      {{1, 1}, {0, 1}, {-1, 1}, {-1, 0}, {-1, -1}, {0, -1}, {1, -1}, {1, 0}}};
  for (int square = 0; square < nSquares; ++square) {
    KingAttacks[square] = LeaperTargets(square, steps);
  }
}

void BuildPawnAttacks() {
  for (int square = 0; square < nSquares; ++square) {
    for (int side = 0; side < nSides; ++side) {
      const int rank = RankOf(square) + (side == white ? 1 : -1);
      Bitboard targets = 0;
      if (OnBoard(rank, FileOf(square) - 1)) targets |= Bit(SquareAt(rank, FileOf(square) - 1));
      if (OnBoard(rank, FileOf(square) + 1)) targets |= Bit(SquareAt(rank, FileOf(square) + 1));
      PawnAttacks[side][square] = targets;
    }
  }
}

// Nothing to build: file masks are constant data (occupancy_maps.h), and the masks of
// diagonals are built with the sliding attacks. Kept for its dot in start-up's
// progress line.
void BuildMasks() {}

}  // namespace

const TableBuilder boardTableBuilders[nTableBuilders] = {
    BuildHighBit16,     BuildPopCount16,  BuildSlidingAttacks, BuildSquareBit,   BuildPaths,
    BuildKnightAttacks, BuildKingAttacks, BuildPawnAttacks,    BuildSquareClear, BuildMasks,
    BuildFrontSpans,    BuildDistances,   BuildManhattanWithin};

void InitAttackTables() {
  for (const TableBuilder build : boardTableBuilders) build();
}

}  // namespace mirvo
