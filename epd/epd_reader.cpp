#include "epd/epd_reader.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>

#include "board/coding.h"
#include "board/fen.h"
#include "board/key_history.h"
#include "board/san.h"
#include "shell/base/file.h"
#include "shell/base/text.h"

namespace mirvo {
namespace {

/// A piece of text with an unknown operation starts a position if it is longer
/// than this, including its ";".
constexpr std::size_t longestUnknownOperation = 10;

/// Operations that contain no best moves.
constexpr std::string_view ignoredOperations[] = {"id", "pv", "acd", "acn", "acs", "ce"};

/// A NUL byte separates words like a blank, so that it does not end the text.
bool IsSuiteBlank(char c) { return c == '\0' || IsBlank(c); }

bool IsMoveSeparator(char c) { return c == ',' || IsSuiteBlank(c); }

/// Removes the next word from the front of `text`; empty when none is left.
std::string_view NextWord(std::string_view& text, bool (*isSeparator)(char)) {
  std::size_t begin = 0;
  while (begin < text.size() && isSeparator(text[begin])) ++begin;
  std::size_t end = begin;
  while (end < text.size() && !isSeparator(text[end])) ++end;
  const std::string_view word = text.substr(begin, end - begin);
  text.remove_prefix(end);
  return word;
}

/// The word as the bounded C string that the FEN functions need.
struct FenWord {
  explicit FenWord(std::string_view word) : text{} {
    std::memcpy(text, word.data(), std::min(word.size(), sizeof text - 1));
  }
  char text[fenWordCapacity];
};

/// A word without a move gives a move of no kind, which matches no answer.
Move ParseMove(std::string_view word, int side) {
  const std::string_view text = MoveTextOf(word);
  if (text.empty()) return Move{unknownKind} << moveKindShift;
  return SanToPartialMove(std::string(text).c_str(), side);
}

void AddBestMoves(std::string_view moves, SuitePosition& position) {
  for (;;) {
    const std::string_view word = NextWord(moves, IsMoveSeparator);
    if (word.empty()) return;
    BestMove best{ParseMove(word, position.sideToMove), {}};
    std::memcpy(best.text, word.data(), std::min(word.size(), sizeof best.text - 1));
    position.bestMoves.push_back(best);
  }
}

/// Adds pairs such as "Nf3=10, e8=Q=4": the last "=" ends the move.
void AddPointEntries(std::string_view pairs, SuitePosition& position) {
  std::string unquoted(pairs);
  std::erase(unquoted, '"');
  std::string_view rest = unquoted;
  for (;;) {
    const std::string_view pair = NextWord(rest, IsMoveSeparator);
    if (pair.empty()) return;
    const std::size_t cut = pair.rfind('=');
    if (cut == std::string_view::npos) continue;
    const std::string points(pair.substr(cut + 1));
    position.pointEntries.push_back(
        {ParseMove(pair.substr(0, cut), position.sideToMove), ReadDecimal(points.c_str())});
  }
}

/// Reads an en-passant square and the side whose pawn passed it: White for the
/// seventh rank, Black for any other, the third included. Kept so that suites
/// score as they always have. The rank is masked onto the board.
void ReadEnPassant(std::string_view word, SuitePosition& position) {
  position.epRank = position.epFile = position.epColour = noEnPassant;
  if (word.empty() || !IsFileLetter(word[0])) return;
  const int rank = (word.size() > 1 ? word[1] : '\0') - '1';
  position.epFile = static_cast<std::uint8_t>(word[0] - 'a');
  position.epRank = static_cast<std::uint8_t>(rank & 7);
  position.epColour = static_cast<std::uint8_t>(rank == 6 ? white : black);
}

/// Reads a position line: four fields, then optionally "bm" or "am" with moves.
/// `scratch` is overwritten.
SuitePosition ReadPositionLine(std::string_view line, Board& scratch) {
  SuitePosition position{};
  ClearBoard(scratch);
  PlacePieces(FenWord(NextWord(line, IsSuiteBlank)).text, scratch);
  std::memcpy(position.pieces, scratch.pieces, sizeof position.pieces);
  const bool blackMoves = NextWord(line, IsSuiteBlank).starts_with('b');
  position.sideToMove = static_cast<std::uint8_t>(blackMoves ? black : white);
  ReadCastlingRights(FenWord(NextWord(line, IsSuiteBlank)).text, scratch);
  position.castling = scratch.castling;
  ReadEnPassant(NextWord(line, IsSuiteBlank), position);
  // Moves to avoid are scored like best moves.
  const std::string_view operation = NextWord(line, IsSuiteBlank);
  if (operation == "bm" || operation == "am") AddBestMoves(line, position);
  return position;
}

bool IsIgnoredOperation(std::string_view piece) {
  return std::any_of(std::begin(ignoredOperations), std::end(ignoredOperations),
                     [piece](std::string_view name) { return piece.starts_with(name); });
}

/// Handles a piece of text that ends with ";". False when the suite is full and
/// the piece would start another position.
bool ReadPiece(std::string_view piece, Suite& suite, Board& scratch) {
  while (!piece.empty() && IsSuiteBlank(piece.front())) piece.remove_prefix(1);
  if (IsIgnoredOperation(piece)) return true;
  const std::string_view body = piece.substr(0, piece.size() - 1);
  const bool isPoints = piece.starts_with("c0");
  if (isPoints || piece.starts_with("bm")) {
    if (suite.empty()) return true;
    if (isPoints) {
      AddPointEntries(body.substr(2), suite.back());
    } else {
      AddBestMoves(body.substr(2), suite.back());
    }
    return true;
  }
  if (piece.size() <= longestUnknownOperation) return true;
  if (suite.size() == suiteCapacity) return false;
  suite.push_back(ReadPositionLine(body, scratch));
  return true;
}

/// Appends the whole file to `text`; false when it cannot be read.
bool ReadWholeFile(const char* fileName, std::string& text) {
  const File file = OpenReadable(fileName, "rb");
  if (!file) return false;
  char chunk[65536];
  for (;;) {
    const std::size_t n = std::fread(chunk, 1, sizeof chunk, file.get());
    text.append(chunk, n);
    if (n < sizeof chunk) return std::ferror(file.get()) == 0;
  }
}

}  // namespace

Suite ParseSuite(std::string_view text) {
  text = WithoutByteOrderMark(text);
  Suite suite;
  const auto scratch = std::make_unique<Board>();
  for (;;) {
    const std::size_t end = text.find(';');
    if (end == std::string_view::npos) return suite;
    if (!ReadPiece(text.substr(0, end + 1), suite, *scratch)) return suite;
    text.remove_prefix(end + 1);
  }
}

bool ReadSuite(const char* fileName, Suite& suite) {
  std::string text;
  if (!ReadWholeFile(fileName, text)) return false;
  suite = ParseSuite(text);
  return true;
}

void SetUpSuitePosition(const SuitePosition& position, Board& board) {
  ResetToStart(board);
  ClearBoard(board);
  std::memcpy(board.pieces, position.pieces, sizeof board.pieces);
  board.sideToMove = position.sideToMove;
  board.castling = position.castling;
  board.epRank = position.epRank;
  board.epFile = position.epFile;
  board.epColour = position.epColour;
  DetectOverlaps(board);
  LocateKings(board);
  RebuildOccupancy(board);
  RebuildRotated(board);
  StartKeyHistory(board);
}

}  // namespace mirvo
