// Short algebraic notation: a minimal writer for lines and game records, and a
// reader that sets only the fields that a text names.
#pragma once

#include <string_view>

#include "board/move.h"

namespace mirvo {

/// Writes the algebraic text into `text` (moveTextCapacity bytes of notation.h).
/// Never disambiguates; a "+" only for the check mark, no "#".
void MoveToSan(Move move, char* text);

/// Reads what the text states: moving kind, to-square, named from-file (with
/// sanFileMark) or from-rank, capture flag for "x" before the destination,
/// check mark for "+". An empty text gives noMove. The caller matches the
/// result against generated moves.
Move SanToPartialMove(const char* text, int side);

/// The part of a word of games or suites that names its move: without "!" and
/// "?" at the end, and without the note of a capture en passant, "e.p.", "e.p"
/// or "ep", also one with a check sign behind it. A word that is nothing else
/// gives an empty text.
std::string_view MoveTextOf(std::string_view word);

}  // namespace mirvo
