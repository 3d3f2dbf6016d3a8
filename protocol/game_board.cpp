#include "protocol/game_board.h"

namespace mirvo {

Board gameBoard;

}  // namespace mirvo
