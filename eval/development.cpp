#include "board/bits.h"
#include "eval/eval_tables.h"
#include "eval/side_geometry.h"
#include "eval/terms.h"

namespace mirvo {

namespace {

// Squares of the initial position, as White sees them.
constexpr int a1 = 0;
constexpr int b1 = 1;
constexpr int c1 = 2;
constexpr int d1 = 3;
constexpr int f1 = 5;
constexpr int g1 = 6;
constexpr int h1 = 7;

template <int side>
int MinorsAtHomeOf(const Board& board) {
  constexpr Bitboard knightHome = RelativeSquare<side>(b1) | RelativeSquare<side>(g1);
  constexpr Bitboard bishopHome = RelativeSquare<side>(c1) | RelativeSquare<side>(f1);
  const Bitboard* own = PiecesOf<side>(board);
  return PopCount((own[knight] & knightHome) | (own[bishop] & bishopHome));
}

/// An early queen holds the minors back; rooks belong in a corner until the
/// king is safe.
template <int side>
std::int32_t OpeningAmount(const Board& board, int minorsAtHome) {
  constexpr Bitboard corners = RelativeSquare<side>(a1) | RelativeSquare<side>(h1);
  const Bitboard* own = PiecesOf<side>(board);
  std::int32_t amount = 0;
  if ((own[queen] & RelativeSquare<side>(d1)) == 0) amount += minorAtHomeQueenOut * minorsAtHome;
  if ((own[rook] & corners) == 0) amount += noCornerRook;
  return amount;
}

}  // namespace

MIRVO_COUNTS_BITS int MinorsAtHome(const Board& board, int side) {
  return side == white ? MinorsAtHomeOf<white>(board) : MinorsAtHomeOf<black>(board);
}

std::int32_t EvaluateDevelopment(const EvalRecord& record, int side, std::int32_t given,
                                 std::int32_t /*mgSoFar*/, int minorsAtHome) {
  const Board& board = *record.board;
  return given + (side == white ? OpeningAmount<white>(board, minorsAtHome)
                                : OpeningAmount<black>(board, minorsAtHome));
}

}  // namespace mirvo
