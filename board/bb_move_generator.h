// The bitboard move generator. Lives on the stack of the level that uses it
// and appends to its own fixed list; reads the board and the attack tables.
#pragma once

#include <cstdint>

#include "board/board.h"
#include "board/move.h"
#include "board/move_generator.h"

namespace mirvo {

/// A legal position has at most 218 moves; moves past the end are dropped.
inline constexpr int moveListCapacity = 256;

class BBMoveGenerator2 final : public MoveGenerator {
 public:
  /// Generates for `side` on `board`, which must outlive the generator. `side`
  /// may be the side not to move; castling then tests check without the cache.
  BBMoveGenerator2(Board& board, int side)
      : count(0), side(side), opponent(side ^ 1), board(&board), next(moves) {}

  /// Captures, then the other moves, appended to the list.
  void GenerateAll() override;
  void GenerateNonCaptures() override;
  void GenerateCaptures() override;

  Move moves[moveListCapacity];  // entries 0..count-1 are valid
  std::int32_t count;
  std::int32_t side;
  std::int32_t opponent;
  Board* board;
  Move* next;
};

}  // namespace mirvo
