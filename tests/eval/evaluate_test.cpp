// The driver: caches and their counters, phase, stage, points of view.
#include <algorithm>
#include <cctype>
#include <cstring>
#include <fstream>
#include <vector>

#include "board/keys.h"
#include "eval/eval_tables.h"
#include "eval/material.h"
#include "eval/passed_pawns.h"
#include "eval/prologue_terms.h"
#include "eval/threats.h"
#include "tests/eval/eval_fixture.h"

namespace mirvo {
namespace {

constexpr char middlegame[] = "r2q1rk1/pp2bppp/2n1bn2/3p4/3P4/2N1BN2/PP2BPPP/R2Q1RK1 w -";

class Evaluation : public EvalTest {
 protected:
  std::int32_t Again() { return Evaluate(record, board, board.sideToMove); }

  /// The score that the record's rows and the other amounts add up to.
  std::int32_t BlendOfTerms() {
    ScorePair sum{};
    for (int row = materialTerm; row <= develTerm; ++row) {
      sum += record.terms[0][row] - record.terms[1][row];
    }
    const int own = record.side;
    const int enemy = own ^ 1;
    sum.mg += EvaluateCentreBlockade(record, own) - EvaluateCentreBlockade(record, enemy);
    sum.eg += EvaluateWingPawns(record, own) - EvaluateWingPawns(record, enemy);
    sum.AddBoth(EvaluateThreats(record, own) - EvaluateThreats(record, enemy));
    sum += EvaluatePassedPawns(record, own) - EvaluatePassedPawns(record, enemy);
    return BlendOf(sum);
  }

  std::int32_t BlendOf(ScorePair sum) const {
    const float phase =
        static_cast<float>(record.nonPawnMaterial[white] + record.nonPawnMaterial[black]) *
        0.00012820512F;
    return static_cast<std::int32_t>((1.0F - phase) * static_cast<float>(sum.eg) +
                                     phase * static_cast<float>(sum.mg));
  }

  HashEntry& EvalSlot() { return HashSlot(EvalHashTable, board.positionKey); }
  HashEntry& PawnSlot() { return PawnHashTable.entries[PawnHashTable.lastIndex]; }
};

std::vector<std::string> ReferenceFens() {
  std::vector<std::string> fens;
  std::ifstream file(MIRVO_SOURCE_DIR "/tests/data/reference/evaluation.txt");
  for (std::string line; std::getline(file, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.starts_with("position: ")) fens.push_back(line.substr(10));
  }
  EXPECT_FALSE(fens.empty());
  return fens;
}

/// The same position with colours exchanged and ranks mirrored.
std::string Mirrored(const std::string& fen) {
  const std::size_t first = fen.find(' ');
  std::string ranks;
  std::string rank;
  for (const char c : fen.substr(0, first) + "/") {
    if (c == '/') {
      ranks = rank + (ranks.empty() ? "" : "/") + ranks;
      rank.clear();
    } else {
      rank += static_cast<char>(std::isupper(c) != 0 ? std::tolower(c) : std::toupper(c));
    }
  }
  std::string rights = fen.substr(first + 3);
  for (char& c : rights) {
    c = static_cast<char>(std::isupper(c) != 0 ? std::tolower(c) : std::toupper(c));
  }
  return ranks + (fen[first + 1] == 'w' ? " b " : " w ") + rights;
}

// -------------------------------------------------------------------- caches

TEST_F(Evaluation, AFreshProbeIsAConflictAndAStore) {
  Cold(middlegame);
  EXPECT_EQ(EvalHashTable.hits, 0U);
  EXPECT_EQ(EvalHashTable.conflicts, 1U);
  EXPECT_EQ(EvalHashTable.stores, 1U);
  EXPECT_EQ(PawnHashTable.hits, 0U);
  EXPECT_EQ(PawnHashTable.conflicts, 1U);
  EXPECT_EQ(PawnHashTable.stores, 1U);
  EXPECT_EQ(EvalHashTable.misses, 0U);
  EXPECT_EQ(PawnHashTable.misses, 0U);
}

TEST_F(Evaluation, AHitReturnsTheStoredScoreAndTouchesNoCache) {
  const std::int32_t score = Cold(middlegame);
  EXPECT_EQ(EvalSlot().key, board.positionKey);
  EXPECT_EQ(EvalSlot().evalScore, score);
  EvalSlot().evalScore = 4321;
  EXPECT_EQ(Again(), 4321);
  EXPECT_EQ(EvalSlot().evalScore, 4321);
  EXPECT_EQ(EvalHashTable.hits, 1U);
  EXPECT_EQ(EvalHashTable.conflicts, 1U);
  EXPECT_EQ(EvalHashTable.stores, 1U);
  EXPECT_EQ(PawnHashTable.conflicts, 1U);
}

TEST_F(Evaluation, TheWholeKeyDecidesAHit) {
  const std::int32_t score = Cold(middlegame);
  for (int bit = 32; bit < 64; ++bit) {
    HashClaim(EvalHashTable, HashIndex(EvalHashTable, board.positionKey),
              board.positionKey ^ (std::uint64_t{1} << bit));
    EvalSlot().evalScore = 4321;
    EXPECT_EQ(Again(), score) << "bit " << bit;
  }
  EXPECT_EQ(EvalHashTable.conflicts, 33U);
}

TEST_F(Evaluation, ProbesNoteIndexAndKey) {
  Cold(middlegame);
  EXPECT_EQ(EvalHashTable.lastKey, board.positionKey);
  EXPECT_EQ(EvalHashTable.lastIndex,
            static_cast<std::int32_t>(HashIndex(EvalHashTable, board.positionKey)));
}

TEST_F(Evaluation, AnEmptySlotIsNoHitForKeyZero) {
  SetUp3(middlegame);
  board.positionKey = 0;
  EvalHashTable.entries[0].evalScore = 4321;
  EXPECT_NE(Again(), 4321);
  EXPECT_EQ(EvalHashTable.hits, 0U);
  EXPECT_EQ(EvalHashTable.stores, 0U);
  EXPECT_EQ(EvalHashTable.entries[0].evalScore, 4321);
}

TEST_F(Evaluation, PawnlessPositionsOfBlackHaveNoPawnCache) {
  const char fen[] = "r6k/8/8/8/8/8/8/Q6K b -";
  const std::int32_t score = Cold(fen);
  EXPECT_EQ(PawnHashTable.lastKey, 0U);
  EXPECT_EQ(PawnHashTable.stores, 0U);
  PawnHashTable.entries[0].evalScore = 4321;
  EvalSlot().key = 0;
  EXPECT_EQ(Again(), score);
  EXPECT_EQ(PawnHashTable.hits, 0U);
  EXPECT_EQ(PawnHashTable.conflicts, 2U);
}

TEST_F(Evaluation, PawnKeyCoversPawnsAndTheSideToMove) {
  Cold("r6k/4p3/8/8/8/8/P7/Q6K b -");
  const std::uint64_t pawns =
      PieceKey(white, pawn, SquareAt(1, 0)) ^ PieceKey(black, pawn, SquareAt(6, 4));
  EXPECT_EQ(PawnHashTable.lastKey, pawns);
  Cold("r6k/4p3/8/8/8/8/P7/Q6K w -");
  EXPECT_EQ(PawnHashTable.lastKey, pawns ^ SideKey());
  // The board's side to move counts, not the side evaluated for.
  HashClear(EvalHashTable);
  Evaluate(record, board, black);
  EXPECT_EQ(PawnHashTable.lastKey, pawns ^ SideKey());
}

TEST_F(Evaluation, APawnHitBringsTheStoredScoreAndSets) {
  const std::int32_t score = Cold(middlegame);
  const Bitboard passed[] = {record.passed[white], record.passed[black]};
  const Bitboard isolated[] = {record.isolated[white], record.isolated[black]};
  EXPECT_NE(isolated[white] | isolated[black], 0U);
  EvalSlot().key = 0;
  PawnSlot().evalScore += 100;
  EXPECT_NEAR(Again(), score + 100, 1);
  EXPECT_EQ(PawnHashTable.hits, 1U);
  EXPECT_EQ(PawnHashTable.stores, 1U);
  for (int side = white; side <= black; ++side) {
    EXPECT_EQ(record.passed[side], passed[side]);
    EXPECT_EQ(record.isolated[side], isolated[side]);
  }
  EvalSlot().key = 0;
  PawnSlot().evalData[1] = Bit(SquareAt(3, 3));
  PawnSlot().evalData[2] = Bit(SquareAt(4, 4));
  Again();
  EXPECT_EQ(record.passed[black], Bit(SquareAt(3, 3)));
  EXPECT_EQ(record.isolated[white], Bit(SquareAt(4, 4)));
}

TEST_F(Evaluation, APawnMissStoresTheBlendOfThePawnTermsOnly) {
  Cold(middlegame);
  EXPECT_EQ(PawnSlot().evalScore, BlendOf(TermOf(pawnsTerm, white) - TermOf(pawnsTerm, black)));
  EXPECT_EQ(PawnSlot().evalData[0], record.passed[white]);
  EXPECT_EQ(PawnSlot().evalData[3], record.isolated[black]);
}

TEST_F(Evaluation, FourDifferentPawnSetsAreStoredAndBroughtBack) {
  constexpr Bitboard b3 = Bit(SquareAt(2, 1));
  constexpr Bitboard h4 = Bit(SquareAt(3, 7));
  constexpr Bitboard a6 = Bit(SquareAt(5, 0));
  constexpr Bitboard e6 = Bit(SquareAt(5, 4));
  Cold("4k3/8/p3p3/8/7P/1P6/8/R3K3 w -");
  const Bitboard expected[] = {h4, e6, b3 | h4, a6 | e6};
  for (int i = 0; i < 4; ++i) EXPECT_EQ(PawnSlot().evalData[i], expected[i]) << i;
  EvalSlot().key = 0;
  Again();
  EXPECT_EQ(PawnHashTable.hits, 1U);
  EXPECT_EQ(record.passed[white], h4);
  EXPECT_EQ(record.passed[black], e6);
  EXPECT_EQ(record.isolated[white], b3 | h4);
  EXPECT_EQ(record.isolated[black], a6 | e6);
}

// White's pawns are worth 45/100 (a3 25/35, b4 30/50, c3 -10/15), Black's d7
// -45/-45; a rook beside three pawns, 625, makes the phase 0.0801.
TEST_F(Evaluation, ThePawnScoreIsStoredAtThePhaseOfThePosition) {
  Cold("4k3/3p4/8/8/1P6/P1P5/8/R3K3 w -");
  EXPECT_EQ(TermOf(pawnsTerm, white), (ScorePair{45, 100}));
  EXPECT_EQ(TermOf(pawnsTerm, black), (ScorePair{-45, -45}));
  // 0.9199 x 145 + 0.0801 x 90 = 140.59, cut off.
  EXPECT_EQ(PawnSlot().evalScore, 140);
  Cold("4k3/3p4/8/8/1P6/P1P5/8/R3K3 b -");
  EXPECT_EQ(PawnSlot().evalScore, -140);
}

// The middle-game and end-game parts of these pawn terms differ, so a score
// interpolated at one phase and used at another differs from a fresh one.
TEST_F(Evaluation, APawnHitAtAnotherPhaseDiffersFromAMiss) {
  const char few[] = "4k3/3p4/8/8/1P6/P1P5/8/R3K3 w -";
  const char many[] = "qr2k3/3p4/8/8/1P6/P1P5/8/RR2K2Q w -";
  const std::int32_t fresh = Cold(many);
  const ScorePair pawns = TermOf(pawnsTerm, white) - TermOf(pawnsTerm, black);
  ASSERT_NE(pawns.mg, pawns.eg);
  const std::int32_t freshPawns = BlendOf(pawns);
  Cold(few);
  const std::int32_t stored = PawnSlot().evalScore;
  ASSERT_NE(stored, freshPawns);
  SetUp3(many);
  EXPECT_NEAR(Again(), fresh + stored - freshPawns, 1);
  EXPECT_EQ(PawnHashTable.hits, 1U);
}

TEST_F(Evaluation, WhatThePawnKeyLacksIsCachedWithIt) {
  // Doubled pawns cost 5 more without a rook; the cache does not see the rook.
  const char rookless[] = "3qk3/8/8/8/4P3/4P3/8/4K3 w -";
  const char withRook[] = "3qk3/8/8/8/4P3/4P3/8/R3K3 w -";
  Cold(rookless);
  const std::int32_t stored = PawnSlot().evalScore;
  SetUp3(withRook);
  Again();
  EXPECT_EQ(PawnHashTable.hits, 1U);
  EXPECT_EQ(PawnSlot().evalScore, stored);
}

TEST_F(Evaluation, OnAPawnHitThePawnRowKeepsWhatItHeld) {
  Cold(middlegame);
  record.terms[0][pawnsTerm] = {11, 22};
  record.terms[0][rooksTerm] = {33, 44};
  EvalSlot().key = 0;
  Again();
  EXPECT_EQ(record.terms[0][pawnsTerm], (ScorePair{11, 22}));
  EXPECT_NE(record.terms[0][rooksTerm], (ScorePair{33, 44}));
}

TEST_F(Evaluation, InsufficientMaterialIsStoredAsZero) {
  EXPECT_EQ(Cold("7k/8/8/8/8/8/8/NB5K w -"), 0);
  EXPECT_EQ(EvalHashTable.stores, 1U);
  EXPECT_EQ(EvalSlot().evalScore, 0);
  EXPECT_EQ(PawnHashTable.conflicts, 0U);
  EXPECT_EQ(Again(), 0);
  EXPECT_EQ(EvalHashTable.hits, 1U);
}

// ------------------------------------------------------- phase, stage, views

TEST_F(Evaluation, StageFollowsCastlingPliesAndMaterial) {
  struct {
    const char* fen;
    int plyCount;
    EvalStage stage;
  } const cases[] = {
      {"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq", 0, Opening},
      {"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq", 20, Opening},
      {"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq", 21, Middlegame},
      {"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQ", 0, Middlegame},
      {"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w q", 0, Middlegame},
      // The opening is tested before the material.
      {"4k3/8/8/8/8/8/8/R3K3 w Qq", 0, Opening},
      // Queen 1100 is an end game; queen and bishop 1500 against 1600 is not.
      {"3qk3/4p3/8/8/8/8/8/QQ2K3 w -", 0, Endgame},
      {"qq2k3/4p3/8/8/8/8/8/3QK3 w -", 0, Endgame},
      {"2bqk3/4p3/8/8/8/8/8/Q3KBNN w -", 0, Middlegame},
  };
  for (const auto& test : cases) {
    HashClear(EvalHashTable);
    SetUp3(test.fen);
    board.plyCount = test.plyCount;
    Again();
    EXPECT_EQ(record.stage, test.stage) << test.fen << " " << test.plyCount;
  }
}

TEST_F(Evaluation, ThePhaseMayPassOne) {
  // Four queens a side: 8800 of non-pawn material, so the phase is above 1.
  Cold("qqqqk3/p7/8/8/8/8/7P/4KQQQ w -");
  ASSERT_EQ(record.nonPawnMaterial[white] + record.nonPawnMaterial[black], 7700);
  Cold("qqqqk3/p7/8/8/8/8/7P/3QKQQQ w -");
  ASSERT_EQ(record.nonPawnMaterial[white] + record.nonPawnMaterial[black], 8800);
  EXPECT_EQ(Again(), BlendOfTerms());
}

TEST_F(Evaluation, TheScoreIsTheBlendOfAllTerms) {
  for (const std::string& fen : ReferenceFens()) {
    const std::int32_t score = Cold(fen);
    if (!InsufficientMaterial(board)) {
      EXPECT_EQ(score, BlendOfTerms()) << fen;
    }
  }
}

TEST_F(Evaluation, TheOtherSidesViewIsTheNegation) {
  for (const std::string& fen : ReferenceFens()) {
    const std::int32_t score = Cold(fen);
    HashClear(EvalHashTable);
    HashClear(PawnHashTable);
    EXPECT_EQ(Evaluate(record, board, board.sideToMove ^ 1), -score) << fen;
  }
}

TEST_F(Evaluation, TheSideToMoveMatters) {
  // The race of the d pawn goes against the side to move.
  const std::int32_t whites = Cold("8/8/8/3P3k/8/8/8/K7 w -");
  const std::uint64_t key = board.positionKey;
  const std::uint64_t pawnKey = PawnHashTable.lastKey;
  const std::int32_t blacks = Cold("8/8/8/3P3k/8/8/8/K7 b -");
  EXPECT_NE(board.positionKey, key);
  EXPECT_NE(PawnHashTable.lastKey, pawnKey);
  EXPECT_EQ(blacks, -whites - 20);
}

TEST_F(Evaluation, NothingOfTheRecordLeaksIntoAScore) {
  static_assert(std::is_trivially_copyable_v<EvalRecord>);
  for (const std::string& fen : ReferenceFens()) {
    const std::int32_t score = Cold(fen);
    const EvalRecord clean = record;
    std::memset(static_cast<void*>(&record), 0xA5, sizeof record);
    EXPECT_EQ(Cold(fen), score) << fen;
    EXPECT_EQ(std::memcmp(clean.attacks, record.attacks, sizeof clean.attacks), 0) << fen;
    EXPECT_EQ(std::memcmp(clean.kingZone, record.kingZone, sizeof clean.kingZone), 0) << fen;
  }
}

TEST_F(Evaluation, SymmetricTermsMirrorExactly) {
  constexpr EvalTerm symmetric[] = {materialTerm, pawnsTerm, bishopsTerm,
                                    rooksTerm,    kingsTerm, develTerm};
  for (const std::string& fen : ReferenceFens()) {
    Cold(fen);
    if (InsufficientMaterial(board)) continue;
    const EvalRecord plain = record;
    const std::int32_t threats = EvaluateThreats(record, white);
    const std::int32_t blockade = EvaluateCentreBlockade(record, white);
    const ScorePair passed = EvaluatePassedPawns(record, white);
    Cold(Mirrored(fen));
    for (const EvalTerm term : symmetric) {
      EXPECT_EQ(plain.terms[0][term], record.terms[0][term]) << fen << " " << term;
      EXPECT_EQ(plain.terms[1][term], record.terms[1][term]) << fen << " " << term;
    }
    EXPECT_EQ(EvaluateThreats(record, black), threats) << fen;
    EXPECT_EQ(EvaluateCentreBlockade(record, black), blockade) << fen;
    EXPECT_EQ(EvaluatePassedPawns(record, black), passed) << fen;
    EXPECT_EQ(plain.kingAttackWeight[white], record.kingAttackWeight[black]) << fen;
  }
}

TEST_F(Evaluation, KnightsMirrorWhereNoBishopCanTellTheColours) {
  int compared = 0;
  for (const std::string& fen : ReferenceFens()) {
    if (fen.substr(0, fen.find(' ')).find_first_of("bB") != std::string::npos) continue;
    Cold(fen);
    if (InsufficientMaterial(board)) continue;
    const ScorePair own = record.terms[0][knightsTerm];
    Cold(Mirrored(fen));
    EXPECT_EQ(record.terms[0][knightsTerm], own) << fen;
    ++compared;
  }
  EXPECT_GT(compared, 10);
}

}  // namespace
}  // namespace mirvo
