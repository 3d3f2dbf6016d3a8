// Passed pawns: a base position and what each rule changes in it.
#include "eval/passed_pawns.h"
#include "tests/eval/eval_fixture.h"

namespace mirvo {
namespace {

class PassedPawns : public EvalTest {
 protected:
  ScorePair Term(const std::string& fen, int side = white) {
    Cold(fen);
    return EvaluatePassedPawns(record, side);
  }
};

struct PassedCase {
  const char* name;
  const char* fen;
  ScorePair expected;
};

// The black knight on a8 does not attack the pawn's file and rules out the
// pawn-race and rook-pawn rules. A d4 pawn alone is worth 20/25.
TEST_F(PassedPawns, WhitePawnsWorkedOutByHand) {
  const PassedCase cases[] = {
      {"second rank", "n6k/8/8/8/8/8/3P4/K7 w -", {0, 0}},
      {"third rank", "n6k/8/8/8/8/3P4/8/K7 w -", {0, 5}},
      {"fourth rank", "n6k/8/8/8/3P4/8/8/K7 w -", {20, 25}},
      {"fifth rank", "n6k/8/8/3P4/8/8/8/K7 w -", {60, 70}},
      {"sixth rank", "n6k/8/3P4/8/8/8/8/K7 w -", {80, 90}},
      {"seventh rank", "n6k/3P4/8/8/8/8/8/K7 w -", {100, 110}},
      // Rank 1 counts as the second, rank 8 as the seventh.
      {"first rank", "n6k/8/8/8/8/8/8/K2P4 w -", {0, 0}},
      {"last rank", "n2P3k/8/8/8/8/8/8/K7 w -", {100, 110}},
      // In front -20, blocker -4, d5 d7 d8 controlled 15.
      {"own rook in front", "n6k/8/3R4/8/3P4/8/8/K7 w -", {11, 16}},
      {"own rook behind", "n6k/8/8/8/3P4/8/8/K2R4 w -", {35, 40}},
      {"own queen behind", "n6k/8/8/8/3P4/8/8/K2Q4 w -", {35, 40}},
      {"two own rooks behind count once", "n6k/8/8/8/3P4/8/3R4/K2R4 w -", {35, 40}},
      {"no line of sight needed", "n6k/8/8/8/3P4/3N4/8/K2R4 w -", {35, 40}},
      {"enemy rook behind", "n6k/8/8/8/3P4/8/8/K2r4 w -", {5, 10}},
      {"enemy queen behind", "n6k/8/8/8/3P4/3B4/8/K2q4 w -", {5, 10}},
      // Blocker -2, d5 d7 d8 controlled by the enemy -15.
      {"enemy rook in front", "n6k/8/3r4/8/3P4/8/8/K7 w -", {3, 8}},
      {"own blocker", "n6k/8/3N4/8/3P4/8/8/K7 w -", {16, 21}},
      {"enemy blocker", "7k/8/3n4/8/3P4/8/8/K7 w -", {18, 23}},
      {"a king blocks too", "n2k4/8/8/8/3P4/8/8/K7 w -", {18, 23}},
      {"own knight controls one square", "n6k/8/2N5/8/3P4/8/8/K7 w -", {25, 30}},
      {"enemy knight controls two", "7k/1n6/8/8/3P4/8/8/K7 w -", {10, 15}},
      {"kings control nothing", "n6k/8/4K3/8/3P4/8/8/8 w -", {20, 25}},
      // Three steps to d8; the king on h5 needs four. The mover's tempo is added.
      {"race, pawn's side to move", "8/8/8/3P3k/8/8/8/K7 w -", {60, 70}},
      {"race, king's side to move", "8/8/8/3P3k/8/8/8/K7 b -", {70, 90}},
      {"race against a far king", "8/8/8/3P4/8/8/8/K6k w -", {70, 90}},
      {"no race against a knight", "n7/8/8/3P4/8/8/8/K6k w -", {60, 70}},
      // Rook pawns get a bonus against at most one minor piece.
      {"rook pawn against a knight", "6kn/8/8/P7/8/8/8/K7 w -", {60, 80}},
      {"rook pawn against a bishop", "6kb/8/8/P7/8/8/8/6K1 w -", {60, 80}},
      {"rook pawn against two knights", "6kn/8/8/P6n/8/8/8/K7 w -", {60, 70}},
      {"rook pawn against a rook", "6k1/8/8/P7/7r/8/8/K7 w -", {60, 60}},
      {"rook pawn against a queen", "6k1/8/8/P7/7q/8/8/K7 w -", {60, 60}},
      {"h pawn against a knight", "n7/8/8/7P/8/8/k7/7K w -", {60, 80}},
      {"b pawn against a knight", "6kn/8/8/1P6/8/8/8/K7 w -", {60, 70}},
      // Lone king on h5: ten for the rook pawn, plus the pawn race.
      {"rook pawn against a lone king", "8/8/8/P6k/8/8/8/K7 w -", {70, 100}},
  };
  for (const PassedCase& test : cases) EXPECT_EQ(Term(test.fen), test.expected) << test.name;
}

TEST_F(PassedPawns, BlackReadsTheSameRulesFromItsOwnSide) {
  EXPECT_EQ(Term("k7/8/8/3p4/8/8/8/N6K w -", black), (ScorePair{20, 25}));
  EXPECT_EQ(Term("k2r4/8/8/3p4/8/8/8/N6K w -", black), (ScorePair{35, 40}));
  EXPECT_EQ(Term("k2R4/8/8/3p4/8/8/8/N6K w -", black), (ScorePair{5, 10}));
  EXPECT_EQ(Term("k7/8/8/8/3p3K/8/8/8 b -", black), (ScorePair{60, 70}));
  EXPECT_EQ(Term("k7/8/8/8/3p3K/8/8/8 w -", black), (ScorePair{70, 90}));
}

}  // namespace
}  // namespace mirvo
