#include "protocol/position_line.h"

#include "board/square_sets.h"
#include "shell/base/output.h"

namespace mirvo {
namespace {

/// Letters of the pieces on the square: one, none if it is empty, or several if text
/// input has put several there.
char* WriteSquare(const Board& board, int square, char* out) {
  for (int piece = 0; piece < nPieces; ++piece) {
    if ((board.pieces[piece] & Bit(square)) != 0) *out++ = pieceLetters[piece];
  }
  return out;
}

char* WriteRank(const Board& board, int rank, char* out) {
  int nEmpty = 0;
  for (int file = fileA; file <= fileH; ++file) {
    const int square = SquareAt(rank, file);
    const bool isEmpty = (board.occupied & Bit(square)) == 0;
    if (!isEmpty && nEmpty > 0) *out++ = static_cast<char>('0' + nEmpty);
    nEmpty = isEmpty ? nEmpty + 1 : 0;
    out = WriteSquare(board, square, out);
  }
  if (nEmpty > 0) *out++ = static_cast<char>('0' + nEmpty);
  return out;
}

/// Whether the king and the rook of one wing are on their home squares: the capture
/// of a rook on its corner does not change the flags.
bool RookAndKingAtHome(const Board& board, int side, int rookFile) {
  const int rank = RelativeRank(side, rank1);
  const Bitboard rooks = board.pieces[PieceIndex(side, rook)];
  const Bitboard kings = board.pieces[PieceIndex(side, king)];
  return (rooks & Bit(SquareAt(rank, rookFile))) != 0 && (kings & Bit(SquareAt(rank, fileE))) != 0;
}

/// Castling rights: neither king nor rook has moved, the side has not castled, and both
/// are at home.
char* WriteCastling(const Board& board, char* out) {
  const CastlingFlags& castling = board.castling;
  const char* const first = out;
  for (int side = white; side <= black; ++side) {
    if (castling.hasCastled[side] != 0 || castling.kingMoved[side] != 0) continue;
    if (castling.kingRookMoved[side] == 0 && RookAndKingAtHome(board, side, fileH)) {
      *out++ = side == white ? 'K' : 'k';
    }
    if (castling.queenRookMoved[side] == 0 && RookAndKingAtHome(board, side, fileA)) {
      *out++ = side == white ? 'Q' : 'q';
    }
  }
  if (out == first) *out++ = '-';
  return out;
}

}  // namespace

void FormatPositionLine(const Board& board, char* text) {
  char* out = text;
  for (int rank = rank8; rank >= rank1; --rank) {
    out = WriteRank(board, rank, out);
    if (rank > rank1) *out++ = '/';
  }
  *out++ = ' ';
  *out++ = board.sideToMove == white ? 'w' : 'b';
  *out++ = ' ';
  out = WriteCastling(board, out);
  for (const char* tail = " -\n"; *tail != 0; ++tail) *out++ = *tail;
  *out = 0;
}

void PrintPositionLine(const Board& board) {
  char text[positionLineCapacity];
  FormatPositionLine(board, text);
  Output(output, "%s", text);
}

}  // namespace mirvo
