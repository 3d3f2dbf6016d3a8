// Tells which moves of a position are legal and which give check, for most of them
// without making the move, which would cost many times as much.
#pragma once

#include <cstdint>

#include "board/attack_tables.h"
#include "board/board.h"
#include "board/move.h"

namespace mirvo {

/// What is known of a generated move before it is made.
enum class Legality : std::uint8_t { illegal, legal, unknown };

/// Built once a node from what attacks the two kings or is blocked from them.
class CheckInfo {
 public:
  /// The board must outlive this object and have the same position at every call.
  /// `inCheck` says whether the side to move is in check.
  CheckInfo(const Board& position, bool inCheck);

  /// Legality of `move`, which the generator offers here. Unknown are castling,
  /// en passant, promotions (the new piece may attack through the square that
  /// the pawn leaves) and moves of a piece that blocks a slider's attack on
  /// either king. On boards without exactly one king a side, or where the side
  /// to move could take the enemy king, every move is unknown.
  Legality LegalityOf(Move move) const {
    const Bitboard to = Bit(ToSquare(move));
    if ((to & unknownTargets_) != 0) return Legality::unknown;
    if (MovingKind(move) == king) return LegalityOfKingMove(FromSquare(move), ToSquare(move));
    if (IsPromotion(move)) return Legality::unknown;
    if ((to & targets_) == 0) return Legality::illegal;
    return (blockers_ & Bit(FromSquare(move))) != 0 ? Legality::unknown : Legality::legal;
  }

  /// Whether a move gives check, of which LegalityOf says that it is legal.
  bool GivesCheck(Move move) const {
    return (checkSquares_[MovingKind(move)] & Bit(ToSquare(move))) != 0;
  }

 private:
  Legality LegalityOfKingMove(int from, int to) const;
  void FindEvasions(int ownKing);

  const Board& board_;
  Bitboard checkSquares_[nKinds];    // from which a piece of a kind attacks the enemy king
  Bitboard blockers_;                // alone between a slider and the other side's king
  Bitboard targets_ = ~Bitboard{0};  // where moves of other pieces than the king must end
  Bitboard unknownTargets_ = 0;      // moves to these squares are unknown
  Bitboard checkingSliders_ = 0;
};

}  // namespace mirvo
