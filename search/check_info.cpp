#include "search/check_info.h"

#include "board/attacks.h"
#include "board/bits.h"
#include "board/geometry_tables.h"

namespace mirvo {

CheckInfo::CheckInfo(const Board& position, bool inCheck) : board_(position) {
  const int side = position.sideToMove;
  const int ownKing = KingSquare(position, side);
  const int enemyKing = KingSquare(position, side ^ 1);
  checkSquares_[pawn] = PawnAttacks[side ^ 1][enemyKing];
  checkSquares_[knight] = KnightAttacks[enemyKing];
  checkSquares_[bishop] = BishopAttacks(position, enemyKing);
  checkSquares_[rook] = RookAttacks(position, enemyKing);
  checkSquares_[queen] = checkSquares_[bishop] | checkSquares_[rook];
  checkSquares_[king] = 0;
  // Boards that only text input can set up: nothing is known of their moves.
  const Bitboard* own = PiecesOf(position, side);
  const Bitboard attackers =
      (checkSquares_[pawn] & own[pawn]) | (checkSquares_[knight] & own[knight]) |
      (checkSquares_[bishop] & own[bishop]) | (checkSquares_[rook] & own[rook]) |
      (checkSquares_[queen] & own[queen]) | (KingAttacks[enemyKing] & own[king]);
  if (position.hasOverlaps || own[king] != Bit(ownKing) ||
      position.pieces[PieceIndex(side ^ 1, king)] != Bit(enemyKing) || attackers != 0) {
    unknownTargets_ = ~Bitboard{0};
    return;
  }
  blockers_ = Blockers(position, ownKing, side ^ 1) | Blockers(position, enemyKing, side);
  if (HasEnPassant(position)) {
    unknownTargets_ = Bit(SquareAt(position.epRank & 7, position.epFile & 7));
  }
  if (inCheck) FindEvasions(ownKing);
}

// One checker has to be taken or blocked unless the king moves; two checkers
// leave only the king's moves.
void CheckInfo::FindEvasions(int ownKing) {
  const int side = board_.sideToMove;
  const Bitboard* enemy = PiecesOf(board_, side ^ 1);
  const Bitboard leapers = (PawnAttacks[side][ownKing] & enemy[pawn]) |
                           (KnightAttacks[ownKing] & enemy[knight]) |
                           (KingAttacks[ownKing] & enemy[king]);
  checkingSliders_ = (BishopAttacks(board_, ownKing) & (enemy[bishop] | enemy[queen])) |
                     (RookAttacks(board_, ownKing) & (enemy[rook] | enemy[queen]));
  const Bitboard checkers = leapers | checkingSliders_;
  if ((checkers & (checkers - 1)) != 0) {
    targets_ = 0;
  } else if (leapers != 0) {
    targets_ = leapers;
  } else {
    const int checker = HighestSquare(checkers);
    targets_ = RookPath[ownKing][checker] | BishopPath[ownKing][checker];
  }
}

Legality CheckInfo::LegalityOfKingMove(int from, int to) const {
  const bool castles = to - from == 2 || from - to == 2;
  if (castles || (blockers_ & Bit(from)) != 0) return Legality::unknown;
  if (SquareAttacked(board_, board_.sideToMove ^ 1, to)) return Legality::illegal;
  // The king does not escape along the line of a slider that gives check: the
  // slider attacks through the square that the king leaves.
  for (Bitboard sliders = checkingSliders_; sliders != 0;) {
    const int slider = PopHighest(sliders);
    if (((RookPath[slider][to] | BishopPath[slider][to]) & Bit(from)) != 0) {
      return Legality::illegal;
    }
  }
  return Legality::legal;
}

}  // namespace mirvo
