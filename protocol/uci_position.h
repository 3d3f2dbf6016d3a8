// UCI "position": sets up the game.
#pragma once

#include "board/board.h"
#include "protocol/uci_session.h"

namespace mirvo {

/// Sets `board` up from the text after "position " and plays its moves without
/// checking them; a malformed one passes the turn.
void SetUpPosition(UciSession& session, Board& board, const char* text);

}  // namespace mirvo
