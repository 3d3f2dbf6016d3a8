#include "board/board.h"

#include <algorithm>
#include <cstring>

#include "board/bits.h"
#include "board/keys.h"
#include "board/occupancy_maps.h"

namespace mirvo {

Board BoardPool[nBoards];

namespace {

constexpr std::uint64_t startPieces[nPieces] = {
    0x000000000000FF00ULL, 0x0000000000000042ULL, 0x0000000000000024ULL, 0x0000000000000081ULL,
    0x0000000000000008ULL, 0x0000000000000010ULL, 0x00FF000000000000ULL, 0x4200000000000000ULL,
    0x2400000000000000ULL, 0x8100000000000000ULL, 0x0800000000000000ULL, 0x1000000000000000ULL};

// Square of a side that has no king: the fields must name some square.
constexpr int missingKingSquare = 63;

std::uint64_t CastlingKeys(const Board& board, int side) {
  if (board.castling.kingMoved[side] != 0) return 0;
  std::uint64_t key = 0;
  if (board.castling.queenRookMoved[side] == 0) key ^= LongCastlingKey(side);
  if (board.castling.kingRookMoved[side] == 0) key ^= ShortCastlingKey(side);
  return key;
}

}  // namespace

Board::Board()
    : PositionState{},
      pieces{},
      kingFile{},
      kingRank{},
      sideToMove(white),
      historyIndex(0),
      undoStack{} {
  ClearEnPassant(*this);
  PlaceStartPosition(*this);
}

void ClearEnPassant(Board& board) {
  board.epRank = noEnPassant;
  board.epFile = noEnPassant;
  board.epColour = 255;
}

void ClearBoard(Board& board) {
  std::fill(std::begin(board.pieces), std::end(board.pieces), 0);
  board.castling = CastlingFlags{};
  board.plyCount = 0;
  board.nullMoveMade = 0;
  board.hasOverlaps = false;
  board.turnPassed = false;
  board.undoDepth = 0;
  board.inCheckCache = -1;
  RebuildOccupancy(board);
  RebuildRotated(board);
}

void PlaceStartPosition(Board& board) {
  ClearBoard(board);
  std::copy(std::begin(startPieces), std::end(startPieces), board.pieces);
  board.sideToMove = white;
  RebuildOccupancy(board);
  LocateKings(board);
  RebuildRotated(board);
  board.positionKey = ComputeKey(board);
}

std::uint64_t ComputeKey(const Board& board) {
  std::uint64_t key = 0;
  for (int side = 0; side < nSides; ++side) {
    for (int kind = 0; kind < nKinds; ++kind) {
      for (Bitboard set = board.pieces[PieceIndex(side, kind)]; set != 0;) {
        key ^= PieceKey(side, kind, PopHighest(set));
      }
    }
  }
  if (board.sideToMove == white) key ^= SideKey();
  key ^= CastlingKeys(board, white) ^ CastlingKeys(board, black);
  if (HasEnPassant(board)) key ^= EnPassantKey(board.epFile);
  return key;
}

std::uint64_t ComputePawnKey(const Board& board) {
  std::uint64_t key = 0;
  for (int side = 0; side < nSides; ++side) {
    for (Bitboard set = board.pieces[PieceIndex(side, pawn)]; set != 0;) {
      key ^= PieceKey(side, pawn, PopHighest(set));
    }
  }
  return key;
}

void RebuildOccupancy(Board& board) {
  for (int side = 0; side < nSides; ++side) {
    const Bitboard* own = PiecesOf(board, side);
    board.sideOccupancyNoKing[side] =
        own[pawn] | own[knight] | own[bishop] | own[rook] | own[queen];
    board.sideOccupancy[side] = board.sideOccupancyNoKing[side] | own[king];
  }
  board.occupied = board.sideOccupancy[white] | board.sideOccupancy[black];
  board.pawnKey = ComputePawnKey(board);
}

void RebuildRotated(Board& board) {
  board.occupiedRot90 = 0;
  board.occupiedDiagA1H8 = 0;
  board.occupiedDiagA8H1 = 0;
  for (Bitboard set = board.occupied; set != 0;) {
    const RotatedBits& bits = RotatedBitsOf[static_cast<std::size_t>(PopHighest(set))];
    board.occupiedRot90 |= bits.rot90;
    board.occupiedDiagA1H8 |= bits.diagA1H8;
    board.occupiedDiagA8H1 |= bits.diagA8H1;
  }
}

void LocateKing(Board& board, int side) {
  const Bitboard kings = board.pieces[PieceIndex(side, king)];
  const int square = kings != 0 ? HighestSquare(kings) : missingKingSquare;
  board.kingFile[side] = static_cast<std::uint8_t>(FileOf(square));
  board.kingRank[side] = static_cast<std::uint8_t>(RankOf(square));
}

void LocateKings(Board& board) {
  LocateKing(board, white);
  LocateKing(board, black);
}

void DetectOverlaps(Board& board) {
  Bitboard seen = 0;
  Bitboard shared = 0;
  for (const Bitboard set : board.pieces) {
    shared |= seen & set;
    seen |= set;
  }
  board.hasOverlaps = shared != 0;
}

void CopyBoard(Board& destination, const Board& source) {
  std::copy(std::begin(source.pieces), std::end(source.pieces), destination.pieces);
  std::copy(std::begin(source.kingFile), std::end(source.kingFile), destination.kingFile);
  std::copy(std::begin(source.kingRank), std::end(source.kingRank), destination.kingRank);
  destination.sideToMove = source.sideToMove;
  destination.castling = source.castling;
  destination.plyCount = source.plyCount;
  destination.epRank = source.epRank;
  destination.epFile = source.epFile;
  destination.epColour = source.epColour;
  destination.nullMoveMade = source.nullMoveMade;
  destination.hasOverlaps = source.hasOverlaps;
  destination.turnPassed = source.turnPassed;
  destination.undoDepth = source.undoDepth;
  destination.historyIndex = source.historyIndex;
  destination.inCheckCache = source.inCheckCache;
  std::copy(std::begin(source.undoStack), std::end(source.undoStack), destination.undoStack);
  RebuildOccupancy(destination);
  RebuildRotated(destination);
  destination.positionKey = ComputeKey(destination);
}

int PieceOn(const Board& board, int square, int side) {
  constexpr int order[nKinds] = {pawn, bishop, knight, rook, queen, king};
  const Bitboard bit = Bit(square & 63);
  for (const int kind : order) {
    if ((board.pieces[PieceIndex(side, kind)] & bit) != 0) return kind;
  }
  return noPiece;
}

}  // namespace mirvo
