#include "board/keys.h"

#include "board/bits.h"
#include "board/board.h"

namespace mirvo {

constinit std::uint64_t KeyHistory[keyHistoryCapacity] = {};

namespace {

std::uint64_t CastlingKeys(const Board& board, int side) {
  if (board.castling.kingMoved[side] != 0) return 0;
  std::uint64_t key = 0;
  if (board.castling.queenRookMoved[side] == 0) key ^= LongCastlingKey(side);
  if (board.castling.kingRookMoved[side] == 0) key ^= ShortCastlingKey(side);
  return key;
}

}  // namespace

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

bool IsRepetition(const Board& board) {
  int nOccurrences = 0;
  for (int i = 0; i <= board.historyIndex; ++i) {
    nOccurrences += KeyHistory[i] == board.positionKey ? 1 : 0;
  }
  return nOccurrences == 2;
}

void StartKeyHistory(Board& board) {
  board.historyIndex = 0;
  board.positionKey = ComputeKey(board);
  KeyHistory[0] = board.positionKey;
}

}  // namespace mirvo
