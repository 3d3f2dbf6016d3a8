// Helpers for tests of the evaluation: small empty caches and boards from FEN.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "board/attack_tables.h"
#include "board/fen.h"
#include "eval/eval_report.h"
#include "eval/evaluate.h"
#include "eval/king.h"
#include "search/hash/hash_allocation.h"
#include "search/hash/hash_table.h"

namespace mirvo {

/// Gives every test its own empty one-megabyte caches.
class EvalTest : public testing::Test {
 protected:
  EvalTest() {
    InitAttackTables();
    BuildKingDangerTable();
    for (HashTable* table : {&EvalHashTable, &PawnHashTable}) {
      HashInitialise(*table);
      table->size = 1;
      HashAllocate(*table);
    }
  }

  ~EvalTest() override {
    HashRelease(EvalHashTable);
    HashRelease(PawnHashTable);
  }

  EvalTest(const EvalTest&) = delete;
  EvalTest& operator=(const EvalTest&) = delete;

  /// Sets `board` to the first three fields of a FEN.
  void SetUp3(const std::string& fen) {
    const std::size_t first = fen.find(' ');
    const std::size_t second = fen.find(' ', first + 1);
    BeginFromFen(fen.substr(0, first).c_str(), fen.substr(first + 1, second - first - 1).c_str(),
                 fen.substr(second + 1).c_str(), board);
  }

  /// Cold score of a position for its side to move; leaves `record` filled.
  std::int32_t Cold(const std::string& fen) {
    SetUpCold(fen);
    return Evaluate(record, board, board.sideToMove);
  }

  /// The same, printing the term report.
  std::int32_t ColdWithReport(const std::string& fen) {
    SetUpCold(fen);
    return EvaluateWithReport(record, board, board.sideToMove);
  }

  void SetUpCold(const std::string& fen) {
    HashClear(EvalHashTable);
    HashClear(PawnHashTable);
    SetUp3(fen);
  }

  /// A term of one side after a cold evaluation.
  ScorePair TermOf(EvalTerm term, int side) const { return record.terms[side ^ record.side][term]; }
  ScorePair TermOf(const std::string& fen, EvalTerm term, int side) {
    Cold(fen);
    return TermOf(term, side);
  }

  Board board;
  EvalRecord record{};
};

inline std::ostream& operator<<(std::ostream& stream, ScorePair score) {
  return stream << "{" << score.mg << ", " << score.eg << "}";
}

}  // namespace mirvo
