// A pair of a middle-game and an end-game value.
#pragma once

#include <cstdint>

namespace mirvo {

/// Centipawns, from the point of view of the side that a term was computed for.
struct ScorePair {
  std::int32_t mg;
  std::int32_t eg;

  constexpr ScorePair& operator+=(ScorePair other) {
    mg += other.mg;
    eg += other.eg;
    return *this;
  }
  constexpr ScorePair& operator-=(ScorePair other) {
    mg -= other.mg;
    eg -= other.eg;
    return *this;
  }
  /// Adds one amount to both halves.
  constexpr ScorePair& AddBoth(std::int32_t amount) {
    mg += amount;
    eg += amount;
    return *this;
  }
  friend constexpr ScorePair operator+(ScorePair a, ScorePair b) { return a += b; }
  friend constexpr ScorePair operator-(ScorePair a, ScorePair b) { return a -= b; }
  friend constexpr bool operator==(ScorePair a, ScorePair b) = default;
};

}  // namespace mirvo
