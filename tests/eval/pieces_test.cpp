// Knights, bishops, rooks and queens. Unless a case is about king zones, no piece
// attacks one.
#include "tests/eval/eval_fixture.h"

namespace mirvo {
namespace {

constexpr int Square(char file, int rank) { return SquareAt(rank - 1, file - 'a'); }

struct PieceCase {
  const char* name;
  const char* fen;
  ScorePair expected;
};

class Pieces : public EvalTest {
 protected:
  template <std::size_t n>
  void ExpectTerms(EvalTerm term, int side, const PieceCase (&cases)[n]) {
    for (const PieceCase& test : cases) {
      EXPECT_EQ(TermOf(test.fen, term, side), test.expected) << test.name;
    }
  }
};

// ------------------------------------------------------------------ knights

TEST_F(Pieces, KnightsWorkedOutByHand) {
  const PieceCase cases[] = {
      // Place -30, four squares 8, ring c3 and c5 10 mg.
      {"a4", "7k/8/8/8/N7/8/7P/7K w -", {-12, -22}},
      {"own pawn takes a square", "7k/8/8/8/N7/8/1P5P/7K w -", {-16, -26}},
      {"unsafe empty square", "7k/p7/8/8/N7/8/7P/7K w -", {-16, -26}},
      // b6 and c5 are guarded.
      {"unsafe enemy pawn", "7k/p7/1p6/8/N7/8/7P/7K w -", {-20, -30}},
      {"a guarded piece is not unsafe", "7k/p7/1n6/8/N7/8/7P/7K w -", {-12, -22}},
      {"attacked by a pawn", "7k/8/8/1p6/N7/8/7P/7K w -", {-32, -42}},
      {"hits an isolated pawn", "7k/8/8/2p5/N7/8/7P/7K w -", {-2, -12}},
      {"hits a pawn that is not isolated", "7k/8/3p4/2p5/N7/8/7P/7K w -", {-16, -26}},
      {"enemy king zone", "k7/8/8/8/N7/8/7P/7K w -", {-8, -18}},
      {"own king zone", "7k/8/8/8/N7/8/7P/1K6 w -", {-8, -18}},
      {"own piece in the own zone counts", "7k/8/8/8/N7/8/1P5P/1K6 w -", {-12, -22}},
      // Six squares 14, centre d4 10 mg, ring c5 5 mg.
      {"centre squares", "7k/8/8/8/8/1N6/7P/7K w -", {29, 14}},
      // Place 20, eight squares 18, four ring squares, outpost 24 and 12.
      {"outpost", "8/8/8/4N3/8/8/P7/K6k w -", {94, 74}},
      {"outpost defended by a pawn", "8/8/8/4N3/3P4/8/P7/K6k w -", {106, 86}},
      // Outpost 5, its half 2: place 0, six squares 14, d6 and c3, d4.
      {"half an odd outpost", "7k/8/8/1N6/8/8/P7/7K w -", {41, 21}},
      {"no outpost under attack", "8/8/3p4/4N3/8/8/P7/K6k w -", {38, 18}},
      {"an enemy knight challenges", "7n/8/8/4N3/8/8/P7/K6k w -", {82, 62}},
  };
  ExpectTerms(knightsTerm, white, cases);
}

// e5 (36) and e6 (44) look for bishops on light squares, d5 (35) for dark ones,
// although e5 is dark and d5 light. h8 is dark, g8 light.
TEST_F(Pieces, OutpostColourGoesByTheNumberOfTheSquare) {
  const PieceCase cases[] = {
      {"e5, dark bishop", "7b/8/8/4N3/8/8/P7/K6k w -", {94, 74}},
      {"e5, light bishop", "6b1/8/8/4N3/8/8/P7/K6k w -", {82, 62}},
      // e6: place 15, eight squares 18, f4 and c5 ring, d4 centre.
      {"e6, dark bishop", "7b/8/4N3/8/8/8/P7/K6k w -", {89, 69}},
      {"e6, light bishop", "6b1/8/4N3/8/8/8/P7/K6k w -", {77, 57}},
      // d5: as e5, seen from the other side of the centre.
      {"d5, dark bishop", "7b/8/8/3N4/8/8/P7/k6K w -", {82, 62}},
      // c5 (34): outpost 10 and 5, place 15, eight squares 18, e6 and d3 ring,
      // e4 centre.
      {"c5, dark bishop", "7b/8/8/2N5/8/8/P7/k6K w -", {68, 48}},
      {"c5, light bishop", "6b1/8/8/2N5/8/8/P7/k6K w -", {63, 43}},
      // f5 (37): the mirror image looks for dark ones; g3 of the own zone adds 2.
      {"f5, dark bishop", "7b/8/8/5N2/8/8/P7/k6K w -", {65, 45}},
      {"f5, light bishop", "6b1/8/8/5N2/8/8/P7/k6K w -", {70, 50}},
      {"d5, light bishop", "6b1/8/8/3N4/8/8/P7/k6K w -", {94, 74}},
  };
  ExpectTerms(knightsTerm, white, cases);
}

TEST_F(Pieces, BlackKnightOutpostsAreMirrored) {
  // e4 for Black: the mirrored e5 case; square 28 looks for light bishops.
  EXPECT_EQ(TermOf("k6K/p7/8/8/4n3/8/8/8 w -", knightsTerm, black), (ScorePair{94, 74}));
  EXPECT_EQ(TermOf("k6K/p7/8/8/4n3/8/8/6B1 w -", knightsTerm, black), (ScorePair{94, 74}));
  EXPECT_EQ(TermOf("k6K/p7/8/8/4n3/8/8/7B w -", knightsTerm, black), (ScorePair{82, 62}));
}

TEST_F(Pieces, KnightSetAndAttackCountersAreFilled) {
  Cold("k7/8/8/8/N7/8/1P5P/7K w -");
  const Bitboard expected =
      Bit(Square('b', 6)) | Bit(Square('c', 5)) | Bit(Square('c', 3)) | Bit(Square('b', 2));
  EXPECT_EQ(record.attacks[white][knight], expected);
  EXPECT_EQ(record.kingAttackers[black], 1);
  EXPECT_EQ(record.kingAttackWeight[black], 2);
  EXPECT_EQ(record.kingAttackers[white], 0);
}

// ------------------------------------------------------------------ bishops

TEST_F(Pieces, BishopsWorkedOutByHand) {
  const PieceCase cases[] = {
      // Place -10, four squares ahead 20, three behind 9, base -12/-20, c6 5 mg.
      {"a4", "7k/8/8/8/B7/8/7P/7K w -", {12, -1}},
      {"unsafe square", "7k/8/p7/8/B7/8/7P/7K w -", {8, -5}},
      // Only b5 ahead 5, b3 c2 d1 9; attacked -20, isolated pawn hit 10.
      {"attacked by a pawn", "7k/8/8/1p6/B7/8/7P/7K w -", {-18, -26}},
      // Pair: 12/-1 twice and 30/50. Same-coloured ones: 10/-3 for h5.
      {"pair", "K7/8/8/8/B6B/8/p7/7k w -", {54, 48}},
      {"pair on one colour", "K7/8/8/7B/B7/8/p7/7k w -", {52, 46}},
      {"three", "K7/8/8/7B/B6B/8/p7/7k w -", {34, -5}},
      // b5 ahead 5, b3 c2 d1 9, place -10.
      {"x-ray squares are no mobility", "K7/8/2Q5/8/B7/8/p7/7k w -", {-8, -16}},
      {"isolated pawn hit through the queen", "K7/3p4/2Q5/8/B7/8/8/7k w -", {2, -6}},
      {"no hit through a rook", "K7/3p4/2R5/8/B7/8/8/7k w -", {-8, -16}},
      // d7 and e8 lie in the zone of a king on e7.
      {"enemy zone through the queen", "K7/4k3/2Q5/8/B7/8/p7/8 w -", {0, -8}},
      // b8 ahead 5, b6 behind 3 and unsafe -4, place -10, -80.
      {"trapped on a7", "7k/B1p5/1p6/8/8/8/8/7K w -", {-98, -106}},
      {"not trapped without the c pawn", "7k/B7/1pp5/8/8/8/8/7K w -", {-14, -22}},
      {"trapped, more pawns about", "7k/B1p4p/1p6/8/8/8/8/7K w -", {-98, -106}},
      // b6 is safe and isolated: 10.
      {"not trapped by one pawn", "7k/B7/1p6/8/8/8/8/7K w -", {-4, -12}},
      {"trapped on h7", "k7/5p1B/6p1/8/8/8/8/K7 w -", {-98, -106}},
      {"not trapped without the f pawn", "k7/7B/5pp1/8/8/8/8/K7 w -", {-14, -22}},
  };
  ExpectTerms(bishopsTerm, white, cases);
}

TEST_F(Pieces, BlackBishopsTrappedOnTheirWing) {
  EXPECT_EQ(TermOf("7k/8/8/8/8/1P6/b1P5/7K w -", bishopsTerm, black), (ScorePair{-98, -106}));
  EXPECT_EQ(TermOf("7k/8/8/8/8/1PP5/b7/7K w -", bishopsTerm, black), (ScorePair{-14, -22}));
  EXPECT_EQ(TermOf("k7/8/8/8/8/6P1/5P1b/K7 w -", bishopsTerm, black), (ScorePair{-98, -106}));
}

TEST_F(Pieces, LoneBishopPaysForPawnsOfItsColour) {
  // Light squares off the bishop's diagonals, so that its mobility stays the same.
  const int pawnSquares[] = {Square('e', 2), Square('g', 2), Square('d', 3),
                             Square('f', 3), Square('h', 3), Square('e', 4),
                             Square('g', 4), Square('h', 5), Square('f', 5)};
  const int table[] = {0, 0, -5, -10, -15, -25, -35, -50, -75, -75};
  for (int n = 0; n <= 9; ++n) {
    SetUp3("7k/8/8/8/B7/8/7P/7K w -");
    for (int i = 0; i < n; ++i) {
      board.pieces[PieceIndex(white, pawn)] |= Bit(pawnSquares[i]);
    }
    RebuildOccupancy(board);
    RebuildRotated(board);
    board.positionKey += static_cast<std::uint64_t>(n);
    Evaluate(record, board, white);
    EXPECT_EQ(TermOf(bishopsTerm, white), (ScorePair{12 + table[n], -1 + table[n]})) << n;
  }
}

TEST_F(Pieces, PawnsOfTheOtherColourDoNotBotherALoneBishop) {
  EXPECT_EQ(TermOf("7k/8/8/8/B7/8/P3P1P1/7K w -", bishopsTerm, white), (ScorePair{2, -11}));
  EXPECT_EQ(TermOf("7k/8/8/8/B7/8/3P1P1P/7K w -", bishopsTerm, white), (ScorePair{12, -1}));
}

TEST_F(Pieces, BishopSeesThroughQueensInARow) {
  Cold("K6k/3Q4/2Q5/8/B7/8/8/8 w -");
  const Bitboard expected = Bit(Square('b', 5)) | Bit(Square('e', 8)) | Bit(Square('b', 3)) |
                            Bit(Square('c', 2)) | Bit(Square('d', 1));
  EXPECT_EQ(record.attacks[white][bishop], expected);
}

TEST_F(Pieces, BishopDoesNotSeeThroughEnemyQueens) {
  Cold("K6k/8/2q5/8/B7/8/8/8 w -");
  const Bitboard expected = Bit(Square('b', 5)) | Bit(Square('c', 6)) | Bit(Square('b', 3)) |
                            Bit(Square('c', 2)) | Bit(Square('d', 1));
  EXPECT_EQ(record.attacks[white][bishop], expected);
}

// -------------------------------------------------------------------- rooks

TEST_F(Pieces, RooksWorkedOutByHand) {
  const PieceCase cases[] = {
      // Fourteen squares 34/38, place -5, open file 16, c4 f4 10 mg, d4 e4 20 mg.
      {"a4", "8/4K3/8/8/R7/8/8/4k3 w -", {75, 49}},
      // Twelve squares 30/36, file -5.
      {"own pawn behind on the file", "8/4K3/8/8/R7/8/P7/4k3 w -", {50, 26}},
      // Thirteen squares 32/37, file 6, isolated pawn 10.
      {"half-open file, one enemy pawn", "8/4K3/8/8/R7/8/p7/4k3 w -", {73, 48}},
      {"half-open file, three enemy pawns", "8/4K2p/6p1/8/R7/8/p7/4k3 w -", {74, 49}},
      {"open file, two enemy pawns", "8/4K2p/6p1/8/R7/8/8/4k3 w -", {77, 51}},
      // One enemy pawn: open file 17; c4 unsafe -4, the rook attacked -30.
      {"unsafe square and attacked", "8/4K3/8/1p6/R7/8/8/4k3 w -", {42, 16}},
      // Seven squares up and down, seven aside; c.f. a7: place 5.
      {"seventh rank, king on its back rank", "4k3/R7/8/8/8/8/8/7K w -", {82, 86}},
      {"seventh rank, king in the middle", "8/R7/4k3/8/8/8/8/7K w -", {67, 71}},
      {"seventh rank with a pawn", "8/R6p/4k3/8/8/8/8/7K w -", {88, 92}},
  };
  ExpectTerms(rooksTerm, white, cases);
}

TEST_F(Pieces, RookIsTrappedByAnUncastledKing) {
  struct {
    const char* name;
    const char* placement;
    int difference;
  } const cases[] = {
      {"h1, king g1", "4k3/8/8/8/8/8/8/6KR", -20},  {"h1, king f1", "4k3/8/8/8/8/8/8/5K1R", -20},
      {"g1, king f1", "4k3/8/8/8/8/8/8/5KR1", -20}, {"h1, king e1", "4k3/8/8/8/8/8/8/4K2R", 0},
      {"f1, king g1", "4k3/8/8/8/8/8/8/5RK1", 0},   {"h2, king g1", "4k3/8/8/8/8/8/7R/6K1", 0},
      {"a1, king b1", "4k3/8/8/8/8/8/8/RK6", -20},  {"a1, king c1", "4k3/8/8/8/8/8/8/R1K5", -20},
      {"b1, king c1", "4k3/8/8/8/8/8/8/1RK5", -20}, {"a1, king d1", "4k3/8/8/8/8/8/8/R2K4", 0},
      {"a1, king g1", "4k3/8/8/8/8/8/8/R5K1", 0},   {"c1, king b1", "4k3/8/8/8/8/8/8/1KR5", 0},
      {"h1, king g5", "4k3/8/8/6K1/8/8/8/7R", -20},
  };
  for (const auto& test : cases) {
    const std::string placement = test.placement;
    const ScorePair castled = TermOf(placement + " w -", rooksTerm, white);
    const ScorePair uncastled = TermOf(placement + " w KQ", rooksTerm, white);
    EXPECT_EQ(uncastled - castled, (ScorePair{test.difference, test.difference})) << test.name;
  }
}

TEST_F(Pieces, BlackRookIsTrappedOnTheEighthRank) {
  const ScorePair castled = TermOf("6kr/8/8/8/8/8/8/4K3 w -", rooksTerm, black);
  EXPECT_EQ(TermOf("6kr/8/8/8/8/8/8/4K3 w kq", rooksTerm, black) - castled, (ScorePair{-20, -20}));
  const ScorePair away = TermOf("6k1/8/8/8/8/8/8/4K2r w -", rooksTerm, black);
  EXPECT_EQ(TermOf("6k1/8/8/8/8/8/8/4K2r w kq", rooksTerm, black), away);
}

TEST_F(Pieces, RooksSeeThroughRooksAndQueensOnly) {
  const Bitboard fileTop = Bit(Square('a', 7)) | Bit(Square('a', 8));
  Cold("8/4K3/Q7/8/R7/8/8/4k3 w -");
  EXPECT_EQ(record.attacks[white][rook] & fileTop, fileTop);
  EXPECT_EQ(record.attacks[white][rook] & Bit(Square('a', 6)), 0U);
  Cold("8/4K3/B7/8/R7/8/8/4k3 w -");
  EXPECT_EQ(record.attacks[white][rook] & fileTop, 0U);
  // Along a rank, through two pieces in a row.
  Cold("8/4K3/8/8/R2RQ3/8/8/4k3 w -");
  EXPECT_NE(record.attacks[white][rook] & Bit(Square('h', 4)), 0U);
  // The queen in front sees through the rook, the rook through the queen.
  Cold("8/4K3/8/8/R3Q3/8/8/4k3 w -");
  EXPECT_NE(record.attacks[white][rook] & Bit(Square('h', 4)), 0U);
}

// ------------------------------------------------------------------- queens

TEST_F(Pieces, QueensWorkedOutByHand) {
  const PieceCase cases[] = {
      // Twenty-one squares 30/30, place -20, c3 f6 10 mg, d4 e5 20 mg.
      {"a1", "8/3k4/8/7K/8/8/8/Q7 w -", {40, 10}},
      {"mobility through a rook on the file", "8/3k4/8/7K/R7/8/8/Q7 w -", {39, 10}},
      {"mobility through a bishop on the diagonal", "8/3k4/8/7K/3B4/8/8/Q7 w -", {14, 10}},
      // a1: twenty squares 29/30, place -20, c3 5 mg. d4: twenty-five squares
      // 30/30, place 5, eight ring and three centre squares 70 mg, three squares
      // of the enemy zone 12, two of the own 4.
      {"mobility through a queen on the diagonal", "8/3k4/8/7K/3Q4/8/8/Q7 w -", {135, 61}},
      {"not through a rook on the diagonal", "8/3k4/8/7K/3R4/8/8/Q7 w -", {9, 10}},
      {"not through a bishop on the file", "8/3k4/8/7K/B7/8/8/Q7 w -", {34, 10}},
      // a3: sixteen squares 24/30, isolated pawn 10; b2 unsafe costs nothing.
      {"no unsafe squares for queens", "8/3k4/8/7K/8/p7/8/Q7 w -", {44, 20}},
      // b2: fifteen squares 22/30, isolated pawn 10, attacked -40.
      {"attacked by a pawn", "8/3k4/8/7K/8/8/1p6/Q7 w -", {-28, -20}},
      // a6 a7 a8 of the zone.
      {"enemy zone", "1k6/8/8/7K/8/8/8/Q7 w -", {52, 22}},
  };
  ExpectTerms(queensTerm, white, cases);
}

TEST_F(Pieces, QueensWeighFiveAndRooksThreeAtTheEnemyKing) {
  Cold("1k6/8/8/7K/8/8/8/Q7 w -");
  EXPECT_EQ(record.kingAttackers[black], 1);
  EXPECT_EQ(record.kingAttackWeight[black], 5);
  Cold("1k6/8/8/7K/8/8/8/R7 w -");
  EXPECT_EQ(record.kingAttackWeight[black], 3);
  Cold("1k6/8/8/7K/8/8/8/RB6 w -");
  EXPECT_EQ(record.kingAttackers[black], 1);
  Cold("1k6/8/8/8/7K/3N4/8/RRR5 w -");
  EXPECT_EQ(record.kingAttackers[black], 3);
  EXPECT_EQ(record.kingAttackWeight[black], 9);
}

TEST_F(Pieces, QueenTableIsNotMirroredForBlack) {
  const ScorePair whiteQueen = TermOf("8/2Q5/8/7K/k7/8/8/8 w -", queensTerm, white);
  const ScorePair blackQueen = TermOf("8/8/8/K7/7k/8/2q5/8 w -", queensTerm, black);
  // c7 is worth 5 in the table, c2 nothing; the rest is a mirror image.
  EXPECT_EQ(whiteQueen - blackQueen, (ScorePair{5, 5}));
}

}  // namespace
}  // namespace mirvo
