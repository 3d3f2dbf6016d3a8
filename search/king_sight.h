// What the two kings of a position see from their squares. It tells for most
// moves, before they are made, whether they are legal and whether they give
// check: making a move to find out costs many times as much.
#pragma once

#include "board/attack_tables.h"
#include "board/board.h"
#include "board/move.h"

namespace mirvo {

enum class Foresight : std::uint8_t { illegal, legal, unknown };

class KingSight {
 public:
  /// The board must outlive the sight and stand at the same position whenever
  /// the sight is asked. `inCheck` says whether the side to move is in check.
  KingSight(const Board& position, bool inCheck);

  /// What is known of `move`, which the generator offers here. Unknown are
  /// castling, en passant, promotions (the new piece may see through the square
  /// that the pawn leaves) and moves of a piece that screens a king. Of boards
  /// without exactly one king a side, or where the side to move could take the
  /// enemy king, everything is unknown.
  Foresight Foresee(Move move) const {
    const Bitboard to = Bit(ToSquare(move));
    if ((to & unforeseen_) != 0) return Foresight::unknown;
    if (MovingKind(move) == king) return ForeseeKing(FromSquare(move), ToSquare(move));
    if (IsPromotion(move)) return Foresight::unknown;
    if ((to & targets_) == 0) return Foresight::illegal;
    return (screens_ & Bit(FromSquare(move))) != 0 ? Foresight::unknown : Foresight::legal;
  }

  /// Whether a move that is foreseen as legal attacks the enemy king.
  bool GivesCheck(Move move) const {
    return (checks_[MovingKind(move)] & Bit(ToSquare(move))) != 0;
  }

 private:
  Foresight ForeseeKing(int from, int to) const;
  void FindEvasions(int ownKing);

  const Board& board_;
  Bitboard checks_[nKinds];          // from where a piece of a kind attacks the enemy king
  Bitboard screens_;                 // alone between a slider and the other side's king
  Bitboard targets_ = ~Bitboard{0};  // where moves of other pieces than the king must end
  Bitboard unforeseen_ = 0;          // targets of moves that have to be made to be known
  Bitboard checkingSliders_ = 0;
};

}  // namespace mirvo
