// The book's random generator: an additive lagged Fibonacci generator with 55
// words of state. Start-up advances it by the clock, so that games vary.
#pragma once

#include <cstdint>

namespace mirvo {

inline constexpr int nRandomWords = 55;

/// The initial state of the generator.
extern const std::uint32_t RandomSeedWords[nRandomWords];

/// Returns the next number.
std::uint32_t NextRandom();

/// Restarts the generator from the seed words (tests).
void ResetRandom();

}  // namespace mirvo
