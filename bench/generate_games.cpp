// Writes random legal games as PGN, for measuring book building:
//   generate_games NUMBER [PLIES] > games.pgn
// The first moves are chosen among a few per position, so that games share openings
// like real ones; later moves are free. The same arguments always give the same
// games. Exit status 1 if an argument is not a whole number.
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "board/attack_tables.h"
#include "board/attacks.h"
#include "board/bb_move_generator.h"
#include "board/board.h"
#include "board/fen.h"
#include "board/make_move.h"
#include "board/notation.h"
#include "board/san.h"

namespace {

using namespace mirvo;

constexpr int defaultGames = 1000;
constexpr int defaultPlies = 80;
constexpr int openingPlies = 16;
constexpr int wordsPerLine = 12;

std::uint64_t randomState = 0x9E3779B97F4A7C15ULL;

std::uint32_t Random() {
  randomState ^= randomState << 13;
  randomState ^= randomState >> 7;
  randomState ^= randomState << 17;
  return static_cast<std::uint32_t>(randomState >> 32);
}

// Counts the pieces of the moving kind that reach the same square, this one included.
int CountRivals(const BBMoveGenerator2& generator, Move move, bool sameFileOnly) {
  int n = 0;
  for (std::int32_t i = 0; i < generator.count; ++i) {
    const Move other = generator.moves[i];
    if (ToSquare(other) != ToSquare(move) || MovingKind(other) != MovingKind(move)) continue;
    if (sameFileOnly && FileOf(FromSquare(other)) != FileOf(FromSquare(move))) continue;
    ++n;
  }
  return n;
}

// Writes the text of a move, with the origin file if needed. False for a move that
// needs the origin rank, or that promotes to less than a queen: the games do without
// those.
bool WriteText(const BBMoveGenerator2& generator, Move move, char* text) {
  if (IsPromotion(move) && PromotionKind(move) != queen) return false;
  MoveToSan(move, text);
  const int kind = MovingKind(move);
  if (kind == pawn || kind == king || CountRivals(generator, move, false) == 1) return true;
  if (CountRivals(generator, move, true) > 1) return false;
  std::memmove(text + 2, text + 1, std::strlen(text + 1) + 1);
  text[1] = static_cast<char>('a' + FileOf(FromSquare(move)));
  return true;
}

// Chooses an index in the list: in the opening nearly always one of the first few
// after a shuffle that depends only on the position.
std::int32_t DrawPlace(const Board& board, std::int32_t count, int ply) {
  if (ply >= openingPlies) {
    return static_cast<std::int32_t>(Random() % static_cast<std::uint32_t>(count));
  }
  std::uint32_t choice = 0;
  while (choice < 6 && Random() % 3 == 0) ++choice;
  const std::uint64_t mixed = (board.positionKey + choice) * 0xBF58476D1CE4E5B9ULL;
  return static_cast<std::int32_t>((mixed >> 33) % static_cast<std::uint64_t>(count));
}

// Plays a legal move that can be written like this; false after twenty failures.
bool PlayRandomMove(Board& board, int ply, char* text) {
  BBMoveGenerator2 generator(board, board.sideToMove);
  generator.GenerateAll();
  for (int attempt = 0; attempt < 20 && generator.count > 0; ++attempt) {
    const Move move = generator.moves[DrawPlace(board, generator.count, ply)];
    if (!WriteText(generator, move, text)) continue;
    MakeMove(board, move);
    if (!MoverLeftInCheck(board)) {
      const bool castles = text[0] == 'O';
      if (!castles && InCheck(board, board.sideToMove)) {
        const std::size_t length = std::strlen(text);
        text[length] = '+';
        text[length + 1] = '\0';
      }
      return true;
    }
    UnmakeMove(board);
  }
  return false;
}

void WriteGame(int number, int nPlies) {
  static const char* const results[] = {"1-0", "0-1", "1/2-1/2"};
  const char* result = results[Random() % 3];
  std::printf("[Event \"Generated game\"]\n[Site \"?\"]\n[Date \"????.??.??\"]\n[Round \"%d\"]\n",
              number);
  std::printf("[White \"?\"]\n[Black \"?\"]\n[Result \"%s\"]\n\n", result);
  static Board board;
  BeginFromStart(board);
  for (int ply = 0; ply < nPlies; ++ply) {
    char text[moveTextCapacity];
    if (!PlayRandomMove(board, ply, text)) break;
    if (ply % 2 == 0) std::printf("%d. ", ply / 2 + 1);
    std::printf("%s%s", text, ply % wordsPerLine == wordsPerLine - 1 ? "\n" : " ");
  }
  std::printf("%s\n\n", result);
}

// Reads a text that is a whole number; otherwise prints a message and returns false.
bool ReadNumber(const char* text, int& number) {
  const char* const end = text + std::strlen(text);
  const auto [rest, error] = std::from_chars(text, end, number);
  if (error == std::errc() && rest == end) return true;
  std::fprintf(stderr, "no whole number: %s\n", text);
  return false;
}

}  // namespace

int main(int argc, char** argv) {
  int nGames = defaultGames;
  int nPlies = defaultPlies;
  if (argc > 1 && !ReadNumber(argv[1], nGames)) return 1;
  if (argc > 2 && !ReadNumber(argv[2], nPlies)) return 1;
  InitAttackTables();
  for (int number = 1; number <= nGames; ++number) WriteGame(number, nPlies);
  return 0;
}
