#include "search/reductions.h"

#include <cmath>

namespace mirvo {

std::int32_t NonPvReductions[reductionTableSize][reductionTableSize];
std::int32_t PvReductions[reductionTableSize][reductionTableSize];

void BuildReductionTables() {
  for (int row = 0; row < reductionTableSize; ++row) {
    for (int column = 0; column < reductionTableSize; ++column) {
      // This engine's formula doubles the depth: 2 * row + 1.
      const float product =
          std::log(static_cast<float>(2 * row + 1)) * std::log(static_cast<float>(column + 1));
      NonPvReductions[row][column] =
          static_cast<std::int32_t>(std::floor(product * 0.33333334F + 0.5F));
      PvReductions[row][column] =
          static_cast<std::int32_t>(std::floor(product * 0.16666667F + 0.5F));
    }
  }
}

}  // namespace mirvo
