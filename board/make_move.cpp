#include "board/make_move.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "board/bits.h"
#include "board/key_history.h"
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

// The four views taken two at a time: they lie next to each other on the board,
// in its records and in the table of their bits.
using ViewPair [[gnu::vector_size(16), gnu::may_alias]] = std::uint64_t;
static_assert(offsetof(PositionState, occupied) == 0 &&
              alignof(PositionState) % sizeof(ViewPair) == 0);
static_assert(offsetof(PositionState, occupiedDiagA8H1) == 2 * sizeof(ViewPair) - 8);
static_assert(sizeof(RotatedBits) == 2 * sizeof(ViewPair));

ViewPair* ViewPairsOf(PositionState& state) { return reinterpret_cast<ViewPair*>(&state); }
const ViewPair* ViewPairsOf(const RotatedBits& bits) {
  return reinterpret_cast<const ViewPair*>(&bits);
}

// Adds or removes a square in all four views.
void ToggleViews(Board& board, const RotatedBits& bits) {
  ViewPair* views = ViewPairsOf(board);
  views[0] ^= ViewPairsOf(bits)[0];
  views[1] ^= ViewPairsOf(bits)[1];
}

// The same for two squares that are not both in the views.
void ToggleViews(Board& board, const RotatedBits& one, const RotatedBits& other) {
  ViewPair* views = ViewPairsOf(board);
  views[0] ^= ViewPairsOf(one)[0] ^ ViewPairsOf(other)[0];
  views[1] ^= ViewPairsOf(one)[1] ^ ViewPairsOf(other)[1];
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

void PushRecord(const Board& board, UndoRecord& undo, Move move, MoveTaker takeBack) {
  static_cast<PositionState&>(undo) = board;
  undo.move = move;
  undo.takeBack = takeBack;
  undo.captured = 0;
  undo.castledShort = 0;
  undo.castledLong = 0;
  undo.epCapture = 0;
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

// Two ranks up or down.
bool IsDoubleStep(int from, int to) { return ((RankOf(to) - RankOf(from) + 2) & ~4) == 0; }

/// Whether an enemy pawn stands beside a double step's end, or on the far end
/// of the rank above or below: few double steps get that far.
template <int side>
bool MayRememberDoubleStep(const Board& board, Bitboard to) {
  return (board.pieces[PieceIndex(side ^ 1, pawn)] & (to << 1 | to >> 1)) != 0;
}

// All but the bitboards of pieces, the rooks of castling and the kings' squares.
template <int side>
void RestoreState(Board& board, const UndoRecord& undo) {
  static_cast<PositionState&>(board) = undo;
  --board.plyCount;
  board.sideToMove = side;
  board.inCheckCache = -1;
}

// Takes back any move.
template <int side>
void TakeBackMove(Board& board, const UndoRecord& undo) {
  constexpr int enemySide = side ^ 1;
  const Move move = undo.move;
  const int from = FromSquare(move);
  const int to = ToSquare(move);
  const int kind = MovingKind(move);
  const Bitboard fromTo = Bit(from) ^ Bit(to);
  std::uint64_t* own = board.pieces + side * nKinds;

  if (kind == pawn && IsPromotion(move)) {
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
  RestoreState<side>(board, undo);
  if (kind == king) {
    if ((undo.castledShort | undo.castledLong) != 0) TakeBackCastling(board, undo, side, from);
    LocateKing(board, side);
  }
  if (board.irregular != 0) RebuildOccupancy(board);
}

template <int side, int kind>
void TakeBackPiece(Board& board, const UndoRecord& undo) {
  const Bitboard fromTo = undo.fromTo;
  board.pieces[PieceIndex(side, kind)] ^= fromTo;
  board.sideOccupancy[side] ^= fromTo;
  if constexpr (kind != king) board.sideOccupancyNoKing[side] ^= fromTo;
  RestoreState<side>(board, undo);
  if constexpr (kind == king) LocateKing(board, side);
}

// Takes back a move that took nothing, nor promoted nor castled.
template <int side, int kind>
void TakeBackQuietMove(Board& board, const UndoRecord& undo) {
  if constexpr (kind != pawn) --board.historyIndex;
  TakeBackPiece<side, kind>(board, undo);
}

// Takes back a move that took what stood on its target and did not promote.
template <int side, int kind>
void TakeBackCapture(Board& board, const UndoRecord& undo) {
  constexpr int enemySide = side ^ 1;
  const Bitboard toBit = Bit(ToSquare(undo.move));
  board.pieces[PieceIndex(enemySide, undo.capturedKind)] ^= toBit;
  board.sideOccupancy[enemySide] ^= toBit;
  board.sideOccupancyNoKing[enemySide] ^= toBit;
  TakeBackPiece<side, kind>(board, undo);
}

// Any move of a kind of pieces. Compiled for each kind: with the kind known in
// every line of it, an average move takes half the work.
template <int side, int kind, bool promotes = false>
[[gnu::noinline]] void PlayMove(Board& board, Move move) {
  const int from = FromSquare(move);
  const int to = ToSquare(move);
  const RotatedBits& fromBits = RotatedOf(from);
  const RotatedBits& toBits = RotatedOf(to);
  const bool takes = (board.occupied & toBits.plain) != 0 ||
                     (kind == pawn && TakesEnPassant<side>(board, from, to));
  std::uint64_t* own = board.pieces + side * nKinds;
  UndoRecord& undo = board.undoStack[board.undoDepth];
  PushRecord(board, undo, move, TakeBackMove<side>);
  undo.capturedKind = pawn;
  const int landedKind = promotes ? PromotionKind(move) : kind;
  // The keys of both squares and of the other side's turn go in at once: every
  // change of the board's key waits for the one before.
  const std::uint64_t keys = PieceKey(side, kind, from) ^ PieceKey(side, landedKind, to);
  board.positionKey ^= keys ^ SideKey();

  // 1. Remove what stands on the target, and enter the move in the views.
  bool captured = false;
  if (takes) {
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
      const bool doubleStep = IsDoubleStep(from, to);
      keepsEnPassant = doubleStep || undo.epCapture != 0;
      if (doubleStep && MayRememberDoubleStep<side>(board, toBits.plain)) [[unlikely]] {
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
  board.sideToMove = side ^ 1;
  if (kind != pawn && !captured) KeyHistory[++board.historyIndex] = board.positionKey;
  board.inCheckCache = -1;
}

// Kind of the enemy piece on a square that holds exactly one and not the king.
// Looks at all of them instead of guessing: a wrong guess costs more.
int SoleVictimKind(const std::uint64_t* enemy, int square) {
  const std::uint64_t odd = (enemy[knight] | enemy[rook]) >> square & 1;
  const std::uint64_t twos = (enemy[bishop] | enemy[rook]) >> square & 1;
  const std::uint64_t queens = enemy[queen] >> square & 1;
  return static_cast<int>(odd | twos << 1 | queens << 2);
}
static_assert(pawn == 0 && knight == 1 && bishop == 2 && rook == 3 && queen == 4);

// What moves that neither castle nor promote have in common. `keys` are those
// of the piece on both squares.
template <int side, int kind>
void FinishPlainMove(Board& board, Bitboard fromTo, int from, std::uint64_t keys) {
  board.pieces[PieceIndex(side, kind)] ^= fromTo;
  board.sideOccupancy[side] ^= fromTo;
  if constexpr (kind != king) board.sideOccupancyNoKing[side] ^= fromTo;
  if constexpr (kind == pawn) board.pawnKey ^= keys;
  if constexpr (kind == rook) UpdateRookState(board, side, from);
  if constexpr (kind == king) {
    DropCastlingKeys(board, side);
    board.castling.kingMoved[side] = 1;
  }
  ++board.plyCount;
  ++board.undoDepth;
  board.sideToMove = side ^ 1;
  board.inCheckCache = -1;
}

// What most captures are: a piece takes another on its target, and nothing else
// changes. It finds out whether that is so before it changes anything, and
// calls nothing but in its last step, so no register is saved.
template <int side, int kind>
[[gnu::noinline]] void PlayCapture(Board& board, Move move) {
  constexpr int enemySide = side ^ 1;
  const int from = FromSquare(move);
  const int to = ToSquare(move);
  const RotatedBits& fromBits = RotatedOf(from);
  const Bitboard toBit = RotatedOf(to).plain;
  if ((board.sideOccupancyNoKing[enemySide] & toBit) == 0 || !IsCapture(move) ||
      HasEnPassant(board) || board.irregular != 0) [[unlikely]] {
    return PlayMove<side, kind>(board, move);
  }
  std::uint64_t* enemy = board.pieces + enemySide * nKinds;
  const int victim = SoleVictimKind(enemy, to);
  const Bitboard fromTo = fromBits.plain | toBit;
  UndoRecord& undo = board.undoStack[board.undoDepth];
  PushRecord(board, undo, WithCaptured(move, victim), TakeBackCapture<side, kind>);
  undo.fromTo = fromTo;
  undo.captured = 1;
  undo.capturedKind = static_cast<std::uint8_t>(victim);
  const std::uint64_t keys = PieceKey(side, kind, from) ^ PieceKey(side, kind, to);
  const std::uint64_t victimKey = PieceKey(enemySide, victim, to);
  board.positionKey ^= keys ^ victimKey ^ SideKey();
  board.pawnKey ^= victim == pawn ? victimKey : 0;
  enemy[victim] ^= toBit;
  board.sideOccupancy[enemySide] ^= toBit;
  board.sideOccupancyNoKing[enemySide] ^= toBit;
  ToggleViews(board, fromBits);
  FinishPlainMove<side, kind>(board, fromTo, from, keys);
  if constexpr (kind == king) LocateKing(board, side);
}

// The same for what most moves are: a piece goes to an empty square.
template <int side, int kind>
[[gnu::noinline]] void PlayQuietMove(Board& board, Move move) {
  const int from = FromSquare(move);
  const int to = ToSquare(move);
  const RotatedBits& fromBits = RotatedOf(from);
  const RotatedBits& toBits = RotatedOf(to);
  if constexpr (kind == pawn) {
    if (IsPromotion(move)) [[unlikely]]
      return PlayMove<side, pawn, true>(board, move);
  }
  if constexpr (kind == king) {
    if (std::abs(FileOf(from) - FileOf(to)) > 1) [[unlikely]]
      return PlayMove<side, king>(board, move);
  }
  if ((board.occupied & toBits.plain) != 0) return PlayCapture<side, kind>(board, move);
  if (HasEnPassant(board) || board.irregular != 0) [[unlikely]]
    return PlayMove<side, kind>(board, move);
  const Bitboard fromTo = fromBits.plain | toBits.plain;
  UndoRecord& undo = board.undoStack[board.undoDepth];
  PushRecord(board, undo, move, TakeBackQuietMove<side, kind>);
  undo.fromTo = fromTo;
  const std::uint64_t keys = PieceKey(side, kind, from) ^ PieceKey(side, kind, to);
  board.positionKey ^= keys ^ SideKey();
  ToggleViews(board, fromBits, toBits);
  FinishPlainMove<side, kind>(board, fromTo, from, keys);
  if constexpr (kind == pawn) {
    if (IsDoubleStep(from, to) && MayRememberDoubleStep<side>(board, toBits.plain)) [[unlikely]] {
      return RememberDoubleStep(board, side, from, to);
    }
  } else {
    KeyHistory[++board.historyIndex] = board.positionKey;
  }
  if constexpr (kind == king) LocateKing(board, side);
}

using MovePlayer = void (*)(Board& board, Move move);
extern const MovePlayer MovePlayers[nSides][8];

// A move word that does not say what moves.
void PlayUnknownKind(Board& board, Move move) {
  const int kind = PieceOn(board, FromSquare(move), board.sideToMove);
  if (kind == noPiece) return PassTurn(board);
  MovePlayers[board.sideToMove][kind](board, move);
}

void PlayNothing(Board& board, Move) { PassTurn(board); }

// By side to move and kind.
const MovePlayer MovePlayers[nSides][8] = {
    {PlayQuietMove<white, pawn>, PlayQuietMove<white, knight>, PlayQuietMove<white, bishop>,
     PlayQuietMove<white, rook>, PlayQuietMove<white, queen>, PlayQuietMove<white, king>,
     PlayNothing, PlayUnknownKind},
    {PlayQuietMove<black, pawn>, PlayQuietMove<black, knight>, PlayQuietMove<black, bishop>,
     PlayQuietMove<black, rook>, PlayQuietMove<black, queen>, PlayQuietMove<black, king>,
     PlayNothing, PlayUnknownKind}};
static_assert(unknownKind == 7);

[[gnu::noinline]] void TrimAndMakeMove(Board& board, Move move) {
  TrimGameHistory(board);
  MovePlayers[board.sideToMove][MovingKind(move)](board, move);
}

}  // namespace

void MakeMove(Board& board, Move move) {
  if (board.undoDepth >= undoCapacity || board.historyIndex >= keyHistoryCapacity - 1)
      [[unlikely]] {
    return TrimAndMakeMove(board, move);
  }
  MovePlayers[board.sideToMove][MovingKind(move)](board, move);
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
