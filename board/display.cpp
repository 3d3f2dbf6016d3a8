#include "board/display.h"

#include <cstring>

#include "shell/base/output.h"

namespace mirvo {
namespace {

constexpr char rankDigits[] = "12345678";

// Appends to a bounded text; twelve pieces on each of 64 squares still fit.
struct Diagram {
  char* text;
  std::size_t length = 0;

  void Add(char c) {
    if (length + 1 >= diagramCapacity) return;
    text[length++] = c;
    text[length] = '\0';
  }
  void Add(const char* part) {
    for (; *part != '\0'; ++part) Add(*part);
  }
};

// Every piece on the square in the order of the bitboards, or a dot.
void AddSquare(Diagram& diagram, const Board& board, int square, bool spaced) {
  bool empty = true;
  for (int piece = 0; piece < nPieces; ++piece) {
    if ((board.pieces[piece] & Bit(square)) == 0) continue;
    diagram.Add(pieceLetters[piece]);
    if (spaced) diagram.Add(' ');
    empty = false;
  }
  if (empty) diagram.Add(spaced ? ". " : ".");
}

}  // namespace

void FormatBoard(const Board& board, BoardLayout layout, char* text) {
  const bool wide = layout == BoardLayout::wide;
  const char* const rule = wide ? "-------------------\n" : "-----------\n";
  text[0] = '\0';
  Diagram diagram{text};
  diagram.Add(wide ? "\n |a b c d e f g h \n" : "\n |abcdefgh\n");
  diagram.Add(rule);
  for (int rank = 7; rank >= 0; --rank) {
    diagram.Add(rankDigits[rank]);
    diagram.Add('|');
    for (int file = 0; file < 8; ++file) AddSquare(diagram, board, SquareAt(rank, file), wide);
    diagram.Add(wide ? "\n |\n" : "|\n");
  }
  diagram.Add(rule);
}

void PrintBoard(const Board& board, BoardLayout layout, bool quiet) {
  if (quiet) return;
  char text[diagramCapacity];
  FormatBoard(board, layout, text);
  Output(output, "%s\n", text);
}

}  // namespace mirvo
