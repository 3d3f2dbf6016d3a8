// Reads an EPD test suite: text divided by semicolons into positions, their best
// moves and the points for single moves. The only error is a file that cannot be
// read; nothing else is validated.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "board/board.h"
#include "board/move.h"

namespace mirvo {

/// Most positions of a suite; further ones are ignored.
inline constexpr int suiteCapacity = 1000;

/// Room for the text of a best move and its terminator; longer texts are cut.
inline constexpr int bestMoveTextCapacity = 16;

/// A best move of a position, or one to avoid, which counts the same.
struct BestMove {
  Move move;  // partial: moving kind and target square, which are compared
  char text[bestMoveTextCapacity];
};

/// The points for one move.
struct PointEntry {
  Move move;  // partial, as above
  std::int32_t points;
};

/// One position of a suite. Stores only what the file states: a thousand Boards
/// would be far too large.
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

/// Reads the positions of a suite's text, at most suiteCapacity.
Suite ParseSuite(std::string_view text);

/// Reads a suite file. False when the file cannot be opened or read.
bool ReadSuite(const char* fileName, Suite& suite);

/// Sets up a suite position as the start of a new game: computes the key and
/// starts the key history.
void SetUpSuitePosition(const SuitePosition& position, Board& board);

}  // namespace mirvo
