#include "board/make_move.h"

#include <cstdlib>

#include "board/key_history.h"
#include "board/keys.h"
#include "board/make_move_fast.h"
#include "board/make_move_steps.h"
#include "board/square_sets.h"

namespace mirvo {
namespace {

// Kind of the piece that moves; a move word may leave it open. noPiece when the
// word names no kind or no piece of the side to move stands on its origin.
int KindThatMoves(const Board& board, Move move) {
  const int kind = MovingKind(move);
  if (kind == unknownKind) return PieceOn(board, FromSquare(move), board.sideToMove);
  return kind < nKinds ? kind : noPiece;
}

void TogglePiece(Board& board, int side, int kind, int square) {
  const Bitboard bit = Bit(square);
  const std::uint64_t key = PieceKey(side, kind, square);
  board.pieces[PieceIndex(side, kind)] ^= bit;
  board.sideOccupancy[side] ^= bit;
  if (kind != king) board.sideOccupancyNoKing[side] ^= bit;
  ToggleViews(board, RotatedOf(square));
  board.positionKey ^= key;
  if (kind == pawn) board.pawnKey ^= key;
}

bool HasPiece(const Board& board, int side, int kind, int square) {
  return (board.pieces[PieceIndex(side, kind)] & Bit(square)) != 0;
}

bool IsEnPassantCapture(const Board& board, int kind, int from, int to) {
  return kind == pawn && HasEnPassant(board) &&
         to == SquareAt(board.epRank & 7, board.epFile & 7) && FileOf(from) != FileOf(to) &&
         board.epColour == (board.sideToMove ^ 1) && EnPassantAvailable(board);
}

bool IsCastling(int kind, int from, int to) {
  return kind == king && std::abs(FileOf(from) - FileOf(to)) > 1;
}

void CapturePiece(Board& board, UndoRecord& undo, int kind, int square) {
  TogglePiece(board, board.sideToMove ^ 1, kind, square);
  if (IsCapture(undo.move)) undo.move = WithCaptured(undo.move, kind);
  undo.captured = 1;
  undo.capturedKind = static_cast<std::uint8_t>(kind);
}

// Takes the enemy piece off the square that the move goes to. A move from text
// may also end on an own piece or a king, and castling on anything; then
// nothing is taken, and two pieces share the square.
void CaptureOnTarget(Board& board, UndoRecord& undo, bool castles, int to) {
  const int enemy = board.sideToMove ^ 1;
  if ((board.sideOccupancyNoKing[enemy] & Bit(to)) == 0 || castles) {
    board.hasOverlaps = true;
    return;
  }
  CapturePiece(board, undo, PieceOn(board, to, enemy), to);
}

// The rook's part of castling. A move from text may castle without a rook, or
// put the rook on an occupied square: on a piece of another kind it shares the
// square, on another rook it stays in its corner.
void CastleRook(Board& board, UndoRecord& undo, int from, int to) {
  const int side = board.sideToMove;
  const bool isLong = FileOf(from) > FileOf(to);
  const int rookFrom = SquareAt(RankOf(from), isLong ? fileA : fileH);
  const int rookTo = SquareAt(RankOf(from), isLong ? fileD : fileF);
  (isLong ? undo.castledLong : undo.castledShort) = 1;
  const bool hasRook = HasPiece(board, side, rook, rookFrom);
  if (!hasRook || (board.occupied & Bit(rookTo)) != 0) board.hasOverlaps = true;
  if (!hasRook || HasPiece(board, side, rook, rookTo)) return;
  TogglePiece(board, side, rook, rookFrom);
  TogglePiece(board, side, rook, rookTo);
}

// Both rights are gone after any king's move.
void UpdateKingRights(Board& board, bool castles) {
  const int side = board.sideToMove;
  CastlingFlags& flags = board.castling;
  RemoveCastlingKeys(board, side);
  flags.kingMoved[side] = 1;
  if (!castles) return;
  flags.hasCastled[side] = 1;
  flags.queenRookMoved[side] = 1;
  flags.kingRookMoved[side] = 1;
}

// An older square that a double step does not replace stays, here and after an
// en-passant capture, until the next other move.
void UpdateEnPassant(Board& board, int kind, int from, int to, bool tookEnPassant) {
  if (kind == pawn && IsDoubleStep(from, to)) {
    SetEnPassantAfterDoubleStep(board, board.sideToMove, from, to);
  } else if (!tookEnPassant) {
    RemoveEnPassant(board);
  }
}

}  // namespace

// ---------------------------------------------------------- the general way

void MakeAnyMove(Board& board, Move move) {
  const int side = board.sideToMove;
  const int from = FromSquare(move);
  const int to = ToSquare(move);
  const int kind = KindThatMoves(board, move);
  if (kind == noPiece) return PassTurnInGame(board);
  const int landedKind = kind == pawn && IsPromotion(move) ? PromotionKind(move) : kind;
  const bool castles = IsCastling(kind, from, to);
  const bool takesEnPassant = IsEnPassantCapture(board, kind, from, to);
  UndoRecord& undo = FillUndoRecord(board, move, UnmakeAnyMove);
  undo.capturedKind = pawn;

  // 1. Remove what the move takes.
  if (takesEnPassant) {
    CapturePiece(board, undo, pawn, to + (side == white ? -8 : 8));
    undo.epCapture = 1;
  } else if ((board.occupied & Bit(to)) != 0) {
    CaptureOnTarget(board, undo, castles, to);
  }

  // 2. Move the piece, and the rook when castling. A piece that a move from text
  // puts on an own one of its kind becomes one with it; where it also takes a
  // piece there, both leave the board, so that the move can be unmade.
  TogglePiece(board, side, kind, from);
  if (!HasPiece(board, side, landedKind, to) || undo.captured != 0) {
    TogglePiece(board, side, landedKind, to);
  }
  if (castles) CastleRook(board, undo, from, to);

  // 3. The king's square, castling rights and the en-passant square.
  if (kind == king) {
    LocateKing(board, side);
    UpdateKingRights(board, castles);
  }
  if (kind == rook) UpdateRookRights(board, side, from);
  UpdateEnPassant(board, kind, from, to, takesEnPassant);

  // 4. Sets that overlapping pieces spoil.
  if (board.hasOverlaps) {
    RebuildOccupancy(board);
    RebuildRotated(board);
  }

  // 5. The turn and the history.
  ++board.plyCount;
  ++board.undoDepth;
  PassTurn(board);
  if (kind != pawn && undo.captured == 0) KeyHistory[++board.historyIndex] = board.positionKey;
}

void UnmakeAnyMove(Board& board, const UndoRecord& undo) {
  const int side = board.sideToMove ^ 1;
  const Move move = undo.move;
  const int from = FromSquare(move);
  const int to = ToSquare(move);
  const int kind = MovingKind(move);
  const int landedKind = kind == pawn && IsPromotion(move) ? PromotionKind(move) : kind;
  assert(kind < nKinds);

  // 1. The pieces. Keys and views are toggled along, and restored below.
  TogglePiece(board, side, landedKind, to);
  TogglePiece(board, side, kind, from);
  if (undo.castledShort != 0 || undo.castledLong != 0) {
    const bool isLong = undo.castledLong != 0;
    TogglePiece(board, side, rook, SquareAt(RankOf(from), isLong ? fileD : fileF));
    TogglePiece(board, side, rook, SquareAt(RankOf(from), isLong ? fileA : fileH));
  }
  if (IsCapture(move)) {
    const int square = undo.epCapture != 0 ? SquareAt(RankOf(from), FileOf(to)) : to;
    TogglePiece(board, side ^ 1, CapturedKind(move), square);
  } else if (kind != pawn) {
    --board.historyIndex;
  }
  if (kind == king) LocateKing(board, side);

  // 2. Everything else.
  RestoreState(board, undo, side);
  if (board.hasOverlaps) RebuildOccupancy(board);
}

// ----------------------------------------------------------------- any move

namespace {

template <int side, int kind>
constexpr MakeFunction Fast = MakeMoveFast<side, kind, MakeAnyMove>;

// By side to move and moving kind. Words of no kind and of a kind to be looked
// up go the general way.
constexpr MakeFunction makeFunctions[nSides][8] = {
    {Fast<white, pawn>, Fast<white, knight>, Fast<white, bishop>, Fast<white, rook>,
     Fast<white, queen>, Fast<white, king>, MakeAnyMove, MakeAnyMove},
    {Fast<black, pawn>, Fast<black, knight>, Fast<black, bishop>, Fast<black, rook>,
     Fast<black, queen>, Fast<black, king>, MakeAnyMove, MakeAnyMove}};
static_assert(unknownKind == 7);

[[gnu::noinline]] void TrimAndMakeMove(Board& board, Move move) {
  TrimGameHistory(board);
  makeFunctions[board.sideToMove][MovingKind(move)](board, move);
}

}  // namespace

void MakeMove(Board& board, Move move) {
  if (board.undoDepth >= undoCapacity || board.historyIndex >= keyHistoryCapacity - 1)
      [[unlikely]] {
    return TrimAndMakeMove(board, move);
  }
  makeFunctions[board.sideToMove][MovingKind(move)](board, move);
}

// ------------------------------------------------- en passant and null moves

bool EnPassantAvailable(const Board& board) {
  if (board.epFile > 7 || board.epRank > 7 || board.epColour > black) return false;
  const int square = SquareAt(board.epRank, board.epFile);
  const int victim = square + (board.epColour == white ? 8 : -8);
  if (victim < 0 || victim >= nSquares || (board.occupied & Bit(square)) != 0) return false;
  if ((board.pieces[PieceIndex(board.epColour, pawn)] & Bit(victim)) == 0) return false;
  if (board.undoDepth == 0) return true;
  const Move last = board.undoStack[board.undoDepth - 1].move;
  return ToSquare(last) == victim && MovingKind(last) == pawn &&
         std::abs(FromSquare(last) - victim) == 16;
}

void MakeNullMove(Board& board) {
  ++board.plyCount;
  board.nullMoveMade = 1;
  PassTurn(board);
}

void UnmakeNullMove(Board& board) {
  --board.plyCount;
  board.nullMoveMade = 0;
  PassTurn(board);
}

void PassTurn(Board& board) {
  board.sideToMove ^= 1;
  board.positionKey ^= SideKey();
  board.inCheckCache = -1;
}

void PassTurnInGame(Board& board) {
  RemoveEnPassant(board);
  PassTurn(board);
  board.turnPassed = true;
}

bool TakesEnPassantAfterSetUp(const Board& board, Move move) {
  if (board.plyCount != 0 || board.turnPassed || HasEnPassant(board)) return false;
  const int side = board.sideToMove;
  const int from = FromSquare(move);
  const int to = ToSquare(move);
  const int fifthRank = RelativeRank(side, rank5);
  const int sixthRank = RelativeRank(side, rank6);
  const Bitboard beside = Bit(SquareAt(RankOf(from), FileOf(to)));
  return MovingKind(move) == pawn && RankOf(from) == fifthRank && RankOf(to) == sixthRank &&
         std::abs(FileOf(from) - FileOf(to)) == 1 && (board.occupied & Bit(to)) == 0 &&
         (board.pieces[PieceIndex(side ^ 1, pawn)] & beside) != 0;
}

void MakeTextMove(Board& board, Move move) {
  if (!TakesEnPassantAfterSetUp(board, move)) return MakeMove(board, move);
  const int to = ToSquare(move);
  board.epFile = static_cast<std::uint8_t>(FileOf(to));
  board.epRank = static_cast<std::uint8_t>(RankOf(to));
  board.epColour = board.sideToMove ^ 1;
  board.positionKey ^= EnPassantKey(board.epFile);
  MakeMove(board, move);
  RemoveEnPassant(board);
}

}  // namespace mirvo
