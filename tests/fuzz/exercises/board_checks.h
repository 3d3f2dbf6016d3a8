// Promises that every position keeps, whatever text it came from.
#pragma once

#include <vector>

#include "board/board.h"
#include "board/move.h"
#include "tests/fuzz/exercises/exercises.h"

namespace mirvo {

/// Copies a board without its unused undo records, which are most of its size.
void CopyInUse(Board& copy, const Board& board);

/// Whether two boards agree to the last byte in use, padding included, but for
/// the cached answer about check.
bool SameBytes(const Board& a, const Board& b);

/// Every derived field agrees with the pieces, and the key with the position.
BrokenPromise CheckDerivedFields(const Board& board);

/// The generated moves can be made and taken back, their texts name them, and
/// generating, printing and evaluating leave the board as it was. A board equal
/// to the one that passed last needs no second look.
BrokenPromise CheckPosition(Board& board);

/// Generated moves that do not leave the own king attacked.
std::vector<Move> LegalMovesOf(Board& board);

/// Pieces, side to move and castling state are the same.
bool SamePosition(const Board& a, const Board& b);

}  // namespace mirvo
