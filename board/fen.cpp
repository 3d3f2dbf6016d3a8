#include "board/fen.h"

#include <cstring>

#include "board/key_history.h"
#include "shell/base/text.h"

namespace mirvo {

void PlacePieces(const char* word, Board& board) {
  int base = 64;
  // Unsigned, so that odd characters and endless words wrap instead of overflow.
  unsigned file = 0;
  for (; *word != '\0'; ++word) {
    const char* letter = std::strchr(pieceLetters, *word);
    if (letter != nullptr) {
      const auto square = static_cast<int>((static_cast<unsigned>(base - 8) + file) & 63U);
      board.pieces[letter - pieceLetters] |= Bit(square);
      ++file;
    } else if (*word == '/') {
      base -= 8;
      file = 0;
    } else {
      // A digit skips that many squares; any other character moves by its
      // distance from '0', without complaint.
      file += static_cast<unsigned>(*word - '0');
    }
  }
}

void ReadCastlingRights(const char* word, Board& board) {
  CastlingFlags& flags = board.castling;
  std::memset(&flags, 1, sizeof(flags));
  for (; *word != '\0'; ++word) {
    const int side = *word == 'k' || *word == 'q' ? black : white;
    if (*word == 'K' || *word == 'k') {
      flags.kingRookMoved[side] = 0;
    } else if (*word == 'Q' || *word == 'q') {
      flags.queenRookMoved[side] = 0;
    } else {
      continue;
    }
    flags.kingMoved[side] = 0;
    flags.hasCastled[side] = 0;
  }
}

void SetupFromFen(const char* placement, const char* side, const char* castling, Board& board) {
  char word[fenWordCapacity];
  ReadWord(placement, word, sizeof(word));
  ClearBoard(board);
  PlacePieces(word, board);
  board.sideToMove = static_cast<std::uint8_t>(*SkipBlanks(side) == 'b' ? black : white);
  ReadWord(castling, word, sizeof(word));
  ReadCastlingRights(word, board);
  LocateKings(board);
  RebuildOccupancy(board);
  RebuildRotated(board);
  DetectOverlaps(board);
}

void ResetToStart(Board& board) {
  PlaceStartPosition(board);
  StartKeyHistory(board);
}

void BeginFromFen(const char* placement, const char* side, const char* castling, Board& board) {
  BeginFromStart(board);
  SetupFromFen(placement, side, castling, board);
  StartKeyHistory(board);
}

void BeginFromStart(Board& board) {
  ClearEnPassant(board);
  ResetToStart(board);
}

}  // namespace mirvo
