// Promises that every position keeps, whatever text it came from.
#pragma once

#include <vector>

#include "board/board.h"
#include "board/move.h"
#include "tests/fuzz/exercises/exercises.h"

namespace mirvo {

/// Every derived field agrees with the pieces, and the key with the position.
BrokenPromise CheckDerivedFields(const Board& board);

/// The generated moves can be made and taken back, their texts name them, and
/// generating, printing and evaluating leave the board as it was.
BrokenPromise CheckPosition(Board& board);

/// Generated moves that do not leave the own king attacked.
std::vector<Move> LegalMovesOf(Board& board);

/// Pieces, side to move and castling state are the same.
bool SamePosition(const Board& a, const Board& b);

}  // namespace mirvo
