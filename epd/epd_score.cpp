#include "epd/epd_score.h"

#include <algorithm>

#include "shell/base/text.h"

namespace mirvo {
namespace {

bool Agrees(Move stated, Move answer) {
  return ToSquare(stated) == ToSquare(answer) && MovingKind(stated) == MovingKind(answer);
}

std::int32_t PointsOf(const SuitePosition& position, Move answer) {
  std::int64_t sum = 0;
  for (const PointEntry& entry : position.pointEntries) {
    if (Agrees(entry.move, answer)) sum += entry.points;
  }
  return Saturate(sum);
}

}  // namespace

Verdict JudgeAnswer(const SuitePosition& position, Move answer) {
  if (answer == noMove) return {false, 0};
  const bool correct =
      std::any_of(position.bestMoves.begin(), position.bestMoves.end(),
                  [answer](const BestMove& best) { return Agrees(best.move, answer); });
  const std::int32_t points = PointsOf(position, answer);
  if (correct) return {true, std::min(points, pointLimit)};
  // A wrong answer with points above the limit loses as many as the limit; kept so
  // that results stay comparable with earlier ones.
  return {false, points > pointLimit ? points - pointLimit : points};
}

}  // namespace mirvo
