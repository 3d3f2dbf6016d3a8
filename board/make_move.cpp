#include "board/make_move.h"

#include <cassert>
#include <cstdlib>

#include "board/bits.h"
#include "board/keys.h"
#include "board/occupancy_maps.h"

namespace mirvo {
namespace {

const RotatedBits& RotatedOf(int square) { return RotatedBitsOf[static_cast<std::size_t>(square)]; }

void ToggleRotated(Board& board, const RotatedBits& bits) {
  board.occupiedRot90 ^= bits.rot90;
  board.occupiedDiagA1H8 ^= bits.diagA1H8;
  board.occupiedDiagA8H1 ^= bits.diagA8H1;
}

// Kind of the enemy piece on a square that holds one. When text input has put
// several pieces there, the first in this order is the one taken.
int VictimKind(const std::uint64_t* enemy, Bitboard square) {
  if ((enemy[pawn] & square) != 0) return pawn;
  if ((enemy[bishop] & square) != 0) return bishop;
  if ((enemy[knight] & square) != 0) return knight;
  if ((enemy[rook] & square) != 0) return rook;
  return queen;
}

void ForgetEnPassant(Board& board) {
  if (!HasEnPassant(board)) return;
  board.positionKey ^= EnPassantKey(board.epFile);
  board.epRank = noEnPassant;
  board.epFile = noEnPassant;
}

void PushRecord(const Board& board, UndoRecord& undo, Move move) {
  undo.capturedKind = pawn;
  undo.epRank = board.epRank;
  undo.epFile = board.epFile;
  undo.epColour = board.epColour;
  undo.captured = 0;
  undo.castledShort = 0;
  undo.castledLong = 0;
  undo.epCapture = 0;
  undo.castling = board.castling;
  undo.positionKey = board.positionKey;
  undo.occupiedRot90 = board.occupiedRot90;
  undo.occupiedDiagA1H8 = board.occupiedDiagA1H8;
  undo.occupiedDiagA8H1 = board.occupiedDiagA8H1;
  undo.move = move;
}

// Takes the rights of a side that still has some out of the key.
void DropCastlingKeys(Board& board, int side) {
  if (board.castling.kingMoved[side] != 0) return;
  if (board.castling.queenRookMoved[side] == 0) board.positionKey ^= LongCastlingKey(side);
  if (board.castling.kingRookMoved[side] == 0) board.positionKey ^= ShortCastlingKey(side);
}

// The rook's part of castling; the king has its own. A text move may castle
// without a rook, or put the rook on an occupied square or on the king: then
// nothing is conjured up and the board counts as irregular.
void CastleRook(Board& board, UndoRecord& undo, int side, int from, int to) {
  const bool isLong = FileOf(from) > FileOf(to);
  const int rookFrom = SquareAt(RankOf(from), isLong ? 0 : 7);
  const int rookTo = SquareAt(RankOf(from), isLong ? 3 : 5);
  (isLong ? undo.castledLong : undo.castledShort) = 1;
  std::uint64_t& rooks = board.pieces[PieceIndex(side, rook)];
  if (((board.occupied | Bit(to)) & Bit(rookTo)) != 0 || (rooks & Bit(rookFrom)) == 0) {
    board.irregular = 1;
    if ((rooks & Bit(rookFrom)) == 0 || (rooks & Bit(rookTo)) != 0) return;
  }
  const Bitboard bits = Bit(rookFrom) | Bit(rookTo);
  rooks ^= bits;
  board.sideOccupancy[side] ^= bits;
  board.sideOccupancyNoKing[side] ^= bits;
  board.positionKey ^= PieceKey(side, rook, rookFrom) ^ PieceKey(side, rook, rookTo);
  ToggleRotated(board, RotatedOf(rookFrom));
  ToggleRotated(board, RotatedOf(rookTo));
}

void UpdateKingState(Board& board, UndoRecord& undo, int side, int from, int to) {
  if (std::abs(FileOf(from) - FileOf(to)) > 1) {
    CastleRook(board, undo, side, from, to);
    DropCastlingKeys(board, side);
    board.castling.hasCastled[side] = 1;
    board.castling.queenRookMoved[side] = 1;
    board.castling.kingRookMoved[side] = 1;
  } else {
    DropCastlingKeys(board, side);
  }
  board.castling.kingMoved[side] = 1;
  ForgetEnPassant(board);
  LocateKing(board, side);
}

// A double step is remembered only where an enemy pawn stands beside it, so
// the key carries en passant exactly where such a capture is conceivable.
void RememberDoubleStep(Board& board, int side, int from, int to) {
  const Bitboard enemyPawns = board.pieces[PieceIndex(side ^ 1, pawn)];
  Bitboard beside = 0;
  if (FileOf(from) > 0) beside |= Bit(to) >> 1;
  if (FileOf(from) < 7) beside |= Bit(to) << 1;
  beside &= 0xFFULL << (8 * RankOf(to));
  if ((enemyPawns & beside) == 0) return;
  if (HasEnPassant(board)) board.positionKey ^= EnPassantKey(board.epFile);
  board.positionKey ^= EnPassantKey(FileOf(from));
  board.epFile = static_cast<std::uint8_t>(FileOf(from));
  board.epRank = static_cast<std::uint8_t>(RankOf(from) + (side == white ? 1 : -1));
  board.epColour = static_cast<std::uint8_t>(side);
}

// A rook that leaves its corner takes that side's right with it. A rook that
// is captured there does not: the right stays in flags and key, and castling
// fails because no rook stands on the corner.
void UpdateRookState(Board& board, int side, int from) {
  const int corner = side == white ? 0 : 56;
  CastlingFlags& flags = board.castling;
  if (from == corner && flags.queenRookMoved[side] == 0) {
    if (flags.kingMoved[side] == 0) board.positionKey ^= LongCastlingKey(side);
    flags.queenRookMoved[side] = 1;
  } else if (from == corner + 7 && flags.kingRookMoved[side] == 0) {
    if (flags.kingMoved[side] == 0) board.positionKey ^= ShortCastlingKey(side);
    flags.kingRookMoved[side] = 1;
  }
}

// What a move from text does when it ends on an own piece or on a king, which
// no generated move does: the piece lands beside what is there; on a piece of
// its own kind the two become one.
void SettleIrregularLanding(Board& board, int side, int kind, int to, bool ontoOwnKind) {
  if (ontoOwnKind) {
    board.pieces[PieceIndex(side, kind)] |= Bit(to);
    board.positionKey ^= PieceKey(side, kind, to);
  }
  RebuildOccupancy(board);
  RebuildRotated(board);
}

}  // namespace

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

void MakeMove(Board& board, Move move) {
  if (board.undoDepth >= undoCapacity || board.historyIndex >= keyHistoryCapacity - 1)
      [[unlikely]] {
    TrimGameHistory(board);
  }
  const int side = board.sideToMove;
  const int enemySide = side ^ 1;
  const int from = FromSquare(move);
  const int to = ToSquare(move);
  const Bitboard toBit = Bit(to);
  const Bitboard fromTo = Bit(from) | toBit;
  std::uint64_t* own = board.pieces + side * nKinds;
  std::uint64_t* enemy = board.pieces + enemySide * nKinds;

  int kind = MovingKind(move);
  if (kind == unknownKind) [[unlikely]] {
    kind = PieceOn(board, from, side);
    if (kind == noPiece) {
      PassTurn(board);
      return;
    }
  }
  assert(kind < nKinds);

  UndoRecord& undo = board.undoStack[board.undoDepth];
  PushRecord(board, undo, move);
  const bool promotes = kind == pawn && IsPromotion(move);
  const int landedKind = promotes ? PromotionKind(move) : kind;
  bool ontoOwnKind = false;
  bool enPassant = false;

  // 1. Remove what stands on the target.
  if ((board.occupied & toBit) != 0) {
    if ((board.sideOccupancyNoKing[enemySide] & toBit) != 0 &&
        (kind != king || std::abs(FileOf(from) - FileOf(to)) <= 1)) {
      const int victim = VictimKind(enemy, toBit);
      enemy[victim] ^= toBit;
      board.sideOccupancy[enemySide] ^= toBit;
      board.sideOccupancyNoKing[enemySide] ^= toBit;
      board.positionKey ^= PieceKey(enemySide, victim, to);
      undo.captured = 1;
      undo.capturedKind = victim;
    } else {
      board.irregular = 1;
      // A piece put down where it stood meets only itself.
      ontoOwnKind = (own[landedKind] & toBit) != 0 && (from != to || kind != landedKind);
    }
  } else if (kind == pawn && HasEnPassant(board) &&
             to == SquareAt(board.epRank & 7, board.epFile & 7) && FileOf(from) != FileOf(to) &&
             board.epColour == enemySide && EnPassantAvailable(board)) {
    const int taken = to + (side == white ? -8 : 8);
    enemy[pawn] ^= Bit(taken);
    board.sideOccupancy[enemySide] ^= Bit(taken);
    board.sideOccupancyNoKing[enemySide] ^= Bit(taken);
    board.positionKey ^= PieceKey(enemySide, pawn, taken);
    ToggleRotated(board, RotatedOf(taken));
    undo.captured = 1;
    undo.epCapture = 1;
    undo.capturedKind = pawn;
    enPassant = true;
  }
  if (IsCapture(move)) undo.move = WithCaptured(move, undo.capturedKind);

  // 2. Move the piece.
  own[kind] ^= Bit(from);
  own[landedKind] ^= toBit;
  board.positionKey ^= PieceKey(side, kind, from) ^ PieceKey(side, landedKind, to);
  board.sideOccupancy[side] ^= fromTo;
  ToggleRotated(board, RotatedOf(from));
  if (undo.captured == 0 || enPassant) ToggleRotated(board, RotatedOf(to));

  // 3. Castling and en-passant state.
  if (kind == king) {
    UpdateKingState(board, undo, side, from, to);
  } else {
    board.sideOccupancyNoKing[side] ^= fromTo;
    const bool doubleStep = kind == pawn && std::abs(RankOf(from) - RankOf(to)) == 2;
    if (doubleStep) {
      // An older square that this step does not replace stays, here and after
      // an en-passant capture, until the next other move.
      RememberDoubleStep(board, side, from, to);
    } else {
      if (kind == rook) UpdateRookState(board, side, from);
      if (!enPassant) ForgetEnPassant(board);
    }
  }

  // 4. Derived fields and history.
  if (board.irregular != 0) [[unlikely]] {
    SettleIrregularLanding(board, side, landedKind, to, ontoOwnKind);
    if (kind == king) LocateKing(board, side);
  } else {
    board.occupied = board.sideOccupancy[white] | board.sideOccupancy[black];
  }
  ++board.plyCount;
  ++board.undoDepth;
  board.sideToMove = static_cast<std::uint8_t>(enemySide);
  board.positionKey ^= SideKey();
  if (undo.captured == 0 && kind != pawn) {
    KeyHistory[++board.historyIndex] = board.positionKey;
  }
  board.inCheckCache = -1;
}

void UnmakeMove(Board& board) {
  assert(board.undoDepth > 0);
  const UndoRecord& undo = board.undoStack[--board.undoDepth];
  const Move move = undo.move;
  const int side = board.sideToMove ^ 1;
  const int enemySide = side ^ 1;
  const int from = FromSquare(move);
  const int to = ToSquare(move);
  const int kind = MovingKind(move);
  const int landedKind = kind == pawn && IsPromotion(move) ? PromotionKind(move) : kind;
  const Bitboard fromTo = Bit(from) | Bit(to);
  std::uint64_t* own = board.pieces + side * nKinds;

  own[landedKind] ^= Bit(to);
  own[kind] ^= Bit(from);
  board.sideOccupancy[side] ^= fromTo;
  if (kind != king) board.sideOccupancyNoKing[side] ^= fromTo;

  if (IsCapture(move)) {
    const int square = undo.epCapture != 0 ? SquareAt(RankOf(from), FileOf(to)) : to;
    const Bitboard bit = Bit(square);
    board.pieces[PieceIndex(enemySide, CapturedKind(move))] ^= bit;
    board.sideOccupancy[enemySide] ^= bit;
    board.sideOccupancyNoKing[enemySide] ^= bit;
  } else {
    if ((undo.castledShort | undo.castledLong) != 0) {
      const int rank = RankOf(from);
      const Bitboard rookBits = undo.castledShort != 0
                                    ? Bit(SquareAt(rank, 7)) | Bit(SquareAt(rank, 5))
                                    : Bit(SquareAt(rank, 0)) | Bit(SquareAt(rank, 3));
      own[rook] ^= rookBits;
      board.sideOccupancy[side] ^= rookBits;
      board.sideOccupancyNoKing[side] ^= rookBits;
    }
    if (kind != pawn) --board.historyIndex;
  }
  if (kind == king) LocateKing(board, side);

  board.castling = undo.castling;
  board.epRank = undo.epRank;
  board.epFile = undo.epFile;
  board.epColour = undo.epColour;
  board.positionKey = undo.positionKey;
  board.occupiedRot90 = undo.occupiedRot90;
  board.occupiedDiagA1H8 = undo.occupiedDiagA1H8;
  board.occupiedDiagA8H1 = undo.occupiedDiagA8H1;
  if (board.irregular != 0) [[unlikely]] {
    RebuildOccupancy(board);
  } else {
    board.occupied = board.sideOccupancy[white] | board.sideOccupancy[black];
  }
  --board.plyCount;
  board.sideToMove = static_cast<std::uint8_t>(side);
  board.inCheckCache = -1;
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

}  // namespace mirvo
