// The king term: a base position and what each rule changes in it.
#include "eval/king.h"
#include "eval/eval_tables.h"
#include "tests/eval/eval_fixture.h"

namespace mirvo {
namespace {

constexpr int Square(char file, int rank) { return SquareAt(rank - 1, file - 'a'); }

class Kings : public EvalTest {};

struct KingCase {
  const char* name;
  const char* fen;
  ScorePair expected;
};

TEST_F(Kings, WhiteKingsWorkedOutByHand) {
  const KingCase cases[] = {
      // Square -40 doubled / 56; one shelter pawn -40, g and f missing -40, halved
      // off the second rank; open e, d and f files -60.
      {"king in the open", "7k/8/8/8/4K3/8/7P/8 w -", {-180, 56}},
      // Square 30/4, full shelter.
      {"castled", "7k/8/8/8/8/8/5PPP/6K1 w -", {30, 4}},
      // Two pawns -20, the third one on the third rank 10.
      {"shelter pawn advanced", "7k/8/8/8/8/7P/5PP1/6K1 w -", {20, 4}},
      // -20, -20, open h file -15.
      {"shelter pawn gone", "7k/8/8/8/8/8/5PP1/6K1 w -", {-25, 4}},
      // Square 10/8, open d file -15.
      {"castled long", "7k/8/8/8/8/8/PPP5/2K5 w -", {-5, 8}},
      // d1 still belongs to the a-c wing: square 0/10; open d and e files -45.
      {"castled, king on d1", "7k/8/8/8/8/8/PPP5/3K4 w -", {-45, 10}},
      // e1 belongs to the f-h wing: open e and d files -45.
      {"castled, king on e1", "7k/8/8/8/8/8/5PPP/4K3 w -", {-45, 10}},
      // The corners have one adjacent file: square 20/0, full shelter.
      {"king in the a1 corner", "7k/8/8/8/8/8/PPP5/K7 w -", {20, 0}},
      {"king in the h1 corner", "k7/8/8/8/8/8/5PPP/7K w -", {20, 0}},
      // Square 20/10; one pawn -40, g missing -20, h third 10, not halved; g file -30.
      {"king on the second rank", "7k/8/8/8/8/7P/5PK1/8 w -", {-60, 10}},
      // Square -40/14; shelter -10 halved to -5.
      {"king above its pawns", "7k/8/8/8/8/6KP/5PP1/8 w -", {-45, 14}},
      // Square 0/10; six wing pawns -95 + 60; open e and d files -45.
      {"not castled", "7k/8/8/8/8/8/PPP2PPP/4K3 w KQ", {-80, -25}},
      {"not castled, centre pawns at home", "7k/8/8/8/8/8/PPPPPPPP/4K3 w KQ", {-35, -25}},
      {"one wing pawn on the third rank", "7k/8/8/8/8/7P/PPPPPPP1/4K3 w KQ", {-45, -25}},
      {"one wing pawn further on", "7k/8/8/8/7P/8/PPPPPPP1/4K3 w KQ", {-50, -25}},
      // One castling right lost costs nothing here.
      {"one rook moved", "7k/8/8/8/8/8/PPPPPPPP/4K3 w K", {-35, -25}},
      // Distance 13: -2; distance 6: -16, one attacker of weight 2 is 1 point: 0.
      {"far knight", "n6k/8/8/8/8/8/5PPP/6K1 w -", {28, 2}},
      {"near knight", "7k/8/8/4n3/8/8/5PPP/6K1 w -", {14, -12}},
      // Distance 13: -1; g2 lost 3 points and 1: table 0.
      {"far bishop", "b6k/8/8/8/8/8/5PPP/6K1 w -", {29, 3}},
      // Distance 13: -1; back-rank weakness -10.
      {"far rook, weak back rank", "r6k/8/8/8/8/8/5PPP/6K1 w -", {19, -7}},
      // Shelter -20 + 10; -1.
      {"far rook, a flight square", "r6k/8/8/8/8/6P1/5P1P/6K1 w -", {19, 3}},
      // Distance 13: -5; g2 lost 3 and 5 / 2 points: table 1; back rank -10.
      {"far queen", "q6k/8/8/8/8/8/5PPP/6K1 w -", {14, -12}},
      // Two shelter pawns -20, g missing -20, its file -30; -1 rook, 5 knight.
      {"an own piece leaves a flight square", "r6k/8/8/8/8/8/5PNP/6K1 w -", {-36, 8}},
      // Pieces within three steps: 5 each way; bishop at three steps -11.
      {"own knight near", "7k/8/8/8/8/5N2/5PPP/6K1 w -", {35, 9}},
      {"own rook near", "7k/8/8/8/8/8/5PPP/5RK1 w -", {35, 9}},
      {"enemy bishop near", "7k/8/8/8/6b1/8/5PPP/6K1 w -", {14, -12}},
      {"own pawns near do not count", "7k/8/8/8/8/6P1/5PPP/6K1 w -", {30, 4}},
      {"enemy king near does not count", "8/8/8/8/6k1/8/5PPP/6K1 w -", {30, 4}},
      // Enemy pawns in the quarter e1-h4.
      {"pawn storm", "7k/8/8/8/6p1/8/5PPP/6K1 w -", {20, 4}},
      {"pawn outside by rank", "7k/8/8/6p1/8/8/5PPP/6K1 w -", {30, 4}},
      {"pawn outside by file", "7k/8/8/8/3p4/8/5PPP/6K1 w -", {30, 4}},
      {"two pawns", "7k/8/8/8/4p1p1/8/5PPP/6K1 w -", {10, 4}},
  };
  for (const KingCase& test : cases) {
    EXPECT_EQ(TermOf(test.fen, kingsTerm, white), test.expected) << test.name;
  }
}

TEST_F(Kings, BlackKingsMirrorWhites) {
  const KingCase cases[] = {
      {"castled", "6k1/5ppp/8/8/8/8/8/7K w -", {30, 4}},
      {"castled long", "2k5/ppp5/8/8/8/8/8/7K w -", {-5, 8}},
      {"king above its pawns", "8/5pp1/6kp/8/8/8/8/7K w -", {-45, 14}},
      {"not castled", "4k3/ppp2ppp/8/8/8/8/8/7K w kq", {-80, -25}},
      {"far rook", "6k1/5ppp/8/8/8/8/8/R6K w -", {19, -7}},
      {"pawn storm by absolute ranks", "6k1/5ppp/8/6P1/8/8/8/7K w -", {20, 4}},
      {"pawn outside by rank", "6k1/5ppp/8/8/6P1/8/8/7K w -", {30, 4}},
  };
  for (const KingCase& test : cases) {
    EXPECT_EQ(TermOf(test.fen, kingsTerm, black), test.expected) << test.name;
  }
}

TEST_F(Kings, AStormingPawnStandsInTheKingsQuarterOfTheBoard) {
  struct {
    const char* fen;
    int side;
    Bitboard quarter;
  } const cases[] = {
      {"7k/8/8/8/8/8/5PPP/4K3 w -", white, 0x00000000F0F0F0F0ULL},
      {"7k/8/8/8/8/8/PPP5/3K4 w -", white, 0x000000000F0F0F0FULL},
      {"7k/8/8/8/8/8/PPPK4/8 w -", white, 0x000000000F0F0F0FULL},
      {"7k/8/8/8/8/3K4/PPP5/8 w -", white, 0},  // off its first two ranks
      {"4k3/5ppp/8/8/8/8/8/K7 w -", black, 0xF0F0F0F000000000ULL},
      {"8/pppk4/8/8/8/8/8/K7 w -", black, 0x0F0F0F0F00000000ULL},
      {"8/ppp5/3k4/8/8/8/8/K7 w -", black, 0},
  };
  for (const auto& test : cases) {
    Cold(test.fen);
    const ScorePair calm = EvaluateKing(record, test.side);
    for (int square = 0; square < nSquares; ++square) {
      board.pieces[PieceIndex(test.side ^ 1, pawn)] = Bit(square);
      const int expected = (test.quarter & Bit(square)) != 0 ? -10 : 0;
      EXPECT_EQ(EvaluateKing(record, test.side) - calm, (ScorePair{expected, 0}))
          << test.fen << " " << square;
    }
  }
}

TEST_F(Kings, LostCastlingRightsCostFiftyOnce) {
  const char fen[] = "7k/8/8/8/8/8/PPPPPPPP/4K3 w KQ";
  const ScorePair full = TermOf(fen, kingsTerm, white);
  board.castling.kingMoved[white] = 1;
  EXPECT_EQ(EvaluateKing(record, white) - full, (ScorePair{-50, -50}));
  board.castling.kingMoved[white] = 0;
  board.castling.queenRookMoved[white] = 1;
  EXPECT_EQ(EvaluateKing(record, white), full);
  board.castling.kingRookMoved[white] = 1;
  EXPECT_EQ(EvaluateKing(record, white) - full, (ScorePair{-50, -50}));
  board.castling.kingMoved[white] = 1;
  EXPECT_EQ(EvaluateKing(record, white) - full, (ScorePair{-50, -50}));
}

TEST_F(Kings, OpeningStageReadsItsOwnTableInBothHalves) {
  // d3: -24 in the opening, -20 doubled and 40 afterwards.
  Cold("7k/8/8/8/8/3K4/PPPPPPPP/8 w -");
  record.stage = Middlegame;
  const ScorePair middle = EvaluateKing(record, white);
  record.stage = Endgame;
  EXPECT_EQ(EvaluateKing(record, white), middle);
  record.stage = Opening;
  EXPECT_EQ(EvaluateKing(record, white) - middle, (ScorePair{-24 + 40, -24 - 40}));
}

TEST_F(Kings, DangerPointsFromAttackersAreHalvedDownAndCapped) {
  struct {
    int attackers;
    int weight;
    int amount;
  } const cases[] = {{0, 7, 0}, {1, 11, 1}, {3, 7, 5}, {6, 19, 162}, {9, 22, 490}, {30, 150, 490}};
  Cold("7k/8/8/8/8/8/5PPP/6K1 w -");
  const ScorePair calm = EvaluateKing(record, white);
  for (const auto& test : cases) {
    record.kingAttackers[white] = test.attackers;
    record.kingAttackWeight[white] = test.weight;
    EXPECT_EQ(calm - EvaluateKing(record, white), (ScorePair{test.amount, test.amount}))
        << test.attackers << " x " << test.weight;
  }
}

TEST_F(Kings, DangerCountsZoneSquaresTheEnemyHasToItself) {
  Cold("7k/8/8/8/8/8/5PPP/6K1 w -");
  record.attacks[white][unionAttacks] = 0;
  const ScorePair calm = EvaluateKing(record, white);
  record.attacks[black][unionAttacks] = ~Bitboard{0};
  // Nine squares, 27 points.
  EXPECT_EQ(calm - EvaluateKing(record, white), (ScorePair{36, 36}));
  record.attacks[white][unionAttacks] = Bit(Square('f', 3)) | Bit(Square('g', 3));
  EXPECT_EQ(calm - EvaluateKing(record, white), (ScorePair{22, 22}));
}

TEST_F(Kings, ZoneIsABlockOnTheBackRankAndABallElsewhere) {
  constexpr Bitboard a1c3 = 0x0000000000070707ULL;
  constexpr Bitboard f1h3 = 0x0000000000E0E0E0ULL;
  const Bitboard whiteZones[] = {a1c3, a1c3, a1c3, a1c3, f1h3, f1h3, f1h3, f1h3};
  for (int file = 0; file < 8; ++file) {
    board.kingRank[white] = 0;
    board.kingFile[white] = static_cast<std::uint8_t>(file);
    EXPECT_EQ(KingZone(board, white), whiteZones[file]) << file;
    board.kingRank[black] = 7;
    board.kingFile[black] = static_cast<std::uint8_t>(file);
    EXPECT_EQ(KingZone(board, black), whiteZones[file] << 40) << file;
  }
  // e4: thirteen squares within two steps, e4 among them.
  board.kingRank[white] = 3;
  board.kingFile[white] = 4;
  EXPECT_EQ(KingZone(board, white), Bitboard{0x10} << 8 | Bitboard{0x38} << 16 |
                                        Bitboard{0x7C} << 24 | Bitboard{0x38} << 32 |
                                        Bitboard{0x10} << 40);
  // The enemy's back rank is no home: a ball there too.
  board.kingRank[white] = 7;
  board.kingFile[white] = 0;
  EXPECT_EQ(KingZone(board, white), Bit(Square('a', 8)) | Bit(Square('b', 8)) |
                                        Bit(Square('c', 8)) | Bit(Square('a', 7)) |
                                        Bit(Square('b', 7)) | Bit(Square('a', 6)));
}

}  // namespace
}  // namespace mirvo
