// Prefetches the table slots that the children of a node probe first. A load from
// memory takes longer than making a move, so it starts before.
#pragma once

#include "search/hash/hash_table.h"
#include "search/key_after.h"

namespace mirvo {

/// The table that a node of this depth probes first.
inline const HashTable& FirstProbedTable(std::int32_t depth) {
  return depth > 0 ? TranspositionTable : EvalHashTable;
}

class ChildPrefetch {
 public:
  /// The board must have the node's position whenever a prefetch is started.
  explicit ChildPrefetch(const Board& board) : board_(board) {}

  /// Starts loading the slot of the child of `depth` after `move`, unless that was the
  /// previous prefetch. Does nothing for noMove.
  void Start(Move move, std::int32_t depth) {
    if (move == newest_) return;
    newest_ = move;
    if (move != noMove) HashPrefetch(FirstProbedTable(depth), KeyAfter(board_, move));
  }

 private:
  const Board& board_;
  Move newest_ = noMove;
};

}  // namespace mirvo
