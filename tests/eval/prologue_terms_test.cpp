// Material, development and the terms without a report row.
#include "eval/prologue_terms.h"
#include "eval/material.h"
#include "eval/threats.h"
#include "tests/eval/eval_fixture.h"

namespace mirvo {
namespace {

class Material : public EvalTest {
 protected:
  ScorePair Of(const std::string& fen, int side = white) { return TermOf(fen, materialTerm, side); }
};

TEST_F(Material, PawnsAndFixedValues) {
  EXPECT_EQ(Of("7k/8/8/8/8/8/PPP5/7K w -"), (ScorePair{300, 330}));
  EXPECT_EQ(Of("7k/8/8/8/8/8/P7/BB5K w -"), (ScorePair{900, 910}));
  EXPECT_EQ(Of("7k/8/8/8/8/8/P7/QQ5K w -"), (ScorePair{2300, 2310}));
}

TEST_F(Material, KnightsGainAndRooksLoseByOwnPawns) {
  // Knight 400 + (n - 5) * 100 / 16, rook 600 + (5 - n) * 100 / 8, toward zero.
  const char* pawns[] = {"8",      "P7",      "PP6",      "PPP5",    "PPPP4",
                         "PPPPP3", "PPPPPP2", "PPPPPPP1", "PPPPPPPP"};
  const int knights[] = {369, 375, 382, 388, 394, 400, 406, 412, 418};
  const int rooks[] = {662, 650, 637, 625, 612, 600, 588, 575, 563};
  for (int n = 0; n <= 8; ++n) {
    const std::string start = std::string("7k/p7/8/8/8/8/") + pawns[n];
    EXPECT_EQ(Of(start + "/N6K w -").mg, knights[n] + 100 * n) << n;
    EXPECT_EQ(record.nonPawnMaterial[white], knights[n]) << n;
    EXPECT_EQ(Of(start + "/R6K w -"), (ScorePair{rooks[n] + 100 * n, rooks[n] + 110 * n})) << n;
  }
}

TEST_F(Material, EnemyPawnsDoNotChangePieceValues) {
  EXPECT_EQ(Of("7k/pppppppp/8/8/8/8/8/N6K w -").mg, 369);
  EXPECT_EQ(Of("n6k/8/8/8/8/8/PPPPPPPP/7K w -", black).mg, 369);
}

struct DrawCase {
  const char* placement;
  bool insufficient;
};

TEST_F(Material, InsufficientMaterial) {
  const DrawCase cases[] = {
      {"7k/8/8/8/8/8/8/7K", true},      {"7k/8/8/8/8/8/8/N6K", true},
      {"b6k/8/8/8/8/8/8/7K", true},     {"7k/8/8/8/8/8/8/NB5K", true},
      {"n6k/8/8/8/8/8/8/B6K", true},    {"nb5k/8/8/8/8/8/8/NB5K", true},
      {"7k/8/8/8/8/8/8/NN5K", false},   {"bb5k/8/8/8/8/8/8/7K", false},
      {"nn5k/8/8/8/8/8/8/NB5K", false}, {"7k/8/8/8/8/8/P7/7K", false},
      {"7k/p7/8/8/8/8/8/7K", false},    {"7k/8/8/8/8/8/8/R6K", false},
      {"q6k/8/8/8/8/8/8/7K", false},
  };
  for (const DrawCase& test : cases) {
    for (const char* side : {" w -", " b -"}) {
      const std::int32_t score = Cold(std::string(test.placement) + side);
      EXPECT_EQ(InsufficientMaterial(board), test.insufficient) << test.placement << side;
      EXPECT_EQ(score == 0, test.insufficient) << test.placement << side;
    }
  }
}

class Development : public EvalTest {
 protected:
  ScorePair Of(const std::string& fen, int side = white) { return TermOf(fen, develTerm, side); }
};

TEST_F(Development, OpeningStage) {
  EXPECT_EQ(Of("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq"), (ScorePair{-60, 0}));
  EXPECT_EQ(Of("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq", black), (ScorePair{-60, 0}));
  EXPECT_EQ(Of("rnbqkbnr/pppppppp/8/8/8/2N5/PPPPPPPP/R1BQKBNR w KQkq"), (ScorePair{-45, 0}));
  // A bishop on a knight's home square counts as developed.
  EXPECT_EQ(Of("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RB1QKBNR w KQkq"), (ScorePair{-30, 0}));
  // Queen off d1, or none: -5 for each minor piece at home.
  EXPECT_EQ(Of("rnbqkbnr/pppppppp/8/8/8/3Q4/PPPPPPPP/RNB1KBNR w KQkq"), (ScorePair{-80, 0}));
  EXPECT_EQ(Of("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNB1KBNR w KQkq"), (ScorePair{-80, 0}));
  // One rook in a corner is enough.
  EXPECT_EQ(Of("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/1NBQKBNR w KQkq"), (ScorePair{-60, 0}));
  EXPECT_EQ(Of("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/1NBQKBN1 w KQkq"), (ScorePair{-110, 0}));
  EXPECT_EQ(Of("1nb1kbn1/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq", black), (ScorePair{-130, 0}));
}

TEST_F(Development, MiddleGameCountsMinorPiecesOnly) {
  EXPECT_EQ(Of("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/1NB1KBN1 w KQ"), (ScorePair{-60, 0}));
  EXPECT_EQ(record.stage, Middlegame);
}

TEST_F(Development, NothingInTheEndGame) {
  EXPECT_EQ(Of("4k3/8/8/8/8/8/PPPPPPPP/RN2K3 w -"), (ScorePair{0, 0}));
  EXPECT_EQ(record.stage, Endgame);
}

TEST_F(Development, FunctionAddsToWhatTheDriverHasGiven) {
  SetUp3("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/1NB1KBN1 w KQkq");
  record.board = &board;
  EXPECT_EQ(MinorsAtHome(board, white), 4);
  EXPECT_EQ(EvaluateDevelopment(record, white, -60, 0, 4), -60 - 20 - 50);
  EXPECT_EQ(EvaluateDevelopment(record, white, -60, 999, 4), -60 - 20 - 50);
  EXPECT_EQ(EvaluateDevelopment(record, black, 0, 0, 4), 0);
}

class Unreported : public EvalTest {};

TEST_F(Unreported, CentreBlockade) {
  struct {
    const char* fen;
    int side;
    int amount;
  } const cases[] = {
      {"7k/8/8/8/8/3N4/3P4/7K w -", white, -10}, {"7k/8/8/8/8/3B4/3P4/7K w -", white, -10},
      {"7k/8/8/8/8/4N3/4P3/7K w -", white, -10}, {"7k/8/8/8/8/3NB3/3PP3/7K w -", white, -20},
      {"7k/8/8/8/8/3R4/3P4/7K w -", white, 0},   {"7k/8/8/8/8/3n4/3P4/7K w -", white, 0},
      {"7k/8/8/8/8/3N4/4P3/7K w -", white, 0},   {"7k/8/8/8/8/2N5/2P5/7K w -", white, 0},
      {"7k/8/8/8/3N4/3P4/8/7K w -", white, 0},   {"7k/3p4/3b4/8/8/8/8/7K w -", black, -10},
      {"7k/4p3/4n3/8/8/8/8/7K w -", black, -10}, {"7k/4p3/4n3/8/8/8/8/7K w -", white, 0},
  };
  for (const auto& test : cases) {
    Cold(test.fen);
    EXPECT_EQ(EvaluateCentreBlockade(record, test.side), test.amount) << test.fen;
  }
}

TEST_F(Unreported, WingPawnsFavourLongRangePieces) {
  struct {
    const char* fen;
    int whites;
    int blacks;
  } const cases[] = {
      {"n6k/8/8/8/8/8/3P4/B6K w -", 0, 0},  {"n6k/8/8/8/8/8/2P5/B6K w -", 20, 0},
      {"n6k/5p2/8/8/8/8/8/R6K w -", 20, 0}, {"q6k/7p/8/8/8/8/8/N6K w -", 0, 20},
      {"r6k/8/8/8/8/8/P7/Q6K w -", 20, 20},
  };
  for (const auto& test : cases) {
    Cold(test.fen);
    EXPECT_EQ(EvaluateWingPawns(record, white), test.whites) << test.fen;
    EXPECT_EQ(EvaluateWingPawns(record, black), test.blacks) << test.fen;
  }
}

TEST_F(Unreported, EveryThreatOfAnAttackerOnAVictim) {
  // Attackers on d4 and a square each of them hits.
  struct {
    char attacker;
    const char* board;  // '*' stands for the victim
    int amounts[5];
  } const cases[] = {
      {'P', "7k/8/8/4*3/3P4/8/P7/7K w -", {10, 20, 30, 40, 40}},
      {'N', "7k/8/4*3/8/3N4/8/P7/7K w -", {0, 10, 15, 20, 20}},
      {'B', "7k/8/5*2/8/3B4/8/P7/7K w -", {0, 10, 15, 20, 20}},
      {'R', "7k/3*4/8/8/3R4/8/P7/7K w -", {0, 10, 10, 20, 20}},
      {'Q', "7k/3*4/8/8/3Q4/8/P7/7K w -", {0, 10, 10, 20, 20}},
  };
  for (const auto& test : cases) {
    for (int victim = pawn; victim < king; ++victim) {
      std::string fen = test.board;
      fen[fen.find('*')] = pieceLetters[PieceIndex(black, victim)];
      Cold(fen);
      EXPECT_EQ(EvaluateThreats(record, white), test.amounts[victim]) << fen;
    }
  }
}

TEST_F(Unreported, ThreatRules) {
  struct {
    const char* name;
    const char* fen;
    int amount;
  } const cases[] = {
      {"two knights attacked count once", "7k/3n4/8/8/n2R4/8/P7/7K w -", 10},
      {"two kinds attacked count each", "7k/3n4/8/8/b2R4/8/P7/7K w -", 20},
      {"two kinds of attackers count each", "7k/3n4/8/8/Q2R4/8/P7/7K w -", 20},
      {"defended by a pawn", "7k/2p5/3n4/8/3R4/8/P7/7K w -", 0},
      {"defended by a piece only", "5b1k/8/3n4/8/3R4/8/P7/7K w -", 10},
      {"a defended piece is safe from pawns too", "7k/8/3p4/4n3/3P4/8/P7/7K w -", 0},
      {"the king is no victim", "8/3k4/8/8/3R4/8/P7/7K w -", 0},
      {"the king is no attacker", "7k/8/8/8/8/8/P5n1/7K w -", 0},
      {"a bishop through the queen, and she", "4n2k/8/2Q5/8/B7/8/P7/7K w -", 20},
  };
  for (const auto& test : cases) {
    Cold(test.fen);
    EXPECT_EQ(EvaluateThreats(record, white), test.amount) << test.name;
  }
}

}  // namespace
}  // namespace mirvo
