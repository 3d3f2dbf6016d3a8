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

/// Most moves that one piece adds. The list is checked before each piece, so a
/// piece may write past the capacity; that is cut off at the end.
inline constexpr int moveListSlack = 32;

class BBMoveGenerator2 final : public MoveGenerator {
 public:
  /// Generates for `mover` on `position`, which must outlive the generator.
  /// `mover` may be the side not to move.
  // cppcheck-suppress uninitMemberVar ; only entries that were written are read.
  BBMoveGenerator2(Board& position, int mover)
      : count(0), side(mover), opponent(mover ^ 1), board(&position), next(moves) {}

  /// Captures, then the other moves, appended to the list.
  void GenerateAll() override;
  void GenerateNonCaptures() override;
  void GenerateCaptures() override;

  /// Entries 0..count-1 are the list. A caller may lower `count`; what it cut off
  /// stays behind it until the next pass.
  Move moves[moveListCapacity + moveListSlack];
  std::int32_t count;
  std::int32_t side;
  std::int32_t opponent;
  Board* board;
  Move* next;

 private:
  template <int us>
  void AddPawnCaptures();
  template <int us>
  void AddPawnPushes();
  void AddCastling();
  void AddPieceMoves(Bitboard targets, Move flags);
  void AddTargets(int from, Bitboard targets, Move common);
  bool HasRoom() const { return next < moves + moveListCapacity; }
  void FinishPass();
};

}  // namespace mirvo
