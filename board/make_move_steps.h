// Steps that the general and the fast ways of making a move share: the four
// occupancy views, the undo record, castling rights and the en-passant square.
#pragma once

#include <cstddef>

#include "board/board.h"
#include "board/keys.h"
#include "board/move.h"
#include "board/occupancy_maps.h"
#include "board/square_sets.h"

namespace mirvo {

// -------------------------------------------------------- occupancy views

inline const RotatedBits& RotatedOf(int square) {
  return RotatedBitsOf[static_cast<std::size_t>(square)];
}

// The views are changed two at a time: they lie next to each other on the
// board, in its undo records and in the table of their bits.
using ViewPair [[gnu::vector_size(16), gnu::may_alias]] = std::uint64_t;
static_assert(offsetof(PositionState, occupied) == 0 &&
              alignof(PositionState) % sizeof(ViewPair) == 0);
static_assert(offsetof(PositionState, occupiedDiagA8H1) == 2 * sizeof(ViewPair) - 8);
static_assert(sizeof(RotatedBits) == 2 * sizeof(ViewPair));

inline ViewPair* ViewPairsOf(PositionState& state) { return reinterpret_cast<ViewPair*>(&state); }
inline const ViewPair* ViewPairsOf(const RotatedBits& bits) {
  return reinterpret_cast<const ViewPair*>(&bits);
}

/// Adds or removes a square in all four views.
inline void ToggleViews(Board& board, const RotatedBits& bits) {
  ViewPair* views = ViewPairsOf(board);
  views[0] ^= ViewPairsOf(bits)[0];
  views[1] ^= ViewPairsOf(bits)[1];
}

/// The same for two squares.
inline void ToggleViews(Board& board, const RotatedBits& one, const RotatedBits& other) {
  ViewPair* views = ViewPairsOf(board);
  views[0] ^= ViewPairsOf(one)[0] ^ ViewPairsOf(other)[0];
  views[1] ^= ViewPairsOf(one)[1] ^ ViewPairsOf(other)[1];
}

// ------------------------------------------------------------ undo record

/// Fills the next undo record with the state before `move`. The caller counts
/// it (undoDepth) when the move is made.
inline UndoRecord& FillUndoRecord(Board& board, Move move, UnmakeFunction unmake) {
  UndoRecord& undo = board.undoStack[board.undoDepth];
  static_cast<PositionState&>(undo) = board;
  undo.move = move;
  undo.unmake = unmake;
  undo.captured = 0;
  undo.castledShort = 0;
  undo.castledLong = 0;
  undo.epCapture = 0;
  return undo;
}

/// Restores everything but the piece bitboards, the side occupancies and the
/// king squares.
inline void RestoreState(Board& board, const UndoRecord& undo, int side) {
  static_cast<PositionState&>(board) = undo;
  --board.plyCount;
  board.sideToMove = static_cast<std::uint8_t>(side);
  board.inCheckCache = -1;
}

// -------------------------------------------------------- castling rights

/// Removes from the key the castling rights that the side still has.
inline void RemoveCastlingKeys(Board& board, int side) {
  if (board.castling.kingMoved[side] != 0) return;
  if (board.castling.queenRookMoved[side] == 0) board.positionKey ^= LongCastlingKey(side);
  if (board.castling.kingRookMoved[side] == 0) board.positionKey ^= ShortCastlingKey(side);
}

/// A rook that leaves its corner ends that side's right to castle with it. The
/// capture of a rook in its corner does not: the right stays in flags and key,
/// and castling fails because no rook stands in the corner.
inline void UpdateRookRights(Board& board, int side, int from) {
  const int corner = RelativeSquare(side, rank1, fileA);
  CastlingFlags& flags = board.castling;
  if (from == corner && flags.queenRookMoved[side] == 0) {
    if (flags.kingMoved[side] == 0) board.positionKey ^= LongCastlingKey(side);
    flags.queenRookMoved[side] = 1;
  } else if (from == corner + 7 && flags.kingRookMoved[side] == 0) {
    if (flags.kingMoved[side] == 0) board.positionKey ^= ShortCastlingKey(side);
    flags.kingRookMoved[side] = 1;
  }
}

// ------------------------------------------------------------- en passant

/// Whether a pawn's move goes two ranks up or down.
constexpr bool IsDoubleStep(int from, int to) {
  return ((RankOf(to) - RankOf(from) + 2) & ~4) == 0;
}

/// Clears the en-passant square and removes it from the key.
inline void RemoveEnPassant(Board& board) {
  if (!HasEnPassant(board)) return;
  board.positionKey ^= EnPassantKey(board.epFile);
  board.epRank = noEnPassant;
  board.epFile = noEnPassant;
}

/// Sets the en-passant square after a double step, but only where an enemy pawn
/// stands beside the pawn: the key carries en passant exactly where such a
/// capture is conceivable. Otherwise an older square stays. (A move from text
/// may change the file on its way; the edges are those of its origin.) Seldom
/// called, so it is not built into the fast ways, which would save registers.
[[gnu::noinline]] inline void SetEnPassantAfterDoubleStep(Board& board, int side, int from,
                                                          int to) {
  const Bitboard enemyPawns = board.pieces[PieceIndex(side ^ 1, pawn)];
  Bitboard beside = 0;
  if (FileOf(from) > fileA) beside |= Bit(to) >> 1;
  if (FileOf(from) < fileH) beside |= Bit(to) << 1;
  if ((enemyPawns & beside & RankSet(RankOf(to))) == 0) return;
  if (HasEnPassant(board)) board.positionKey ^= EnPassantKey(board.epFile);
  board.positionKey ^= EnPassantKey(FileOf(from));
  board.epFile = static_cast<std::uint8_t>(FileOf(from));
  board.epRank = static_cast<std::uint8_t>(RankOf(from) + (side == white ? 1 : -1));
  board.epColour = static_cast<std::uint8_t>(side);
}

}  // namespace mirvo
