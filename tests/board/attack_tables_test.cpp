#include "board/attack_tables.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "tests/support/board_support.h"

namespace mirvo {
namespace {

struct Direction {
  int file;
  int rank;
};

// Walks from a square until the edge or the first occupied square, included.
Bitboard Walk(int square, Direction step, Bitboard occupied) {
  Bitboard reached = 0;
  int file = square % 8 + step.file;
  int rank = square / 8 + step.rank;
  for (; file >= 0 && file <= 7 && rank >= 0 && rank <= 7; file += step.file, rank += step.rank) {
    const Bitboard here = Bitboard{1} << (rank * 8 + file);
    reached |= here;
    if ((occupied & here) != 0) break;
  }
  return reached;
}

Bitboard WalkLine(int square, Direction step, Bitboard occupied) {
  return Walk(square, step, occupied) | Walk(square, {-step.file, -step.rank}, occupied);
}

constexpr Direction east = {1, 0};
constexpr Direction north = {0, 1};
constexpr Direction northEast = {1, 1};
constexpr Direction northWest = {-1, 1};

// Squares of the line through `square`, lowest rank (or file) first.
std::vector<int> LineOf(int square, Direction step) {
  int file = square % 8;
  int rank = square / 8;
  while (file - step.file >= 0 && file - step.file <= 7 && rank - step.rank >= 0) {
    file -= step.file;
    rank -= step.rank;
  }
  std::vector<int> line;
  for (; file >= 0 && file <= 7 && rank <= 7; file += step.file, rank += step.rank) {
    line.push_back(rank * 8 + file);
  }
  return line;
}

Bitboard OccupancyOf(const std::vector<int>& line, unsigned state) {
  Bitboard occupied = 0;
  for (std::size_t i = 0; i < line.size(); ++i) {
    if ((state >> i & 1U) != 0) occupied |= Bitboard{1} << line[i];
  }
  return occupied;
}

class AttackTables : public testing::Test {
 protected:
  AttackTables() { test::PrepareTables(); }

  // Every entry that a lookup can reach, against a walk.
  static void ExpectLineTable(const Bitboard (&table)[nSquares][nLineStates], Direction step) {
    for (int square = 0; square < nSquares; ++square) {
      const std::vector<int> line = LineOf(square, step);
      for (unsigned state = 0; state < (1U << line.size()); ++state) {
        ASSERT_EQ(table[square][state], WalkLine(square, step, OccupancyOf(line, state)))
            << "square " << square << " state " << state;
      }
    }
  }
};

TEST_F(AttackTables, RankAttacksEqualAWalk) { ExpectLineTable(RankAttacks, east); }
TEST_F(AttackTables, FileAttacksEqualAWalk) { ExpectLineTable(FileAttacks, north); }
TEST_F(AttackTables, DiagA1H8AttacksEqualAWalk) { ExpectLineTable(DiagA1H8Attacks, northEast); }
TEST_F(AttackTables, DiagA8H1AttacksEqualAWalk) { ExpectLineTable(DiagA8H1Attacks, northWest); }

TEST_F(AttackTables, RankAttacksOfA1ByHand) {
  const int a1 = test::Square("a1");
  EXPECT_EQ(test::NamesOf(RankAttacks[a1][0]), "b1 c1 d1 e1 f1 g1 h1");
  EXPECT_EQ(test::NamesOf(RankAttacks[a1][2]), "b1");
  // The slider's own square in the index makes no difference.
  EXPECT_EQ(test::NamesOf(RankAttacks[a1][3]), "b1");
}

TEST_F(AttackTables, ADiagonalOfOneSquareAttacksNothing) {
  const int h1 = test::Square("h1");
  EXPECT_EQ(DiagA1H8Mask[h1], 1);
  EXPECT_EQ(DiagA1H8Attacks[h1][0], 0U);
}

TEST_F(AttackTables, ShiftsLengthsAndMasksOfLines) {
  for (int square = 0; square < nSquares; ++square) {
    const int file = square % 8;
    const int rank = square / 8;
    EXPECT_EQ(RankShift[square], rank * 8);
    EXPECT_EQ(FileShift[square], (7 - file) * 8);
    EXPECT_EQ(DiagA1H8Length[square], LineOf(square, northEast).size()) << square;
    EXPECT_EQ(DiagA8H1Length[square], LineOf(square, northWest).size()) << square;
    EXPECT_EQ(DiagA1H8Mask[square], (1 << LineOf(square, northEast).size()) - 1) << square;
    EXPECT_EQ(DiagA8H1Mask[square], (1 << LineOf(square, northWest).size()) - 1) << square;
  }
}

TEST_F(AttackTables, DiagonalShiftsByHand) {
  const struct {
    const char* square;
    int a1h8;
    int a8h1;
  } cases[] = {{"a1", 28, 0},  {"b1", 21, 1}, {"h1", 0, 28}, {"a2", 36, 1},
               {"a8", 63, 28}, {"h2", 1, 36}, {"h8", 28, 63}};
  for (const auto& c : cases) {
    EXPECT_EQ(DiagA1H8Shift[test::Square(c.square)], c.a1h8) << c.square;
    EXPECT_EQ(DiagA8H1Shift[test::Square(c.square)], c.a8h1) << c.square;
  }
}

TEST_F(AttackTables, DiagonalLengthsByHand) {
  const struct {
    const char* square;
    int a1h8;
    int a8h1;
  } cases[] = {{"a1", 8, 1}, {"b1", 7, 2}, {"h1", 1, 8}, {"a8", 1, 8}, {"h8", 8, 1}};
  for (const auto& c : cases) {
    EXPECT_EQ(DiagA1H8Length[test::Square(c.square)], c.a1h8) << c.square;
    EXPECT_EQ(DiagA8H1Length[test::Square(c.square)], c.a8h1) << c.square;
  }
}

// Random piece placements: the lookups on a board's views against walks.
TEST_F(AttackTables, LookupsOnABoardEqualWalks) {
  test::Random random(20);
  const auto board = std::make_unique<Board>();
  for (int i = 0; i < 300; ++i) {
    ClearBoard(*board);
    board->pieces[PieceIndex(white, pawn)] = random.Next() & random.Next();
    if (i % 3 == 0) board->pieces[PieceIndex(white, pawn)] &= random.Next();
    RebuildOccupancy(*board);
    RebuildRotated(*board);
    const Bitboard occupied = board->pieces[PieceIndex(white, pawn)];
    const OccupancyViews views = ViewsOf(*board);
    for (int square = 0; square < nSquares; ++square) {
      const Bitboard straight =
          WalkLine(square, east, occupied) | WalkLine(square, north, occupied);
      const Bitboard diagonal =
          WalkLine(square, northEast, occupied) | WalkLine(square, northWest, occupied);
      ASSERT_EQ(RookAttacks(*board, square), straight);
      ASSERT_EQ(BishopAttacks(*board, square), diagonal);
      ASSERT_EQ(QueenAttacks(*board, square), straight | diagonal);
      ASSERT_EQ(RookAttacks(views, square), straight);
      ASSERT_EQ(BishopAttacks(views, square), diagonal);
    }
  }
}

TEST_F(AttackTables, TheStateOfAFileByHand) {
  EXPECT_EQ(FileState(0, 0), 0U);
  EXPECT_EQ(FileState(test::Squares("a1"), 0), 0x01U);
  EXPECT_EQ(FileState(test::Squares("a1 a8 b4"), 0), 0x81U);
  EXPECT_EQ(FileState(test::Squares("a1 a8 b4"), 1), 0x08U);
  EXPECT_EQ(FileState(test::Squares("g5 h2 h3 h7"), 7), 0x46U);
  for (int file = 0; file < 8; ++file) EXPECT_EQ(FileState(~Bitboard{0}, file), 0xFFU) << file;
}

TEST_F(AttackTables, TheStateOfAFileIsWhatTheRotatedViewHolds) {
  test::Random random(21);
  const auto board = std::make_unique<Board>();
  for (int i = 0; i < 500; ++i) {
    ClearBoard(*board);
    Bitboard set = random.Next();
    if (i % 3 == 1) set &= random.Next();
    if (i % 3 == 2) set |= random.Next();
    board->pieces[PieceIndex(white, pawn)] = set;
    RebuildOccupancy(*board);
    RebuildRotated(*board);
    for (int square = 0; square < nSquares; ++square) {
      const unsigned state = FileState(set, square % 8);
      ASSERT_EQ(state, board->occupiedRot90 >> FileShift[square] & 255);
      ASSERT_EQ(FileAttacks[square][state], WalkLine(square, north, set));
    }
  }
}

// All squares whose distance in files and ranks satisfies `matches`.
template <typename Matches>
Bitboard Around(int square, Matches matches) {
  Bitboard set = 0;
  for (int other = 0; other < nSquares; ++other) {
    if (matches(other % 8 - square % 8, other / 8 - square / 8)) set |= Bitboard{1} << other;
  }
  return set;
}

TEST_F(AttackTables, KnightAndKingAttacksFromEverySquare) {
  for (int square = 0; square < nSquares; ++square) {
    EXPECT_EQ(KnightAttacks[square],
              Around(square, [](int df, int dr) { return df * df + dr * dr == 5; }));
    EXPECT_EQ(KingAttacks[square], Around(square, [](int df, int dr) {
                const int distance = df * df + dr * dr;
                return distance == 1 || distance == 2;
              }));
  }
  EXPECT_EQ(test::NamesOf(KnightAttacks[0]), "c2 b3");
  EXPECT_EQ(test::NamesOf(KingAttacks[0]), "b1 a2 b2");
}

TEST_F(AttackTables, PawnAttacksFromEverySquare) {
  for (int square = 0; square < nSquares; ++square) {
    EXPECT_EQ(PawnAttacks[white][square],
              Around(square, [](int df, int dr) { return dr == 1 && (df == 1 || df == -1); }));
    EXPECT_EQ(PawnAttacks[black][square],
              Around(square, [](int df, int dr) { return dr == -1 && (df == 1 || df == -1); }));
  }
  EXPECT_EQ(test::NamesOf(PawnAttacks[white][test::Square("h2")]), "g3");
  EXPECT_EQ(test::NamesOf(PawnAttacks[black][test::Square("a7")]), "b6");
  EXPECT_EQ(PawnAttacks[white][test::Square("e8")], 0U);
  EXPECT_EQ(PawnAttacks[black][test::Square("e1")], 0U);
}

TEST_F(AttackTables, BuildersRunInAnyNumberOfRounds) {
  const Bitboard before = QueenAttacks(test::BoardFrom(test::startFen), 27);
  InitAttackTables();
  EXPECT_EQ(QueenAttacks(test::BoardFrom(test::startFen), 27), before);
}

TEST_F(AttackTables, LinesOfAnEmptyBoardAgreeWithTheTables) {
  for (int square = 0; square < nSquares; ++square) {
    EXPECT_EQ(RookLines(square), RookAttacks(square, 0, 0)) << square;
    EXPECT_EQ(BishopLines(square), BishopAttacks(square, 0, 0)) << square;
  }
}

}  // namespace
}  // namespace mirvo
