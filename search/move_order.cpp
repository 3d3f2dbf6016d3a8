#include "search/move_order.h"

#include <algorithm>
#include <cstring>

namespace mirvo {

constinit KillerEntry KillerTable[nKillerPlies] = {};
constinit std::int32_t HistoryTable[nSides][nSquares][nSquares] = {};
constinit PvLine previousPv = {};

// clang-format off
// Row: victim, column: attacker (pawn, knight, bishop, rook, queen, king).
const std::int32_t MvvLva[8][8] = {
    {55, 54, 53, 52, 51, 50, 0, 0},
    {65, 64, 63, 62, 61, 60, 0, 0},
    {75, 74, 73, 72, 71, 70, 0, 0},
    {85, 84, 83, 82, 81, 80, 0, 0},
    {95, 94, 93, 92, 91, 90, 0, 0},
    { 0,  0,  0,  0,  0,  0, 0, 0},
    { 0,  0,  0,  0,  0,  0, 0, 0},
    { 0,  0,  0,  0,  0,  0, 0, 0},
};
// clang-format on

namespace {

void HalveHistory() {
  for (auto& side : HistoryTable) {
    for (auto& from : side) {
      for (std::int32_t& entry : from) entry /= 2;
    }
  }
}

}  // namespace

KillerEntry& KillersAt(int ply) { return KillerTable[std::clamp(ply, 0, nKillerPlies - 1)]; }

void AddKiller(int ply, Move move, std::uint32_t weight) {
  KillerEntry& entry = KillersAt(ply);
  if (SameMove(move, entry.first) || SameMove(move, entry.second)) return;
  // Replaces the older killer: the one with the smaller weight.
  if (entry.firstWeight < entry.secondWeight) {
    entry.first = move;
    entry.firstWeight = weight;
  } else {
    entry.second = move;
    entry.secondWeight = weight;
  }
}

void AddHistoryBonus(Move move, int depth, int side) {
  std::int32_t& entry = HistoryTable[side][FromSquare(move)][ToSquare(move)];
  entry += depth * depth;
  if (entry > historyLimit) HalveHistory();
}

void AddHistoryMalus(const Move* tried, int nTried, Move best, int depth, int side) {
  for (int i = 0; i < nTried; ++i) {
    if (SameMove(tried[i], best)) continue;
    std::int32_t& entry = HistoryTable[side][FromSquare(tried[i])][ToSquare(tried[i])];
    entry -= depth * depth;
    if (entry < -historyLimit) HalveHistory();
  }
}

void ClearKillers() { std::memset(KillerTable, 0, sizeof(KillerTable)); }

void ClearHistory() { std::memset(HistoryTable, 0, sizeof(HistoryTable)); }

void ClearPreviousPv() { previousPv = PvLine{}; }

}  // namespace mirvo
