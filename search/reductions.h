// Late-move reductions by depth and move number. Built once at start-up.
#pragma once

#include <algorithm>
#include <cstdint>

namespace mirvo {

inline constexpr int reductionTableSize = 64;

/// Plies of reduction. [depth][move number], for nodes off and on the PV.
extern std::int32_t NonPvReductions[reductionTableSize][reductionTableSize];
extern std::int32_t PvReductions[reductionTableSize][reductionTableSize];

void BuildReductionTables();

/// The entry for any depth and move number, clamped to the table.
inline std::int32_t Reduction(bool isPv, int depth, int moveNumber) {
  const int row = std::clamp(depth, 0, reductionTableSize - 1);
  const int column = std::clamp(moveNumber, 0, reductionTableSize - 1);
  return isPv ? PvReductions[row][column] : NonPvReductions[row][column];
}

}  // namespace mirvo
