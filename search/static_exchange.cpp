#include "search/static_exchange.h"

#include <algorithm>

#include "board/attack_tables.h"
#include "board/bits.h"
#include "board/occupancy_maps.h"

namespace mirvo {
namespace {

// One gain per capture, and no more captures than squares.
constexpr int maxExchanges = nSquares + 1;

// An exchange in progress: the remaining attackers of the square, without the pieces
// that have captured already, and the sliders behind other pieces.
struct Exchange {
  Exchange(const Board& position, int target);

  const Board& board;
  int square;
  OccupancyViews views;
  Bitboard attackers;
  Bitboard xRayDiagonals;  // bishops and queens behind other pieces
  Bitboard xRayLines;      // rooks and queens behind other pieces
};

Exchange::Exchange(const Board& position, int target)
    : board(position), square(target), views(ViewsOf(position)) {
  const Bitboard* whites = PiecesOf(board, white);
  const Bitboard* blacks = PiecesOf(board, black);
  const Bitboard queens = whites[queen] | blacks[queen];
  const Bitboard onDiagonals = BishopLines(square) & (whites[bishop] | blacks[bishop] | queens);
  const Bitboard onLines = RookLines(square) & (whites[rook] | blacks[rook] | queens);
  const Bitboard diagonalAttackers =
      onDiagonals != 0 ? BishopAttacks(board, square) & onDiagonals : 0;
  const Bitboard lineAttackers = onLines != 0 ? RookAttacks(board, square) & onLines : 0;
  xRayDiagonals = onDiagonals ^ diagonalAttackers;
  xRayLines = onLines ^ lineAttackers;
  attackers =
      (PawnAttacks[black][square] & whites[pawn]) | (PawnAttacks[white][square] & blacks[pawn]) |
      (KnightAttacks[square] & (whites[knight] | blacks[knight])) |
      (KingAttacks[square] & (whites[king] | blacks[king])) | diagonalAttackers | lineAttackers;
}

// Removes a capturing piece from its square and adds the x-ray attackers behind it.
// None are added behind a king or a knight.
void RemoveAttacker(Exchange& exchange, int square, int kind) {
  const RotatedBits& bits = RotatedBitsOf[static_cast<std::size_t>(square)];
  exchange.views.occupied &= ~Bit(square);
  exchange.views.rot90 &= ~bits.rot90;
  exchange.views.diagA1H8 &= ~bits.diagA1H8;
  exchange.views.diagA8H1 &= ~bits.diagA8H1;
  if (exchange.xRayDiagonals != 0 && (kind == pawn || kind == bishop || kind == queen)) {
    const Bitboard seen = BishopAttacks(exchange.views, exchange.square) & exchange.xRayDiagonals;
    exchange.attackers |= seen;
    exchange.xRayDiagonals ^= seen;
  }
  if (exchange.xRayLines != 0 && (kind == rook || kind == queen)) {
    const Bitboard seen = RookAttacks(exchange.views, exchange.square) & exchange.xRayLines;
    exchange.attackers |= seen;
    exchange.xRayLines ^= seen;
  }
  exchange.attackers &= exchange.views.occupied;
}

// Kind of the side's least valuable attacker, or noPiece; its square is the
// highest of its kind.
int LeastAttacker(const Exchange& exchange, int side, int& square) {
  const Bitboard attackers = exchange.attackers & exchange.board.sideOccupancy[side];
  if (attackers == 0) return noPiece;
  const Bitboard* own = PiecesOf(exchange.board, side);
  int kind = pawn;
  while ((own[kind] & attackers) == 0) ++kind;
  square = HighestSquare(own[kind] & attackers);
  return kind;
}

}  // namespace

int CaptureVictim(const Board& board, Move move) {
  const int enemy = board.sideToMove ^ 1;
  const int square = ToSquare(move);
  if (board.hasOverlaps) {
    const int kind = PieceOn(board, square, enemy);
    return kind == noPiece ? pawn : kind;
  }
  return SolePieceOn(board, square, enemy);
}

std::int32_t StaticExchange(const Board& board, Move move, int victim) {
  Exchange exchange(board, ToSquare(move));
  std::int32_t gain[maxExchanges];
  gain[0] = exchangeValue[victim];
  int occupant = MovingKind(move);
  RemoveAttacker(exchange, FromSquare(move), occupant);

  int depth = 0;
  int side = MoveColour(move) ^ 1;
  while (depth + 1 < maxExchanges) {
    int square = 0;
    const int kind = LeastAttacker(exchange, side, square);
    if (kind == noPiece) break;
    RemoveAttacker(exchange, square, kind);
    ++depth;
    gain[depth] = exchangeValue[occupant] - gain[depth - 1];
    occupant = kind;
    side ^= 1;
  }
  for (; depth > 0; --depth) gain[depth - 1] = std::min(gain[depth - 1], -gain[depth]);
  return gain[0];
}

}  // namespace mirvo
