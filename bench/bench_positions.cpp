#include "bench/bench_positions.h"

#include "board/attack_tables.h"
#include "board/fen.h"
#include "eval/king.h"
#include "search/hash/hash_allocation.h"
#include "search/hash/hash_memory.h"
#include "search/move_order.h"
#include "search/reductions.h"
#include "shell/base/output.h"
#include "shell/config/config.h"

namespace mirvo::bench {

const BenchPosition benchPositions[nBenchPositions] = {
    {"initial", "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR", "w", "KQkq"},
    {"opening", "r1bqkb1r/pp2pppp/2np1n2/6B1/3NP3/2N5/PPP2PPP/R2QKB1R", "b", "KQkq"},
    {"tactics", "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R", "w", "KQkq"},
    {"middle", "r4rk1/1pp1qppp/p1np1n2/2b1p1B1/2B1P1b1/P1NP1N2/1PP1QPPP/R4RK1", "w", "-"},
    {"rooks", "8/5pk1/4p1p1/1R5p/3r3P/6P1/5PK1/8", "b", "-"},
    {"pawns", "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8", "w", "-"},
};

void LoadPosition(int index, Board& board) {
  const BenchPosition& position = benchPositions[index];
  BeginFromFen(position.placement, position.side, position.castling, board);
}

void EmptyTable(HashTable& table, std::int32_t megabytes) {
  table.size = static_cast<std::uint32_t>(megabytes);
  HashAllocate(table);
}

void PrepareEngine() {
  InitAttackTables();
  BuildKingDangerTable();
  BuildReductionTables();
  output.toConsole = 0;
  engineConfig.Quiet = true;
  EmptyTable(EvalHashTable, engineConfig.EvalHashSize);
  EmptyTable(PawnHashTable, engineConfig.PawnHashSize);
  EmptyTable(TranspositionTable, engineConfig.TTHashSize);
  HashPrefaultAll();
}

void ForgetEverything() {
  HashClear(EvalHashTable);
  HashClear(PawnHashTable);
  HashClear(TranspositionTable);
  ClearKillers();
  ClearHistory();
  ClearPreviousPv();
}

}  // namespace mirvo::bench
