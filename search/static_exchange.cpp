#include "search/static_exchange.h"

#include <algorithm>

#include "board/attack_tables.h"
#include "board/bits.h"
#include "board/occupancy_maps.h"
#include "search/move_order.h"

namespace mirvo {
namespace {

// Both sides have at most 64 pieces between them, one gain a capture.
constexpr int maxExchanges = nSquares + 1;

// The exchange in progress: who still attacks the square, over an occupancy
// from which the pieces that have captured are gone.
struct Exchange {
  const Board& board;
  int square;
  OccupancyViews views;
  Bitboard attackers;
};

Bitboard DiagonalSliders(const Board& board) {
  return board.pieces[PieceIndex(white, bishop)] | board.pieces[PieceIndex(white, queen)] |
         board.pieces[PieceIndex(black, bishop)] | board.pieces[PieceIndex(black, queen)];
}

Bitboard StraightSliders(const Board& board) {
  return board.pieces[PieceIndex(white, rook)] | board.pieces[PieceIndex(white, queen)] |
         board.pieces[PieceIndex(black, rook)] | board.pieces[PieceIndex(black, queen)];
}

Bitboard AllAttackers(const Board& board, int square) {
  const std::uint64_t* whites = board.pieces;
  const std::uint64_t* blacks = board.pieces + nKinds;
  return (PawnAttacks[black][square] & whites[pawn]) | (PawnAttacks[white][square] & blacks[pawn]) |
         (KnightAttacks[square] & (whites[knight] | blacks[knight])) |
         (KingAttacks[square] & (whites[king] | blacks[king])) |
         (BishopAttacks(board, square) & DiagonalSliders(board)) |
         (RookAttacks(board, square) & StraightSliders(board));
}

// Takes a piece that captures off its square and adds the sliders behind it.
// Knights and kings uncover nothing that was not seen before.
void TakeOff(Exchange& exchange, int square, int kind) {
  const RotatedBits& bits = RotatedBitsOf[static_cast<std::size_t>(square)];
  exchange.views.occupied &= ~Bit(square);
  exchange.views.rot90 &= ~bits.rot90;
  exchange.views.diagA1H8 &= ~bits.diagA1H8;
  exchange.views.diagA8H1 &= ~bits.diagA8H1;
  if (kind == pawn || kind == bishop || kind == queen) {
    exchange.attackers |=
        BishopAttacks(exchange.views, exchange.square) & DiagonalSliders(exchange.board);
  }
  if (kind == rook || kind == queen) {
    exchange.attackers |=
        RookAttacks(exchange.views, exchange.square) & StraightSliders(exchange.board);
  }
  exchange.attackers &= exchange.views.occupied;
}

// Kind of the side's least valuable attacker, or noPiece; its square is the
// highest of its kind.
int LeastAttacker(const Exchange& exchange, int side, int& square) {
  const std::uint64_t* own = exchange.board.pieces + side * nKinds;
  for (int kind = pawn; kind <= king; ++kind) {
    const Bitboard candidates = own[kind] & exchange.attackers;
    if (candidates == 0) continue;
    square = HighestSquare(candidates);
    return kind;
  }
  return noPiece;
}

}  // namespace

int CaptureVictim(const Board& board, Move move) {
  const int kind = PieceOn(board, ToSquare(move), board.sideToMove ^ 1);
  return kind == noPiece ? pawn : kind;
}

std::int32_t StaticExchange(const Board& board, Move move, int victim) {
  Exchange exchange{board, ToSquare(move), ViewsOf(board), AllAttackers(board, ToSquare(move))};
  std::int32_t gain[maxExchanges];
  gain[0] = exchangeValue[victim];
  int standing = MovingKind(move);
  TakeOff(exchange, FromSquare(move), standing);

  int depth = 0;
  int side = MoveColour(move) ^ 1;
  while (depth + 1 < maxExchanges) {
    int square = 0;
    const int kind = LeastAttacker(exchange, side, square);
    if (kind == noPiece) break;
    TakeOff(exchange, square, kind);
    ++depth;
    gain[depth] = exchangeValue[standing] - gain[depth - 1];
    standing = kind;
    side ^= 1;
  }
  for (; depth > 0; --depth) gain[depth - 1] = std::min(gain[depth - 1], -gain[depth]);
  return gain[0];
}

std::int32_t ScoreCapture(const Board& board, Move move, int victim) {
  const int attacker = MovingKind(move);
  if (attacker > victim) {
    const std::int32_t exchange = StaticExchange(board, move, victim);
    if (exchange < 0) return exchange;
  }
  return MvvLva[victim][attacker];
}

}  // namespace mirvo
