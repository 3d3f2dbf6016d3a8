// Reads an EPD test suite: text cut at semicolons into positions, their best
// moves and the points given for single moves. The reader validates nothing
// and reports nothing but a file that cannot be read.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "board/board.h"
#include "board/move.h"

namespace mirvo {

/// Positions kept of one suite; the rest of the file is not read.
inline constexpr int suiteCapacity = 1000;

/// Room for the text of a best move, terminator included; longer texts are cut.
inline constexpr int bestMoveTextCapacity = 16;

/// A move that a suite calls best (or one to avoid, which counts the same).
struct BestMove {
  Move move;  // partial: moving kind and to-square are what is compared
  char text[bestMoveTextCapacity];
};

/// Points that a suite gives for one move.
struct PointEntry {
  Move move;  // partial, as above
  std::int32_t points;
};

/// One position of a suite. It keeps only what the file states, a Board being
/// far too large to keep a thousand of.
struct SuitePosition {
  std::uint64_t pieces[nPieces];
  CastlingFlags castling;
  std::uint8_t sideToMove;
  std::uint8_t epRank;  // 0..7, or noEnPassant with the file
  std::uint8_t epFile;
  std::uint8_t epColour;
  std::vector<BestMove> bestMoves;
  std::vector<PointEntry> pointEntries;
};

using Suite = std::vector<SuitePosition>;

/// The positions of a suite's text, at most suiteCapacity.
Suite ParseSuite(std::string_view text);

/// Reads a suite file. False when the file cannot be opened or read.
bool ReadSuite(const char* fileName, Suite& suite);

/// Puts a suite position on a game board as a new game that begins there: the
/// key is computed and starts the key history, no move has been made.
void SetUpSuitePosition(const SuitePosition& position, Board& board);

}  // namespace mirvo
