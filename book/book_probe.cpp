#include "book/book_probe.h"

#include <cstdint>

#include "board/bb_move_generator.h"
#include "board/legal_moves.h"
#include "board/make_move.h"
#include "board/notation.h"
#include "book/book_random.h"
#include "shell/base/output.h"

namespace mirvo {
namespace {

/// The legal moves of an entry, in the entry's order.
struct AcceptedMoves {
  Move moves[bookMovesPerPosition];
  std::int32_t weights[bookMovesPerPosition];
  int count = 0;
  std::int64_t total = 0;
};

// The first legal generated move with the squares of `bookMove`, or noMove. Among
// promotions that is the queen's.
Move FindLegalMove(Board& board, const BBMoveGenerator2& generator, Move bookMove) {
  for (std::int32_t i = 0; i < generator.count; ++i) {
    const Move move = generator.moves[i];
    if (((move ^ bookMove) & fromToMask) == 0 && IsLegal(board, move)) return move;
  }
  return noMove;
}

// Collects the legal moves of an entry and completes their words in the entry:
// the book file knows neither the moving kind nor captures.
AcceptedMoves AcceptMoves(Board& board, BookEntry& entry) {
  BBMoveGenerator2 generator(board, board.sideToMove);
  generator.GenerateAll();
  AcceptedMoves accepted;
  for (int i = 0; i < entry.moveCount; ++i) {
    const Move move = FindLegalMove(board, generator, entry.moves[i]);
    if (move == noMove) continue;
    entry.moves[i] = move;
    accepted.moves[accepted.count] = move;
    accepted.weights[accepted.count] = entry.weights[i];
    accepted.total += entry.weights[i];
    ++accepted.count;
  }
  return accepted;
}

// Lists every move of the entry; percentages are of the legal moves' total.
void PrintEntry(const BookEntry& entry, std::int64_t total) {
  Output(output, "\n");
  for (int i = 0; i < entry.moveCount; ++i) {
    char text[moveTextCapacity];
    MoveToCoordinates(entry.moves[i], text);
    float percent = 0.0F;
    if (total > 0) {
      percent = static_cast<float>(entry.weights[i]) * 100.0F / static_cast<float>(total);
    }
    Output(output, "%5s %5.2f%% (%d)\n", text, static_cast<double>(percent), entry.weights[i]);
  }
}

Move ChooseByWeight(const AcceptedMoves& accepted) {
  if (accepted.count == 1 || accepted.total <= 0) return accepted.moves[0];
  const std::int64_t chosen = NextRandom() % accepted.total;
  const int last = accepted.count - 1;
  std::int64_t sum = 0;
  for (int i = 0; i < last; ++i) {
    sum += accepted.weights[i];
    if (sum > chosen) return accepted.moves[i];
  }
  return accepted.moves[last];
}

}  // namespace

bool ProbeBook(OpeningBook& book, Board& board, Move& move) {
  const std::int32_t index = FindEntry(book, ComputeKey(board));
  if (index < 0) return false;
  BookEntry& entry = book.entries[index];
  const AcceptedMoves accepted = AcceptMoves(board, entry);
  PrintEntry(entry, accepted.total);
  if (accepted.count == 0) return false;
  move = ChooseByWeight(accepted);
  return true;
}

void PrintBookStats(const OpeningBook& book) {
  std::int32_t nMoves = 0;
  for (std::int32_t i = 0; i < book.count; ++i) nMoves += book.entries[i].moveCount;
  Output(output, "\nNumber positions: %d\n", book.count);
  Output(output, "Number moves: %d\n", nMoves);
}

}  // namespace mirvo
