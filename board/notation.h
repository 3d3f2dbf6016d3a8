// Coordinate text of moves both ways, and elapsed-time text.
#pragma once

#include <cstdint>

#include "board/board.h"
#include "board/move.h"

namespace mirvo {

/// Room for any move text, terminator included.
inline constexpr int moveTextCapacity = 16;

// MoveToText and its modes are kept for the three ways of writing a move; the
// engine uses MoveToCoordinates and MoveToSan, and nothing calls it.

/// What MoveToText does with its scratch text.
enum class MoveTextMode { build = 0, copyScratch = 1, coordinates = 2 };

/// Writes e2e4 or e7e8q into `text` (moveTextCapacity bytes).
void MoveToCoordinates(Move move, char* text);

/// Builds the text of `move` in `scratch` (algebraic when asked for and in
/// mode build, else coordinates), or in mode copyScratch takes it as it is.
/// The text goes to `destination`, or is printed when a text was built and
/// `destination` is null. Both buffers hold moveTextCapacity bytes.
void MoveToText(Move move, char* destination, bool algebraic, MoveTextMode mode, char* scratch);

/// The move word of a coordinate text for `side`: from, to, colour, the kind of
/// that side's piece on the from-square (unknownKind when there is none), and
/// promotion. Squares are masked to the board; missing characters read as those
/// of "a1a1". Does not set the capture flag and does not check the move.
Move MoveFromCoordinates(const char* text, const Board& board, int side);

/// Whether the text begins with two squares: [a-h][1-8][a-h][1-8].
bool IsCoordinateMove(const char* text);

/// Plays one coordinate token on a game board. The moving kind is that of the
/// side to move's piece on the from-square; `trackedSide` only fills the colour
/// bit. A token that is not a coordinate move, or has no such piece, passes the
/// turn and ends en passant. Returns the word that was made, or noMove for a pass.
Move PlayCoordinateMove(const char* text, Board& board, int trackedSide);

/// Writes "minutes:seconds" (not padded) of a time in ms into `text`.
void ElapsedText(std::uint32_t milliseconds, char* text);

}  // namespace mirvo
