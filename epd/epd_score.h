// Scores the engine's answer to a suite position.
#pragma once

#include <cstdint>

#include "board/move.h"
#include "epd/epd_reader.h"

namespace mirvo {

/// The most points that a correct answer earns, and what a wrong answer with
/// more points loses.
inline constexpr std::int32_t pointLimit = 10;

struct Verdict {
  bool correct;
  std::int32_t points;
};

/// Compares `answer` with the position's moves by moving kind and target square
/// only, so a piece of the same kind from another square is right too. Adds the
/// points of all matching entries. noMove is always wrong.
Verdict JudgeAnswer(const SuitePosition& position, Move answer);

}  // namespace mirvo
