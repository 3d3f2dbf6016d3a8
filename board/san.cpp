#include "board/san.h"

#include <cstring>

#include "board/coding.h"

namespace mirvo {
namespace {

// Kind of a piece letter, or noPiece; pawns have none.
int KindOfLetter(char c) {
  for (int kind = knight; kind <= king; ++kind) {
    if (pieceLetters[kind] == c) return kind;
  }
  return noPiece;
}

constexpr Move ToFileBits(char c) { return static_cast<Move>(c - 'a') << moveToShift; }
constexpr Move ToRankBits(char c) { return static_cast<Move>(c - '1') << (moveToShift + 3); }
constexpr Move toFileMask = Move{7} << moveToShift;
constexpr Move toRankMask = Move{7} << (moveToShift + 3);
constexpr Move fromFileMask = Move{7};
constexpr Move fromRankMask = Move{7} << 3;

// One algebraic text being read.
struct SanReader {
  const char* text;
  std::size_t length;
  std::size_t at = 0;
  bool inDestination = false;
  bool done = false;
  Move move = noMove;

  char Peek(std::size_t ahead) const { return at + ahead < length ? text[at + ahead] : '\0'; }

  void SetFromFile(char c) {
    move = (move & ~fromFileMask) | static_cast<Move>(c - 'a') | sanFileMark;
  }
  void SetFromRank(char c) { move = (move & ~fromRankMask) | (static_cast<Move>(c - '1') << 3); }
};

/// How a capture en passant is noted, the longest text first.
constexpr std::string_view enPassantNotes[] = {"e.p.", "e.p", "ep"};

/// The word without characters of `marks` at its end.
std::string_view WithoutFinal(std::string_view word, const char* marks) {
  return word.substr(0, word.find_last_not_of(marks) + 1);
}

/// Whether a note may follow: a whole move ends with its rank or a check sign.
bool EndsLikeAMove(std::string_view text) {
  return IsRankDigit(text.back()) || text.back() == '+' || text.back() == '#';
}

void Replace(Move& move, Move mask, Move bits) { move = (move & ~mask) | bits; }

// "O-O" is three characters; any longer text reads as long castling, "O-O+" too:
// a choice of this reader that is kept.
void ReadCastling(SanReader& reader, int side) {
  const int file = reader.length == 3 ? fileG : fileC;
  const int to = SquareAt(side == black ? rank8 : rank1, file);
  reader.move = BuildMove(0, to, 0, king);
  reader.done = true;
}

// The piece letter, then the file or rank that distinguishes two such pieces,
// which short forms ("Nf3", "Nf3+") do not have. The rest is the destination.
void ReadPieceLetter(SanReader& reader, int kind) {
  Replace(reader.move, Move{7} << moveKindShift, static_cast<Move>(kind) << moveKindShift);
  ++reader.at;
  reader.inDestination = true;
  const char last = reader.text[reader.length - 1];
  if (reader.length == 3 || (reader.length == 4 && (last == '+' || last == '#'))) return;
  const char next = reader.Peek(0);
  if (IsFileLetter(next)) {
    reader.SetFromFile(next);
    ++reader.at;
  } else if (IsRankDigit(next)) {
    reader.SetFromRank(next);
    ++reader.at;
  }
}

// A pawn move: "exd5" goes on at the "x", "e4+" and "e8=Q" are destinations,
// "e4xd5" names the from-square in full.
void ReadPawnFile(SanReader& reader) {
  const char second = reader.Peek(1);
  const char third = reader.Peek(2);
  if (second == 'x') {
    ++reader.at;
    reader.inDestination = true;
  } else if (third == 'x') {
    reader.SetFromFile(reader.Peek(0));
    ++reader.at;
  } else {
    reader.inDestination = true;
  }
}

void ReadPieceCharacter(SanReader& reader, int side) {
  const char c = reader.Peek(0);
  const int kind = KindOfLetter(c);
  if (c == 'O') {
    ReadCastling(reader, side);
  } else if (kind != noPiece) {
    ReadPieceLetter(reader, kind);
  } else if (IsFileLetter(c) && reader.at == 0) {
    ReadPawnFile(reader);
  } else {
    if (IsFileLetter(c)) reader.SetFromFile(c);
    if (IsRankDigit(c)) reader.SetFromRank(c);
    if (c == 'x') reader.move |= captureFlag;
    if (c == '+') reader.move |= checkMark;
    reader.inDestination = c == 'x' || c == '=' || c == '+';
    ++reader.at;
  }
}

void ReadDestinationCharacter(SanReader& reader) {
  const char c = reader.Peek(0);
  if (IsFileLetter(c)) Replace(reader.move, toFileMask, ToFileBits(c));
  if (IsRankDigit(c)) Replace(reader.move, toRankMask, ToRankBits(c));
  if (c == '+') {
    reader.move |= checkMark;
    reader.done = true;
  }
  ++reader.at;
}

}  // namespace

void MoveToSan(Move move, char* text) {
  const int kind = MovingKind(move);
  const int from = FromSquare(move);
  const int to = ToSquare(move);
  const int fileStep = FileOf(from) - FileOf(to);
  if (kind == king && (fileStep == 2 || fileStep == -2)) {
    for (const char* castling = fileStep == 2 ? "O-O-O" : "O-O"; *castling != 0; ++castling) {
      *text++ = *castling;
    }
  } else {
    if (kind == pawn) {
      if (IsCapture(move)) *text++ = FileLetter(from);
    } else if (kind <= king) {
      *text++ = pieceLetters[kind];
    }
    if (IsCapture(move)) *text++ = 'x';
    *text++ = FileLetter(to);
    *text++ = RankDigit(to);
  }
  const int promotion = PromotionKind(move);
  if (IsPromotion(move) && promotion >= knight && promotion <= queen) {
    *text++ = '=';
    *text++ = pieceLetters[promotion];
  }
  if ((move & checkMark) != 0) *text++ = '+';
  *text = '\0';
}

std::string_view MoveTextOf(std::string_view word) {
  word = WithoutFinal(word, "!?");
  const std::string_view unchecked = WithoutFinal(word, "!?+#");
  for (const std::string_view note : enPassantNotes) {
    if (!unchecked.ends_with(note)) continue;
    const std::string_view text =
        WithoutFinal(unchecked.substr(0, unchecked.size() - note.size()), "!?");
    return text.empty() || EndsLikeAMove(text) ? text : word;
  }
  return word;
}

Move SanToPartialMove(const char* text, int side) {
  SanReader reader{text, std::strlen(text)};
  if (reader.length == 0) return noMove;
  reader.inDestination = reader.length == 2;
  while (reader.at < reader.length && !reader.done) {
    if (reader.inDestination) {
      ReadDestinationCharacter(reader);
    } else {
      ReadPieceCharacter(reader, side);
    }
  }
  return reader.move;
}

}  // namespace mirvo
