// Short algebraic notation: a minimal writer for lines and game records, and a
// reader that sets only the fields that a text names.
#pragma once

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

}  // namespace mirvo
