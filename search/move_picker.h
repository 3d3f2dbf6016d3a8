// The staged move picker: hands one move at a time to the main and root
// search, best first, and generates no more than it has to.
#pragma once

#include <cstdint>

#include "board/bb_move_generator.h"
#include "board/board.h"
#include "board/move.h"

namespace mirvo {

enum PickerStage : std::uint8_t {
  stageHashMove = 0,
  stageScoreCaptures = 2,
  stageGoodCaptures = 3,
  stageScoreQuiets = 4,
  stageUnused = 5,
  stageQuiets = 7,
  stageBadCaptures = 8,
  stageEnd = 9,
};

/// Ordering scores of moves that need no list.
inline constexpr std::int32_t hashMoveScore = 100000;
inline constexpr std::int32_t killerScore = 10000;
inline constexpr std::int32_t previousPvScore = 10250;

/// A list of moves with scores; entries that were handed out are marked.
struct ScoredMoves {
  std::int32_t scores[moveListCapacity];
  Move moves[moveListCapacity];
  std::int32_t count;

  void Add(Move move, std::int32_t score) {
    if (count >= moveListCapacity) return;
    moves[count] = move;
    scores[count++] = score;
  }
  /// Hands out the entry with the greatest score, the earliest of equals.
  bool PickBest(Move& move, std::int32_t& score);
};

/// One node's picker. Lives on the node's stack; nothing in it is allocated.
class MovePicker {
 public:
  /// `iterationDepth` - `depth` is the node's index in the previous PV.
  MovePicker(Board& position, Move fromHash, int nodeDepth, int iterationDepth);

  /// The next move and its ordering score; false when there is none left. A
  /// hash move may come a second time from a later stage.
  bool Next(Move& move, std::int32_t& score);

  /// Stage that the newest move came from.
  PickerStage Stage() const { return *stage_; }

 private:
  bool TakeHashMove(Move& move, std::int32_t& score);
  bool Generated(Move wanted, int first) const;
  void GenerateCapturesOnce();
  void GenerateQuietsOnce();
  void ScoreCaptures();
  void ScoreQuiets();

  const PickerStage* stage_;
  Board& board_;
  Move hashMove_;
  int depth_;
  int iterationDepth_;
  bool capturesGenerated_ = false;
  bool quietsGenerated_ = false;
  std::int32_t captureCount_ = 0;
  BBMoveGenerator2 generator_;
  ScoredMoves goodCaptures_;
  ScoredMoves badCaptures_;
  ScoredMoves quiets_;
};

}  // namespace mirvo
