#include "board/notation.h"

#include <cstdio>
#include <cstring>

#include "board/make_move.h"
#include "board/san.h"
#include "shell/base/output.h"
#include "shell/base/text.h"

namespace mirvo {
namespace {

// Letters of the kinds a pawn can become, by kind; others have none.
constexpr char promotionLetters[] = " nbrq   ";

// Square of two characters, masked to the board.
int SquareFromText(char file, char rank) { return ((file - 'a') + (rank - '1') * 8) & 63; }

Move PromotionFromLetter(char letter) {
  switch (letter) {
    case 'q':
    case 'Q':
      return PromotionBits(queen);
    case 'r':
    case 'R':
      return PromotionBits(rook);
    case 'b':
    case 'B':
      return PromotionBits(bishop);
    case 'n':
    case 'N':
      return PromotionBits(knight);
    default:
      return noMove;
  }
}

bool IsSquareText(const char* text) { return IsFileLetter(text[0]) && IsRankDigit(text[1]); }

}  // namespace

void MoveToCoordinates(Move move, char* text) {
  const int from = FromSquare(move);
  const int to = ToSquare(move);
  *text++ = FileLetter(from);
  *text++ = RankDigit(from);
  *text++ = FileLetter(to);
  *text++ = RankDigit(to);
  const char letter = promotionLetters[PromotionKind(move)];
  if (IsPromotion(move) && letter != ' ') *text++ = letter;
  *text = '\0';
}

void MoveToText(Move move, char* destination, bool algebraic, MoveTextMode mode, char* scratch) {
  if (mode == MoveTextMode::copyScratch) {
    if (destination != nullptr) CopyText(destination, moveTextCapacity, scratch);
    return;
  }
  if (mode == MoveTextMode::build && algebraic) {
    MoveToSan(move, scratch);
  } else {
    MoveToCoordinates(move, scratch);
  }
  if (destination == nullptr) {
    Output(output, "%s", scratch);
  } else {
    CopyText(destination, moveTextCapacity, scratch);
  }
}

Move MoveFromCoordinates(const char* text, const Board& board, int side) {
  char padded[6] = "a1a1";
  for (int i = 0; i < 5 && text[i] != '\0'; ++i) padded[i] = text[i];
  const int from = SquareFromText(padded[0], padded[1]);
  const int to = SquareFromText(padded[2], padded[3]);
  const int kind = PieceOn(board, from, side);
  return BuildMove(from, to, side, kind == noPiece ? unknownKind : kind) |
         PromotionFromLetter(padded[4]);
}

bool IsCoordinateMove(const char* text) { return IsSquareText(text) && IsSquareText(text + 2); }

Move PlayCoordinateMove(const char* text, Board& board, int trackedSide) {
  const bool isMove = IsCoordinateMove(text);
  const Move read = isMove ? MoveFromCoordinates(text, board, board.sideToMove) : noMove;
  if (!isMove || MovingKind(read) == unknownKind) {
    PassTurnInGame(board);
    return noMove;
  }
  constexpr Move colourBit = Move{1} << moveColourShift;
  const Move move = (read & ~colourBit) | (static_cast<Move>(trackedSide & 1) << moveColourShift);
  MakeTextMove(board, move);
  return move;
}

void ElapsedText(std::uint32_t milliseconds, char* text) {
  const std::uint32_t seconds = milliseconds / 1000;
  std::snprintf(text, moveTextCapacity, "%u:%u", seconds / 60, seconds % 60);
}

}  // namespace mirvo
