#include "tests/book/book_exercise.h"

#include <algorithm>
#include <initializer_list>

#include "board/fen.h"
#include "book/book_builder.h"
#include "book/book_file.h"
#include "book/book_probe.h"
#include "book/pgn_reader.h"

namespace mirvo {
namespace {

// Positions to probe. Their keys are put into the book, so that its moves are
// matched against a real board.
struct ProbePosition {
  const char* placement;
  const char* side;
  const char* castling;
};
constexpr ProbePosition probePositions[] = {
    {"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR", "w", "KQkq"},
    {"r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R", "w", "KQkq"},
    {"r3k2r/Pppp1ppp/1b3nbN/nP6/BBP1P3/q4N2/Pp1P2PP/R2Q1RK1", "b", "kq"},
    {"4k3/P6P/8/8/8/8/p6p/4K3", "w", "-"},
    {"8/8/8/8/8/8/8/8", "b", "-"},
};
constexpr int nProbePositions = 5;

bool CountsAreSound(const OpeningBook& book) {
  if (book.count < 0 || book.count > bookCapacity) return false;
  for (std::int32_t i = 0; i < book.count; ++i) {
    const BookEntry& entry = book.entries[i];
    if (entry.moveCount < 0 || entry.moveCount > bookMovesPerPosition) return false;
    for (int m = 0; m < entry.moveCount; ++m) {
      if (entry.weights[m] < 0) return false;
    }
  }
  return true;
}

bool ProbeEveryPosition(OpeningBook& book) {
  static Board board;
  for (int i = 0; i < nProbePositions; ++i) {
    const ProbePosition& position = probePositions[i];
    BeginFromFen(position.placement, position.side, position.castling, board);
    const std::uint64_t key = ComputeKey(board);
    if (book.count > 0) {
      book.entries[i % book.count].key = key;
      ResetBookIndex(book.index);
    }
    Move move = noMove;
    ProbeBook(book, board, move);
    if (ComputeKey(board) != key) return false;
  }
  return true;
}

/// Empties the book and the `nUsed` places that entries have been in.
void Forget(OpeningBook& book, std::int32_t nUsed) {
  book.count = 0;
  ResetBookIndex(book.index);
  std::fill(book.entries, book.entries + nUsed, BookEntry{});
}

bool RoundTripIsSound(OpeningBook& book, const char* path) {
  SaveBook(book, path);
  return CountsAreSound(book) && LoadBook(book, path, true) && CountsAreSound(book);
}

}  // namespace

bool ExerciseBookFile(OpeningBook& book, const char* path, const char* scratchPath) {
  for (const bool replace : {true, false}) {
    if (!LoadBook(book, path, replace) || !CountsAreSound(book)) return false;
    if (!ProbeEveryPosition(book)) return false;
    PrintBookStats(book);
  }
  const std::int32_t nUsed = book.count;
  const bool sound = RoundTripIsSound(book, scratchPath);
  Forget(book, nUsed);
  return sound;
}

bool ExerciseGames(OpeningBook& book, const char* path, const char* scratchPath) {
  std::int32_t nCounted = 0;
  if (!CountPgnGames(path, nCounted)) return false;
  book.count = 0;
  ResetBookIndex(book.index);
  if (CreateBook(book, path, 600, 0) != nCounted || !CountsAreSound(book)) return false;
  const std::int32_t nUsed = book.count;
  const bool sound = RoundTripIsSound(book, scratchPath);
  Forget(book, nUsed);
  return sound;
}

}  // namespace mirvo
