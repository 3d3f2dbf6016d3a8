#include "board/key_history.h"

#include <algorithm>

namespace mirvo {

// The key of the initial position: every board that exists when the program
// starts stands there, with this history.
constexpr std::uint64_t startPositionKey = 0x463B96181691FC9CULL;

constinit std::uint64_t KeyHistory[keyHistoryCapacity] = {startPositionKey};

bool IsRepetition(const Board& board) {
  int nOccurrences = 0;
  for (int i = 0; i <= board.historyIndex; ++i) {
    nOccurrences += KeyHistory[i] == board.positionKey ? 1 : 0;
  }
  return nOccurrences == 2;
}

void StartKeyHistory(Board& board) {
  board.historyIndex = 0;
  board.positionKey = ComputeKey(board);
  KeyHistory[0] = board.positionKey;
}

void TrimGameHistory(Board& board) {
  const int maxUndo = undoCapacity - searchPlyRoom;
  if (board.undoDepth > maxUndo) {
    const int nDropped = board.undoDepth - maxUndo;
    std::copy(board.undoStack + nDropped, board.undoStack + board.undoDepth, board.undoStack);
    board.undoDepth = maxUndo;
  }
  const int maxHistory = keyHistoryCapacity - searchPlyRoom - 1;
  if (board.historyIndex > maxHistory) {
    const int nDropped = board.historyIndex - maxHistory;
    std::copy(KeyHistory + nDropped, KeyHistory + board.historyIndex + 1, KeyHistory);
    board.historyIndex = maxHistory;
  }
}

}  // namespace mirvo
