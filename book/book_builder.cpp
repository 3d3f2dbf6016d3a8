#include "book/book_builder.h"

#include "board/bits.h"
#include "board/fen.h"
#include "board/make_move.h"
#include "book/book_file.h"
#include "book/book_writer.h"
#include "book/pgn_reader.h"
#include "shell/base/output.h"

namespace mirvo {
namespace {

constexpr std::int32_t nProgressSteps = 10;

// The state of the second pass over the games.
struct BookBuild {
  OpeningBook& book;
  Board board;
  std::int32_t progressStep;  // games between two dots
  std::int32_t nSinceLastDot;
};

// A word that matched no move may contain any squares. If it moves none of the
// side's pieces, the turn passes and the game continues with the next word.
void PlayRecordedMove(Board& board, Move move) {
  const Bitboard* own = PiecesOf(board, board.sideToMove);
  const int kind = MovingKind(move);
  if (kind < nKinds && (own[kind] & Bit(FromSquare(move))) != 0) {
    MakeMove(board, move);
  } else {
    PassTurn(board);
  }
}

void AddGame(void* context, const GameRecord& game) {
  BookBuild& build = *static_cast<BookBuild*>(context);
  if (build.nSinceLastDot > build.progressStep) {
    Output(output, ".");
    build.nSinceLastDot = 0;
  }
  ++build.nSinceLastDot;
  BeginFromStart(build.board);
  // The reader stops at the book's maxPlies.
  for (std::int32_t ply = 0; ply < game.plyCount; ++ply) {
    AddBookPosition(build.book, ComputeKey(build.board), game.moves[ply], game.weights[ply]);
    PlayRecordedMove(build.board, game.moves[ply]);
  }
}

}  // namespace

std::int32_t CreateBook(OpeningBook& book, const char* pgnPath, std::int32_t maxPlies,
                        std::int32_t minHits) {
  book.maxPlies = maxPlies;
  book.minHits = minHits;
  std::int32_t nGames = 0;
  Output(output, "\n* Opening file.......");
  CountPgnGames(pgnPath, nGames);
  Output(output, "done. (Number games: %d)\n", nGames);
  Output(output, "* Processing");
  // The games are read twice instead of being stored: a collection may be far
  // larger than the book made from it.
  if (nGames > 0) {
    BookBuild build{book, Board(), nGames / nProgressSteps, 0};
    ReadPgnGames(pgnPath, maxPlies, AddGame, &build, nGames);
  }
  Output(output, "done.");
  // Without memory for a book there is nothing to save.
  return book.entries == nullptr ? 0 : nGames;
}

void SaveBook(OpeningBook& book, const char* path) {
  const std::int32_t nBefore = book.count;
  Output(output, "\n* Cleaning...........");
  CleanBook(book);
  Output(output, "done. (Filtered %d to %d lines)\n", nBefore, book.count);
  Output(output, "* Normalizing........");
  NormalizeBook(book);
  Output(output, "done\n");
  Output(output, "* Sorting............");
  SortBook(book);
  Output(output, "done.\n");
  Output(output, "* Saving.............");
  Output(output, "done. (Valid lines %d)\n", WriteBook(book, path));
}

void MergeBooks(OpeningBook& book, const char* first, const char* second, const char* outPath) {
  const bool firstRead = LoadBook(book, first, true);
  const bool secondRead = LoadBook(book, second, false);
  if (!firstRead && !secondRead) {
    Output(output, "done.");
    return;
  }
  SaveBook(book, outPath);
}

}  // namespace mirvo
