#include "board/make_move.h"

#include <cassert>
#include <cstdlib>

#include "board/bits.h"
#include "board/keys.h"
#include "board/occupancy_maps.h"

namespace mirvo {
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

namespace {

const RotatedBits& RotatedOf(int square) { return RotatedBitsOf[static_cast<std::size_t>(square)]; }

// Adds or removes a square in all four views; they lie next to each other on
// the board and in the table, so that the compiler can take them two at a time.
void ToggleViews(Board& board, const RotatedBits& bits) {
  board.occupied ^= bits.plain;
  board.occupiedRot90 ^= bits.rot90;
  board.occupiedDiagA1H8 ^= bits.diagA1H8;
  board.occupiedDiagA8H1 ^= bits.diagA8H1;
}

// The same for two squares that are not both in the views.
void ToggleViews(Board& board, const RotatedBits& one, const RotatedBits& other) {
  board.occupied ^= one.plain ^ other.plain;
  board.occupiedRot90 ^= one.rot90 ^ other.rot90;
  board.occupiedDiagA1H8 ^= one.diagA1H8 ^ other.diagA1H8;
  board.occupiedDiagA8H1 ^= one.diagA8H1 ^ other.diagA8H1;
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
  static_cast<PositionState&>(undo) = board;
  undo.move = move;
  undo.captured = 0;
  undo.castledShort = 0;
  undo.castledLong = 0;
  undo.epCapture = 0;
  undo.capturedKind = pawn;
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
[[gnu::noinline]] void CastleRook(Board& board, UndoRecord& undo, int side, int from, int to) {
  const bool isLong = FileOf(from) > FileOf(to);
  const int rookFrom = SquareAt(RankOf(from), isLong ? 0 : 7);
  const int rookTo = SquareAt(RankOf(from), isLong ? 3 : 5);
  (isLong ? undo.castledLong : undo.castledShort) = 1;
  std::uint64_t& rooks = board.pieces[PieceIndex(side, rook)];
  if (((board.occupied | Bit(to)) & Bit(rookTo)) != 0 || (rooks & Bit(rookFrom)) == 0) {
    board.irregular |= 1;
    if ((rooks & Bit(rookFrom)) == 0 || (rooks & Bit(rookTo)) != 0) return;
  }
  const Bitboard bits = Bit(rookFrom) | Bit(rookTo);
  rooks ^= bits;
  board.sideOccupancy[side] ^= bits;
  board.sideOccupancyNoKing[side] ^= bits;
  board.positionKey ^= PieceKey(side, rook, rookFrom) ^ PieceKey(side, rook, rookTo);
  ToggleViews(board, RotatedOf(rookFrom), RotatedOf(rookTo));
}

void TakeBackCastling(Board& board, const UndoRecord& undo, int side, int kingFrom) {
  const int rank = RankOf(kingFrom);
  const Bitboard rookBits = undo.castledShort != 0
                                ? Bit(SquareAt(rank, 7)) | Bit(SquareAt(rank, 5))
                                : Bit(SquareAt(rank, 0)) | Bit(SquareAt(rank, 3));
  board.pieces[PieceIndex(side, rook)] ^= rookBits;
  board.sideOccupancy[side] ^= rookBits;
  board.sideOccupancyNoKing[side] ^= rookBits;
}

[[gnu::noinline]] void UpdateKingState(Board& board, UndoRecord& undo, int side, int from, int to) {
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
constexpr std::uint8_t ontoOwnKindMark = 2;
[[gnu::noinline]] void SettleIrregularLanding(Board& board, int side, int kind, int to) {
  if ((board.irregular & ontoOwnKindMark) != 0) {
    board.irregular = 1;
    board.pieces[PieceIndex(side, kind)] |= Bit(to);
    board.positionKey ^= PieceKey(side, kind, to);
  }
  RebuildOccupancy(board);
  RebuildRotated(board);
}

// Takes the enemy piece off its square, with its keys. The views are the
// caller's: after a capture on the target the square stays occupied.
template <int enemySide>
void TakePiece(Board& board, UndoRecord& undo, int victim, int square) {
  const std::uint64_t key = PieceKey(enemySide, victim, square);
  board.pieces[PieceIndex(enemySide, victim)] ^= Bit(square);
  board.sideOccupancy[enemySide] ^= Bit(square);
  board.sideOccupancyNoKing[enemySide] ^= Bit(square);
  board.positionKey ^= key;
  if (victim == pawn) board.pawnKey ^= key;
  undo.captured = 1;
  undo.capturedKind = static_cast<std::uint8_t>(victim);
}

// Whether the pawn's move to an empty square takes en passant.
template <int side>
bool TakesEnPassant(const Board& board, int from, int to) {
  return HasEnPassant(board) && to == SquareAt(board.epRank & 7, board.epFile & 7) &&
         FileOf(from) != FileOf(to) && board.epColour == (side ^ 1) && EnPassantAvailable(board);
}

// Removes what the move meets on its target or takes in passing, and enters
// the move in the views. Returns whether it took a piece.
template <int side, int kind>
bool TakeVictim(Board& board, UndoRecord& undo, Move move, int landedKind) {
  constexpr int enemySide = side ^ 1;
  const int from = FromSquare(move);
  const int to = ToSquare(move);
  const Bitboard toBit = Bit(to);
  if ((board.occupied & toBit) == 0) {
    const int taken = to + (side == white ? -8 : 8);
    TakePiece<enemySide>(board, undo, pawn, taken);
    ToggleViews(board, RotatedOf(taken));
    ToggleViews(board, RotatedOf(from), RotatedOf(to));
    undo.epCapture = 1;
  } else if ((board.sideOccupancyNoKing[enemySide] & toBit) != 0 &&
             (kind != king || std::abs(FileOf(from) - FileOf(to)) <= 1)) [[likely]] {
    TakePiece<enemySide>(board, undo, VictimKind(board.pieces + enemySide * nKinds, toBit), to);
    ToggleViews(board, RotatedOf(from));
  } else {
    // A piece put down where it stood meets only itself.
    const Bitboard own = board.pieces[PieceIndex(side, landedKind)];
    const bool ontoOwnKind = (own & toBit) != 0 && (from != to || kind != landedKind);
    board.irregular |= ontoOwnKind ? ontoOwnKindMark : 1;
  }
  if (IsCapture(move)) undo.move = WithCaptured(move, undo.capturedKind);
  return undo.captured != 0;
}

// One text for all kinds of pieces, compiled for each: with the kind known in
// every line of it, an average move takes half the work. `takes` tells whether
// the target is occupied or the move takes en passant; a quiet move finds that
// out itself, before it changes anything.
template <int side, int kind, bool promotes = false, bool takes = false>
[[gnu::noinline]] void PlayMove(Board& board, Move move) {
  constexpr int enemySide = side ^ 1;
  const int from = FromSquare(move);
  const int to = ToSquare(move);
  const RotatedBits& fromBits = RotatedOf(from);
  const RotatedBits& toBits = RotatedOf(to);
  if constexpr (!takes) {
    if ((board.occupied & toBits.plain) != 0 ||
        (kind == pawn && TakesEnPassant<side>(board, from, to))) {
      return PlayMove<side, kind, promotes, true>(board, move);
    }
  }
  std::uint64_t* own = board.pieces + side * nKinds;
  UndoRecord& undo = board.undoStack[board.undoDepth];
  PushRecord(board, undo, move);
  const int landedKind = promotes ? PromotionKind(move) : kind;
  // The keys of both squares and of the other side's turn go in at once: every
  // change of the board's key waits for the one before.
  const std::uint64_t keys = PieceKey(side, kind, from) ^ PieceKey(side, landedKind, to);
  board.positionKey ^= keys ^ SideKey();

  // 1. Remove what stands on the target, and enter the move in the views.
  bool captured = false;
  if constexpr (takes) {
    captured = TakeVictim<side, kind>(board, undo, move, landedKind);
  } else {
    ToggleViews(board, fromBits, toBits);
  }

  // 2. Move the piece.
  const Bitboard fromTo = fromBits.plain | toBits.plain;
  if constexpr (promotes) {
    own[pawn] ^= fromBits.plain;
    own[landedKind] ^= toBits.plain;
  } else {
    own[kind] ^= fromBits.plain ^ toBits.plain;
  }
  board.sideOccupancy[side] ^= fromTo;

  // 3. Castling and en-passant state.
  if constexpr (kind == king) {
    UpdateKingState(board, undo, side, from, to);
  } else {
    board.sideOccupancyNoKing[side] ^= fromTo;
    if constexpr (kind == rook) UpdateRookState(board, side, from);
    bool keepsEnPassant = false;
    if constexpr (kind == pawn) {
      board.pawnKey ^= promotes ? PieceKey(side, pawn, from) : keys;
      // An older square that a double step does not replace stays, here and
      // after an en-passant capture, until the next other move.
      const bool doubleStep = std::abs(RankOf(from) - RankOf(to)) == 2;
      keepsEnPassant = doubleStep || (takes && undo.epCapture != 0);
      // Few double steps end beside an enemy pawn.
      const Bitboard beside = toBits.plain << 1 | toBits.plain >> 1;
      if (doubleStep && (board.pieces[PieceIndex(enemySide, pawn)] & beside) != 0) [[unlikely]] {
        RememberDoubleStep(board, side, from, to);
      }
    }
    if (!keepsEnPassant) ForgetEnPassant(board);
  }

  // 4. What text input may have done, and history.
  if (board.irregular != 0) [[unlikely]] {
    SettleIrregularLanding(board, side, landedKind, to);
    if (kind == king) LocateKing(board, side);
  }
  ++board.plyCount;
  ++board.undoDepth;
  board.sideToMove = enemySide;
  if (kind != pawn && !captured) KeyHistory[++board.historyIndex] = board.positionKey;
  board.inCheckCache = -1;
}

template <int side>
void PlayMove(Board& board, Move move) {
  int kind = MovingKind(move);
  if (kind == unknownKind) [[unlikely]] {
    kind = PieceOn(board, FromSquare(move), side);
  }
  switch (kind) {
    case pawn:
      if (IsPromotion(move)) [[unlikely]]
        return PlayMove<side, pawn, true>(board, move);
      return PlayMove<side, pawn>(board, move);
    case knight:
      return PlayMove<side, knight>(board, move);
    case bishop:
      return PlayMove<side, bishop>(board, move);
    case rook:
      return PlayMove<side, rook>(board, move);
    case queen:
      return PlayMove<side, queen>(board, move);
    case king:
      return PlayMove<side, king>(board, move);
    default:
      return PassTurn(board);
  }
}

// What few moves need when they are taken back, after all else.
template <int side>
[[gnu::noinline]] void TakeBackRest(Board& board, const UndoRecord& undo) {
  const Move move = undo.move;
  if (MovingKind(move) == king) {
    if ((undo.castledShort | undo.castledLong) != 0) {
      TakeBackCastling(board, undo, side, FromSquare(move));
    }
    LocateKing(board, side);
  }
  if (board.irregular != 0) RebuildOccupancy(board);
}

template <int side>
void TakeBackMove(Board& board) {
  constexpr int enemySide = side ^ 1;
  const UndoRecord& undo = board.undoStack[--board.undoDepth];
  const Move move = undo.move;
  const int from = FromSquare(move);
  const int to = ToSquare(move);
  const int kind = MovingKind(move);
  const Bitboard fromTo = Bit(from) ^ Bit(to);
  std::uint64_t* own = board.pieces + side * nKinds;

  if (kind == pawn && IsPromotion(move)) [[unlikely]] {
    own[pawn] ^= Bit(from);
    own[PromotionKind(move)] ^= Bit(to);
  } else {
    own[kind] ^= fromTo;
  }
  board.sideOccupancy[side] ^= fromTo;
  if (kind != king) board.sideOccupancyNoKing[side] ^= fromTo;

  if (IsCapture(move)) {
    const int square = undo.epCapture != 0 ? SquareAt(RankOf(from), FileOf(to)) : to;
    const Bitboard bit = Bit(square);
    board.pieces[PieceIndex(enemySide, CapturedKind(move))] ^= bit;
    board.sideOccupancy[enemySide] ^= bit;
    board.sideOccupancyNoKing[enemySide] ^= bit;
  } else if (kind != pawn) {
    --board.historyIndex;
  }
  static_cast<PositionState&>(board) = undo;
  --board.plyCount;
  board.sideToMove = side;
  board.inCheckCache = -1;
  if (kind == king || board.irregular != 0) [[unlikely]]
    TakeBackRest<side>(board, undo);
}

}  // namespace

void MakeMove(Board& board, Move move) {
  if (board.undoDepth >= undoCapacity || board.historyIndex >= keyHistoryCapacity - 1)
      [[unlikely]] {
    TrimGameHistory(board);
  }
  if (board.sideToMove == white) {
    PlayMove<white>(board, move);
  } else {
    PlayMove<black>(board, move);
  }
}

void UnmakeMove(Board& board) {
  assert(board.undoDepth > 0);
  if (board.sideToMove == black) {
    TakeBackMove<white>(board);
  } else {
    TakeBackMove<black>(board);
  }
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
