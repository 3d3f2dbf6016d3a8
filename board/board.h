// The Board: one position and the record of the moves that led to it. A plain
// value of fixed size; changed by the set-up routines here and in fen.h and by
// make_move.h. One thing that moves and the repetition test need lies outside
// it: the keys of past positions, in the one list that all boards share
// (key_history.h). So only one board at a time may be played on; a board that
// is then left behind keeps its position but not its history.
#pragma once

#include <cstdint>

#include "board/coding.h"
#include "board/move.h"

namespace mirvo {

/// Castling state of both sides; 0 means "not yet", so a cleared record holds
/// every right. Indexed by side.
struct CastlingFlags {
  std::uint8_t hasCastled[nSides];
  std::uint8_t kingMoved[nSides];
  std::uint8_t queenRookMoved[nSides];  // the a-file rook
  std::uint8_t kingRookMoved[nSides];   // the h-file rook
};
static_assert(sizeof(CastlingFlags) == 8);

/// The part of a position that UnmakeMove restores from its record instead of
/// computing it: one cache line, copied whole.
struct alignas(64) PositionState {
  // The four views of all pieces, in the order of RotatedBits.
  std::uint64_t occupied;
  std::uint64_t occupiedRot90;
  std::uint64_t occupiedDiagA1H8;
  std::uint64_t occupiedDiagA8H1;
  std::uint64_t positionKey;  // equals the published Polyglot key
  std::uint64_t pawnKey;      // the piece keys of both sides' pawns
  CastlingFlags castling;
  std::uint8_t epRank;  // square just skipped by a double step, 255 = none
  std::uint8_t epFile;
  std::uint8_t epColour;  // side whose pawn made the double step
  /// 1 while the search has a null move on the board. Kept as part of the
  /// position; nothing reads it.
  std::uint8_t nullMoveMade;
  std::uint32_t unused;  // padding with a name, so that every byte has a value
};
static_assert(sizeof(PositionState) == 64);

struct Board;
struct UndoRecord;

/// Unmakes the move in `undo`; the caller has already popped the record.
using UnmakeFunction = void (*)(Board& board, const UndoRecord& undo);

/// What UnmakeMove needs to restore the position before one move.
struct UndoRecord : PositionState {
  Move move;  // with the captured kind filled in when the capture flag is set
  std::uint8_t captured;
  std::uint8_t castledShort;
  std::uint8_t castledLong;
  std::uint8_t epCapture;
  std::uint8_t capturedKind;  // pawn for en passant; meaningful when captured
  UnmakeFunction unmake;      // the fastest way to unmake this move
  Bitboard fromTo;            // origin and target, for the fast ways only
};
static_assert(sizeof(UndoRecord) == 128);

inline constexpr int undoCapacity = 500;

/// Plies a search may put on top of the game: undo stack and key history are
/// trimmed to leave this much room before a search starts.
inline constexpr int searchPlyRoom = 250;

struct Board : PositionState {
  /// An initial position with no en-passant square. Its key is entry 0 of
  /// KeyHistory when the program starts; afterwards a board that is to be played
  /// on begins a game first (fen.h).
  Board();

  /// A new board is a plain copy, byte for byte: a snapshot to compare with
  /// later. CopyBoard is the way to copy onto a board that exists.
  Board(const Board&) = default;
  Board& operator=(const Board&) = delete;

  std::uint64_t pieces[nPieces];  // index = side * 6 + kind
  std::uint64_t sideOccupancy[nSides];
  std::uint64_t sideOccupancyNoKing[nSides];  // the side's pieces without its king
  std::uint8_t kingFile[nSides];
  std::uint8_t kingRank[nSides];
  std::uint8_t sideToMove;
  /// Whether two pieces may share a square (only text input can do that). The
  /// board then recomputes its derived sets instead of updating them.
  bool hasOverlaps;
  /// Whether a text that names no move has passed the turn since set-up.
  bool turnPassed;
  std::int32_t inCheckCache;  // -1 unknown, 0 no, 1 yes, for the side to move
  std::int32_t plyCount;      // moves and null moves made since set-up
  std::int32_t undoDepth;     // undoStack entries in use
  std::int32_t historyIndex;  // index in KeyHistory of the latest position
  UndoRecord undoStack[undoCapacity];
};

inline constexpr int nBoards = 8;

/// One board per search slot; the engine has one searcher, which uses slot 0.
/// Owner: board.cpp. Writer and reader: the search.
extern Board BoardPool[nBoards];

/// Empties the position. Leaves side to move, king squares, en-passant fields,
/// history index and key alone: callers set them.
void ClearBoard(Board& board);

/// Sets up the initial position and its key. Leaves the en-passant fields alone.
void PlaceStartPosition(Board& board);

/// Forgets the en-passant square. Does not touch the key.
void ClearEnPassant(Board& board);

/// Recomputes the side occupancies, `occupied` and the pawn key from the twelve
/// bitboards.
void RebuildOccupancy(Board& board);

/// Recomputes the three rotated occupancies from `occupied`.
void RebuildRotated(Board& board);

/// Sets a side's king file and rank from the highest bit of its king bitboard
/// (h8 for a side without a king, so that the fields stay on the board).
void LocateKing(Board& board, int side);
void LocateKings(Board& board);

/// Sets hasOverlaps according to whether two pieces share a square.
void DetectOverlaps(Board& board);

/// The key of the position from scratch.
std::uint64_t ComputeKey(const Board& board);

/// The piece keys of all pawns, from scratch. Without the side to move.
std::uint64_t ComputePawnKey(const Board& board);

/// Makes `destination` an independent copy. Derived sets and keys are
/// recomputed, undo records copied whole.
void CopyBoard(Board& destination, const Board& source);

/// The six bitboards of a side, indexed by kind.
inline const Bitboard* PiecesOf(const Board& board, int side) {
  return board.pieces + side * nKinds;
}

/// Kind of the piece of `side` on `square`, or noPiece. Where several share the
/// square it is the first in the order pawn, bishop, knight, rook, queen, king.
int PieceOn(const Board& board, int square, int side);

/// The same for a board without overlaps and a square that is known to hold a
/// piece of the side; an empty square reads as a pawn. Computes the three bits of
/// the kind from the pieces that have them: a search over the kinds would be
/// guessed wrongly too often.
inline int SolePieceOn(const Board& board, int square, int side) {
  static_assert(pawn == 0 && knight == 1 && bishop == 2 && rook == 3 && queen == 4 && king == 5);
  const Bitboard* of = PiecesOf(board, side);
  const std::uint64_t bit0 = of[knight] | of[rook] | of[king];
  const std::uint64_t bit1 = of[bishop] | of[rook];
  const std::uint64_t bit2 = of[queen] | of[king];
  return static_cast<int>((bit0 >> square & 1) | (bit1 >> square & 1) << 1 |
                          (bit2 >> square & 1) << 2);
}

inline int KingSquare(const Board& board, int side) {
  return SquareAt(board.kingRank[side], board.kingFile[side]);
}

inline bool HasEnPassant(const Board& board) { return board.epFile != noEnPassant; }

}  // namespace mirvo
