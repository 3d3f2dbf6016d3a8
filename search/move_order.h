// Move ordering data that outlives a node: killers, history, and the previous principal
// variation.
#pragma once

#include <cstdint>

#include "board/board.h"
#include "board/move.h"
#include "search/search_state.h"

namespace mirvo {

inline constexpr int nKillerPlies = 1000;
inline constexpr std::int32_t historyLimit = 10000;

struct KillerEntry {
  Move first;
  Move second;
  std::uint32_t firstWeight;
  std::uint32_t secondWeight;
};

/// Two killer moves per ply of the game; plies past the end share the last.
extern KillerEntry KillerTable[nKillerPlies];

/// [side to move][from][to]; every entry stays within +-historyLimit.
extern std::int32_t HistoryTable[nSides][nSquares][nSquares];

/// Line of the last completed iteration. A shorter line overwrites only its own
/// length of an older one, so `length` only grows.
extern PvLine previousPv;

/// Most-valuable-victim / least-valuable-attacker score. [victim][attacker]
extern const std::int32_t MvvLva[8][8];

/// The entry of a ply of the game, clamped to the table.
KillerEntry& KillersAt(int ply);

void AddKiller(int ply, Move move, std::uint32_t weight);
void AddHistoryBonus(Move move, int depth, int side);
/// For each of the tried moves except `best`.
void AddHistoryMalus(const Move* tried, int nTried, Move best, int depth, int side);

void ClearKillers();
void ClearHistory();
void ClearPreviousPv();

}  // namespace mirvo
