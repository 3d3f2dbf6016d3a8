#include "search/king_sight.h"

#include "board/attacks.h"
#include "board/bits.h"
#include "board/geometry_tables.h"

namespace mirvo {

KingSight::KingSight(const Board& position, bool inCheck) : board_(position) {
  const int side = position.sideToMove;
  const int ownKing = KingSquare(position, side);
  const int enemyKing = KingSquare(position, side ^ 1);
  checks_[pawn] = PawnAttacks[side ^ 1][enemyKing];
  checks_[knight] = KnightAttacks[enemyKing];
  checks_[bishop] = BishopAttacks(position, enemyKing);
  checks_[rook] = RookAttacks(position, enemyKing);
  checks_[queen] = checks_[bishop] | checks_[rook];
  checks_[king] = 0;
  // Boards that only text input can set up get no answers.
  const std::uint64_t* own = position.pieces + side * nKinds;
  const Bitboard attackers = (checks_[pawn] & own[pawn]) | (checks_[knight] & own[knight]) |
                             (checks_[bishop] & own[bishop]) | (checks_[rook] & own[rook]) |
                             (checks_[queen] & own[queen]) | (KingAttacks[enemyKing] & own[king]);
  if (position.hasOverlaps || own[king] != Bit(ownKing) ||
      position.pieces[PieceIndex(side ^ 1, king)] != Bit(enemyKing) || attackers != 0) {
    unforeseen_ = ~Bitboard{0};
    return;
  }
  screens_ = Blockers(position, ownKing, side ^ 1) | Blockers(position, enemyKing, side);
  if (HasEnPassant(position)) {
    unforeseen_ = Bit(SquareAt(position.epRank & 7, position.epFile & 7));
  }
  if (inCheck) FindEvasions(ownKing);
}

/// Against one checker another piece has to take it or to step between;
/// against two only the king moves.
void KingSight::FindEvasions(int ownKing) {
  const int side = board_.sideToMove;
  const std::uint64_t* enemy = board_.pieces + (side ^ 1) * nKinds;
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

Foresight KingSight::ForeseeKing(int from, int to) const {
  const bool castles = to - from == 2 || from - to == 2;
  if (castles || (screens_ & Bit(from)) != 0) return Foresight::unknown;
  if (SquareAttacked(board_, board_.sideToMove ^ 1, to)) return Foresight::illegal;
  // A slider that gives check sees through the square that the king leaves.
  for (Bitboard sliders = checkingSliders_; sliders != 0;) {
    const int slider = PopHighest(sliders);
    if (((RookPath[slider][to] | BishopPath[slider][to]) & Bit(from)) != 0) {
      return Foresight::illegal;
    }
  }
  return Foresight::legal;
}

}  // namespace mirvo
