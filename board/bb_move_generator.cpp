#include "board/bb_move_generator.h"

#include "board/attack_tables.h"
#include "board/attacks.h"
#include "board/bits.h"
#include "board/make_move.h"
#include "board/square_sets.h"

namespace mirvo {
namespace {

constexpr Move KindBits(int kind) { return static_cast<Move>(kind) << moveKindShift; }
constexpr Move SideBits(int side) { return static_cast<Move>(side) << moveColourShift; }

// Files between king and rook before castling.
constexpr Bitboard longPathFiles = FileSet(fileB) | FileSet(fileC) | FileSet(fileD);
constexpr Bitboard shortPathFiles = FileSet(fileF) | FileSet(fileG);

// Promotions stand in the list from queen down to knight.
Move* AddPromotions(Move* next, Move move) {
  *next++ = move | PromotionBits(queen);
  *next++ = move | PromotionBits(rook);
  *next++ = move | PromotionBits(bishop);
  *next++ = move | PromotionBits(knight);
  return next;
}

}  // namespace

void BBMoveGenerator2::FinishPass() {
  if (!HasRoom()) next = moves + moveListCapacity;
  count = static_cast<std::int32_t>(next - moves);
}

inline void BBMoveGenerator2::AddTargets(int from, Bitboard targets, Move common) {
  const Move origin = common | static_cast<Move>(from);
  while (targets != 0) *next++ = origin | (static_cast<Move>(PopHighest(targets)) << moveToShift);
}

// Knights, bishops, rooks, queens and the king, in that order, each kind from
// its highest square down; only moves onto `targets`.
inline void BBMoveGenerator2::AddPieceMoves(Bitboard targets, Move flags) {
  const Bitboard* own = PiecesOf(*board, side);
  const Move common = flags | SideBits(side);
  for (Bitboard set = own[knight]; set != 0 && HasRoom();) {
    const int from = PopHighest(set);
    AddTargets(from, KnightAttacks[from] & targets, common | KindBits(knight));
  }
  for (Bitboard set = own[bishop]; set != 0 && HasRoom();) {
    const int from = PopHighest(set);
    AddTargets(from, BishopAttacks(*board, from) & targets, common | KindBits(bishop));
  }
  for (Bitboard set = own[rook]; set != 0 && HasRoom();) {
    const int from = PopHighest(set);
    AddTargets(from, RookAttacks(*board, from) & targets, common | KindBits(rook));
  }
  for (Bitboard set = own[queen]; set != 0 && HasRoom();) {
    const int from = PopHighest(set);
    AddTargets(from, QueenAttacks(*board, from) & targets, common | KindBits(queen));
  }
  for (Bitboard set = own[king]; set != 0 && HasRoom();) {
    const int from = PopHighest(set);
    AddTargets(from, KingAttacks[from] & targets, common | KindBits(king));
  }
}

// Only pawns that attack a victim, from the highest down; each from its highest
// target down, en passant last.
template <int us>
void BBMoveGenerator2::AddPawnCaptures() {
  constexpr int them = us ^ 1;
  constexpr Move common = captureFlag | SideBits(us) | KindBits(pawn);
  const Bitboard victims = board->sideOccupancyNoKing[them];
  const bool enPassant = board->epFile != noEnPassant && board->epColour == them &&
                         us == board->sideToMove && EnPassantAvailable(*board);
  const int epSquare = enPassant ? SquareAt(board->epRank, board->epFile) : 0;
  const Bitboard epBit = enPassant ? Bit(epSquare) : 0;
  const Bitboard takers =
      board->pieces[PieceIndex(us, pawn)] & PawnAttackSet(them, victims | epBit);
  for (Bitboard set = takers; set != 0 && HasRoom();) {
    const int from = PopHighest(set);
    const Move origin = common | static_cast<Move>(from);
    for (Bitboard targets = PawnAttacks[us][from] & victims; targets != 0;) {
      const int to = PopHighest(targets);
      const Move move = origin | (static_cast<Move>(to) << moveToShift);
      if (RankOf(to) == RelativeRank(us, rank8)) {
        next = AddPromotions(next, move);
      } else {
        *next++ = move;
      }
    }
    if ((PawnAttacks[us][from] & epBit) != 0) {
      *next++ = origin | (static_cast<Move>(epSquare) << moveToShift);
    }
  }
}

// From the highest pawn down; a double step follows the single step.
template <int us>
void BBMoveGenerator2::AddPawnPushes() {
  constexpr Move common = SideBits(us) | KindBits(pawn);
  constexpr int forward = us == white ? 8 : -8;
  // What a step adds to a move word; for Black it is negative.
  constexpr Move step = static_cast<Move>(forward) << moveToShift;
  constexpr Move inPlace = 1 | 1 << moveToShift;
  const Bitboard empty = ~board->occupied;
  // Origins of steps to empty squares. Shifts drop steps off the board.
  const Bitboard free = us == white ? empty >> 8 : empty << 8;
  const Bitboard free2 = us == white ? empty >> 16 : empty << 16;
  const Bitboard doubles = free2 & RelativeRankSet(us, rank2);
  for (Bitboard set = board->pieces[PieceIndex(us, pawn)] & free; set != 0 && HasRoom();) {
    const int from = PopHighest(set);
    const Move move = (common | static_cast<Move>(from) * inPlace) + step;
    if (RankOf(from) == RelativeRank(us, rank7)) [[unlikely]] {
      next = AddPromotions(next, move);
      continue;
    }
    *next++ = move;
    *next = move + step;
    next += doubles >> from & 1;
  }
}

void BBMoveGenerator2::AddCastling() {
  const CastlingFlags& flags = board->castling;
  if (flags.hasCastled[side] != 0 || flags.kingMoved[side] != 0) return;
  const int home = RelativeSquare(side, rank1, fileE);
  const Bitboard backRank = RelativeRankSet(side, rank1);
  const Bitboard* own = PiecesOf(*board, side);
  if ((own[king] & Bit(home)) == 0 || KingSquare(*board, side) != home) return;
  const bool mayLong = flags.queenRookMoved[side] == 0 && (own[rook] & Bit(home - 4)) != 0 &&
                       (board->occupied & backRank & longPathFiles) == 0;
  const bool mayShort = flags.kingRookMoved[side] == 0 && (own[rook] & Bit(home + 3)) != 0 &&
                        (board->occupied & backRank & shortPathFiles) == 0;
  if ((!mayLong && !mayShort) || InCheck(*board, side)) return;
  if (mayLong && !SquareAttacked(*board, opponent, home - 1) &&
      !SquareAttacked(*board, opponent, home - 2)) {
    *next++ = BuildMove(home, home - 2, side, king);
  }
  if (mayShort && !SquareAttacked(*board, opponent, home + 1) &&
      !SquareAttacked(*board, opponent, home + 2)) {
    *next++ = BuildMove(home, home + 2, side, king);
  }
}

void BBMoveGenerator2::GenerateCaptures() {
  if (side == white) {
    AddPawnCaptures<white>();
  } else {
    AddPawnCaptures<black>();
  }
  AddPieceMoves(board->sideOccupancyNoKing[opponent], captureFlag);
  FinishPass();
}

void BBMoveGenerator2::GenerateNonCaptures() {
  AddCastling();
  AddPieceMoves(~board->occupied, 0);
  if (side == white) {
    AddPawnPushes<white>();
  } else {
    AddPawnPushes<black>();
  }
  FinishPass();
}

void BBMoveGenerator2::GenerateAll() {
  GenerateCaptures();
  GenerateNonCaptures();
}

}  // namespace mirvo
