// Static exchange evaluation: what a capture wins or loses when both sides go
// on capturing on its target square.
#pragma once

#include <cstdint>

#include "board/board.h"
#include "board/move.h"

namespace mirvo {

/// Exchange values in centipawns, by kind.
inline constexpr std::int32_t exchangeValue[nKinds] = {100, 400, 400, 600, 1100, 20000};

/// Kind of the piece that `move` captures; pawn when its target is empty (en
/// passant).
int CaptureVictim(const Board& board, Move move);

/// Net gain in centipawns for the side that makes `move`, a capture of a piece
/// of kind `victim`. Pins are ignored and kings take part; promotion gains and
/// the removal of a pawn taken en passant are left out. Reads the board only.
std::int32_t StaticExchange(const Board& board, Move move, int victim);

/// Ordering score of a capture: the MVV/LVA score when the attacker is not
/// worth more than the victim or loses nothing by exchange, else the negative
/// exchange value.
std::int32_t ScoreCapture(const Board& board, Move move, int victim);

}  // namespace mirvo
