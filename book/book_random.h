// The book's random generator: an additive lagged-Fibonacci generator of 55
// words. Start-up advances it by the clock, so games vary; nothing stores the
// sequence.
#pragma once

#include <cstdint>

namespace mirvo {

inline constexpr int nRandomWords = 55;

/// The words that the generator starts from.
extern const std::uint32_t RandomSeedWords[nRandomWords];

/// Next word of the book's random generator.
std::uint32_t NextRandom();

/// Forgets the state: the next call starts from the seed words again (tests).
void ResetRandom();

}  // namespace mirvo
