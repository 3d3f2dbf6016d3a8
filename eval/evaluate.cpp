#include "eval/evaluate.h"

#include "board/bits.h"
#include "board/keys.h"
#include "board/square_sets.h"
#include "eval/eval_tables.h"
#include "eval/king.h"
#include "eval/material.h"
#include "eval/passed_pawns.h"
#include "eval/pawns.h"
#include "eval/pieces.h"
#include "eval/prologue_terms.h"
#include "eval/threats.h"
#include "search/hash/hash_table.h"

namespace mirvo {

namespace {

// Whether the slot answers for `key`; counts the probe.
bool CountProbe(HashTable& table, std::uint32_t index, std::uint64_t key) {
  const bool hit = HashHolds(table, index, key);
  ++(hit ? table.hits : table.conflicts);
  return hit;
}

// Stores the score of `key` in its slot. False, and nothing stored, for key 0,
// which empty slots have.
bool StoreScore(HashTable& table, std::uint32_t index, std::uint64_t key, std::int32_t score) {
  if (key == 0) return false;
  HashClaim(table, index, key);
  table.entries[index].evalScore = score;
  ++table.stores;
  return true;
}

std::int32_t Blend(ScorePair score, float phase) {
  const float blended =
      (1.0F - phase) * static_cast<float>(score.eg) + phase * static_cast<float>(score.mg);
  return static_cast<std::int32_t>(blended);
}

void ResetRecord(EvalRecord& record, Board& board, int side) {
  record.board = &board;
  record.side = side;
  for (int c = 0; c < nSides; ++c) {
    record.passed[c] = 0;
    record.isolated[c] = 0;
    record.kingAttackers[c] = 0;
    record.kingAttackWeight[c] = 0;
    record.kingTropism[c] = 0;
    for (Bitboard& set : record.attacks[c]) set = 0;
    record.kingZone[c] = KingZone(board, c);
  }
}

EvalStage StageOf(const EvalRecord& record) {
  const Board& board = *record.board;
  const bool nobodyCastled =
      board.castling.hasCastled[white] == 0 && board.castling.hasCastled[black] == 0;
  if (nobodyCastled && board.plyCount <= openingPlies) return Opening;
  const bool littleLeft = record.nonPawnMaterial[white] < endgameMaterial ||
                          record.nonPawnMaterial[black] < endgameMaterial;
  return littleLeft ? Endgame : Middlegame;
}

// Computes one term for both sides, stores the results for the report and returns
// White's minus Black's.
template <typename Term>
ScorePair TermDifference(EvalRecord& record, EvalTerm row, Term term) {
  const ScorePair whites = term(record, white);
  const ScorePair blacks = term(record, black);
  record.terms[record.side][row] = whites;
  record.terms[record.side ^ 1][row] = blacks;
  return whites - blacks;
}

// Key of the pawn structure, with the side to move: scores are kept in the
// view of one side.
std::uint64_t PawnKey(const Board& board) {
  return board.pawnKey ^ (board.sideToMove == white ? SideKey() : 0);
}

// Converts a score for White to one for the record's side.
std::int32_t OwnView(const EvalRecord& record, std::int32_t score) {
  return record.side == white ? score : -score;
}

// Pawn structure through its cache. A hit adds the score that was interpolated at the
// phase of the position that stored it, to both halves; at another phase a miss would
// give a slightly different score. This engine accepts that for speed.
ScorePair PawnStructure(EvalRecord& record, float phase) {
  const std::uint64_t key = PawnKey(*record.board);
  const std::uint32_t index = HashLocate(PawnHashTable, key);
  HashEntry& slot = PawnHashTable.entries[index];
  if (CountProbe(PawnHashTable, index, key)) {
    record.passed[white] = slot.evalData[0];
    record.passed[black] = slot.evalData[1];
    record.isolated[white] = slot.evalData[2];
    record.isolated[black] = slot.evalData[3];
    const std::int32_t whites = OwnView(record, slot.evalScore);
    return {whites, whites};
  }
  const ScorePair difference = TermDifference(record, pawnsTerm, EvaluatePawns);
  if (StoreScore(PawnHashTable, index, key, OwnView(record, Blend(difference, phase)))) {
    slot.evalData[0] = record.passed[white];
    slot.evalData[1] = record.passed[black];
    slot.evalData[2] = record.isolated[white];
    slot.evalData[3] = record.isolated[black];
  }
  return difference;
}

void FormUnion(EvalRecord& record, int side) {
  const Bitboard* sets = record.attacks[side];
  record.attacks[side][unionAttacks] =
      sets[pawn] | sets[knight] | sets[bishop] | sets[rook] | sets[queen];
}

ScorePair DevelopmentOf(const EvalRecord& record, int side, std::int32_t mgSoFar) {
  if (record.stage == Endgame) return {};
  const int minors = MinorsAtHome(*record.board, side);
  const std::int32_t given = minorAtHome * minors;
  if (record.stage != Opening) return {given, 0};
  return {EvaluateDevelopment(record, side, given, mgSoFar, minors), 0};
}

// What is computed before the pawn cache has answered: sets, material, phase
// and stage, and the terms that need nothing else.
struct Prologue {
  ScorePair sum;  // White's minus Black's, so far
  float phase;
};

MIRVO_COUNTS_BITS Prologue EvaluatePrologue(EvalRecord& record, Board& board, int side) {
  ResetRecord(record, board, side);
  Prologue prologue{};
  prologue.sum = TermDifference(record, materialTerm, EvaluateMaterial);
  prologue.phase = PhaseOf(record);
  record.stage = StageOf(record);
  record.attacks[white][pawn] = PawnAttackSet(white, PiecesOf(board, white)[pawn]);
  record.attacks[black][pawn] = PawnAttackSet(black, PiecesOf(board, black)[pawn]);
  prologue.sum.mg += EvaluateCentreBlockade(record, white) - EvaluateCentreBlockade(record, black);
  prologue.sum.eg += EvaluateWingPawns(record, white) - EvaluateWingPawns(record, black);
  const std::int32_t mgSoFar = prologue.sum.mg;
  prologue.sum += TermDifference(record, develTerm, [mgSoFar](const EvalRecord& r, int c) {
    return DevelopmentOf(r, c, mgSoFar);
  });
  return prologue;
}

// The terms that need the pawn structure and those behind them.
ScorePair SumTerms(EvalRecord& record, const Prologue& prologue) {
  ScorePair sum = prologue.sum;
  sum += PawnStructure(record, prologue.phase);
  sum += EvaluatePieces(record, white) - EvaluatePieces(record, black);
  FormUnion(record, white);
  FormUnion(record, black);
  sum += TermDifference(record, kingsTerm, EvaluateKing);
  sum.AddBoth(EvaluateThreats(record, white) - EvaluateThreats(record, black));
  if (record.passed[white] != 0) sum += EvaluatePassedPawns(record, white);
  if (record.passed[black] != 0) sum -= EvaluatePassedPawns(record, black);
  return sum;
}

}  // namespace

float PhaseOf(const EvalRecord& record) {
  return static_cast<float>(record.nonPawnMaterial[white] + record.nonPawnMaterial[black]) *
         phasePerCentipawn;
}

std::int32_t Evaluate(EvalRecord& record, Board& board, int side) {
  const std::uint64_t key = board.positionKey;
  const std::uint32_t index = HashLocate(EvalHashTable, key);
  // Prefetch the slot: even after a miss a score is stored there.
  __builtin_prefetch(&EvalHashTable.entries[index]);
  if (CountProbe(EvalHashTable, index, key)) return EvalHashTable.entries[index].evalScore;

  // The prologue runs while the pawn structure's slot is being loaded.
  HashPrefetch(PawnHashTable, PawnKey(board));
  const Prologue prologue = EvaluatePrologue(record, board, side);
  if (InsufficientMaterial(board)) {
    StoreScore(EvalHashTable, index, key, 0);
    return 0;
  }

  const ScorePair sum = SumTerms(record, prologue);
  const std::int32_t score = OwnView(record, Blend(sum, prologue.phase));
  StoreScore(EvalHashTable, index, key, score);
  return score;
}

}  // namespace mirvo
