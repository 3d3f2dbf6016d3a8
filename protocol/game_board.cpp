#include "protocol/game_board.h"

#include "board/display.h"
#include "shell/config/config.h"

namespace mirvo {

Board gameBoard;

void PrintGameBoard() { PrintBoard(gameBoard, BoardLayout::wide, engineConfig.Quiet); }

}  // namespace mirvo
