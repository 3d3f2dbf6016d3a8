// Static exchange evaluation: the gain or loss of a capture when both sides continue to
// capture on its target square.
#pragma once

#include <cstdint>

#include "board/board.h"
#include "board/move.h"
#include "eval/material.h"
#include "search/move_order.h"

namespace mirvo {

/// Exchange values in centipawns, by kind.
inline constexpr std::int32_t exchangeValue[nKinds] = {pawnValue, knightValue, bishopValue,
                                                       rookValue, queenValue,  20000};

/// Kind of the piece that `move` captures: a pawn when its target is empty (en
/// passant).
int CaptureVictim(const Board& board, Move move);

/// Net gain in centipawns for the side that makes `move`, a capture of a piece
/// of kind `victim`. Pins are ignored and kings take part; promotion gains and
/// the removal of a pawn taken en passant are left out. Reads the board only.
std::int32_t StaticExchange(const Board& board, Move move, int victim);

/// Ordering score of a capture that loses nothing: most valuable victim, least
/// valuable attacker.
inline std::int32_t CaptureScore(Move move, int victim) { return MvvLva[victim][MovingKind(move)]; }

/// The exchange value of a capture if it is negative, else 0: the ordering score
/// of a capture that loses material. The word must name the victim.
inline std::int32_t ExchangeLoss(const Board& board, Move move) {
  const int victim = CapturedKind(move);
  // A recapture that wins no more than the capture took loses nothing.
  if (exchangeValue[MovingKind(move)] <= exchangeValue[victim]) return 0;
  const std::int32_t exchange = StaticExchange(board, move, victim);
  return exchange < 0 ? exchange : 0;
}

}  // namespace mirvo
