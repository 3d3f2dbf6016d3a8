// Setting a board up: the initial position, the first three fields of a FEN
// record, and the start of a game from either.
#pragma once

#include "board/board.h"

namespace mirvo {

/// Width of the buffers for one FEN word, terminator included.
inline constexpr int fenWordCapacity = 100;

/// Loads placement, side to move and castling rights. Nothing is validated:
/// unknown characters shift the file, squares wrap modulo 64. Does not touch the
/// en-passant fields, the key or the key history. Each text may have leading
/// blanks; only its first word is read (of the side, its first character).
void SetupFromFen(const char* placement, const char* side, const char* castling, Board& board);

/// Puts the pieces of a placement word on a cleared board, nothing else.
void PlacePieces(const char* word, Board& board);

/// Sets all castling flags, then clears those that the word names ("KQkq").
void ReadCastlingRights(const char* word, Board& board);

/// Sets up the initial position and restarts KeyHistory. Leaves the
/// en-passant fields alone: callers that begin a game use BeginFromStart.
void ResetToStart(Board& board);

/// A whole FEN set-up as protocols need it: forgets en passant, restarts the
/// board, loads the fields and starts the key history at this position.
void BeginFromFen(const char* placement, const char* side, const char* castling, Board& board);

/// A new game: forgets en passant and resets to the initial position.
void BeginFromStart(Board& board);

}  // namespace mirvo
