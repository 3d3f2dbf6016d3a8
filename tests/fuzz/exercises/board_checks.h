// Properties of every position, whatever text it came from.
#pragma once

#include <vector>

#include "board/board.h"
#include "board/move.h"
#include "tests/fuzz/exercises/exercises.h"

namespace mirvo {

/// Copies a board without its unused undo records, which are most of its size.
void CopyInUse(Board& copy, const Board& board);

/// Whether all bytes in use of two boards are equal, padding included, except the
/// cached answer about check.
bool SameBytes(const Board& a, const Board& b);

/// Every derived field agrees with the pieces, and the key with the position.
BrokenPromise CheckDerivedFields(const Board& board);

/// The generated moves can be made and unmade, their texts name them, and
/// generating, printing and evaluating do not change the board. A board equal to
/// the previous one is not checked again.
BrokenPromise CheckPosition(Board& board);

/// Generated moves that do not leave the mover's king attacked.
std::vector<Move> LegalMovesOf(Board& board);

/// Pieces, side to move and castling state are the same.
bool SamePosition(const Board& a, const Board& b);

}  // namespace mirvo
