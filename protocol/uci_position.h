// UCI "position": the game as the interface tells it.
#pragma once

#include "board/board.h"
#include "protocol/uci_session.h"

namespace mirvo {

/// Sets `board` up from the text behind "position " and plays its moves. No
/// move is tested: a malformed one passes the turn.
void SetUpPosition(UciSession& session, Board& board, const char* text);

}  // namespace mirvo
