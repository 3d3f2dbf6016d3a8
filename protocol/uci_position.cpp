#include "protocol/uci_position.h"

#include <cstddef>

#include "board/fen.h"
#include "board/notation.h"
#include "shell/base/text.h"

namespace mirvo {
namespace {

constexpr char startWord[] = "startpos";
constexpr char fenWord[] = "fen";
constexpr char movesWord[] = "moves";

/// Characters of a move list; any other ends it.
bool IsListCharacter(char c) { return c >= 32 && c <= 122; }

/// Loads the first three fields and returns the text from "moves" on; counters
/// and the en-passant square are skipped.
const char* LoadFen(Board& board, const char* text) {
  char placement[fenWordCapacity];
  char side[fenWordCapacity];
  char castling[fenWordCapacity];
  text = ReadWord(text, placement, sizeof placement);
  text = ReadWord(text, side, sizeof side);
  text = ReadWord(text, castling, sizeof castling);
  BeginFromFen(placement, side, castling, board);

  char skipped[fenWordCapacity];
  text = SkipBlanks(text);
  while (*text != 0 && !StartsWith(text, movesWord)) {
    text = SkipBlanks(ReadWord(text, skipped, sizeof skipped));
  }
  return text;
}

const char* SkipSpaces(const char* text) {
  while (*text == ' ') ++text;
  return text;
}

/// Plays the moves of a list, the tracked side alternating with each.
void PlayMoves(UciSession& session, Board& board, const char* text) {
  for (text = SkipSpaces(text); IsListCharacter(*text); text = SkipSpaces(text)) {
    char token[moveTextCapacity];
    text = ReadWord(text, token, sizeof token);
    PlayCoordinateMove(token, board, session.UciSideToMove);
    session.UciSideToMove ^= 1;
  }
}

}  // namespace

void SetUpPosition(UciSession& session, Board& board, const char* text) {
  text = SkipBlanks(text);
  if (StartsWith(text, startWord)) {
    text += sizeof startWord - 1;
    BeginFromStart(board);
  } else if (StartsWith(text, fenWord)) {
    text = LoadFen(board, text + sizeof fenWord - 1);
  }
  session.UciSideToMove = white;
  text = SkipBlanks(text);
  if (StartsWith(text, movesWord)) PlayMoves(session, board, text + sizeof movesWord - 1);
}

}  // namespace mirvo
