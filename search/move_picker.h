// The staged move picker: gives the main and the root search one move at a time, best
// first, and generates moves only when they are needed.
#pragma once

#include <cstdint>

#include "board/bb_move_generator.h"
#include "board/board.h"
#include "board/move.h"
#include "search/scored_move_list.h"

namespace mirvo {

/// Stages in the order in which a node goes through them.
enum PickerStage : std::uint8_t {
  stageHashMove = 0,
  stageScoreCaptures = 2,
  stageGoodCaptures = 3,
  stageScoreQuiets = 4,
  stageQuiets = 7,
  stageBadCaptures = 8,
  stageEnd = 9,
};

/// Ordering scores of moves that need no list.
inline constexpr std::int32_t hashMoveScore = 100000;
inline constexpr std::int32_t killerScore = 10000;
inline constexpr std::int32_t previousPvScore = 10250;

/// The picker of one node, on its stack; allocates nothing.
class MovePicker {
 public:
  /// `iterationDepth` - `depth` is the node's index in the previous PV.
  MovePicker(Board& position, Move fromHash, int nodeDepth, int iterationDepth);

  /// The next move and its ordering score; false when there is none left. A
  /// hash move may come a second time from a later stage.
  bool Next(Move& move, std::int32_t& score);

  /// A cheap guess of the next move from Next: the best move left in the current stage,
  /// or noMove if that stage has none. Wrong for a capture that turns out to lose
  /// material.
  Move Peek() const;

  /// Stage of the newest move.
  PickerStage Stage() const { return *stage_; }

  /// Whether the newest move is a late one: quiet, or a capture that loses.
  bool AtLateMoves() const { return *stage_ >= stageQuiets; }

 private:
  bool TakeHashMove(Move& move, std::int32_t& score);
  bool IsGenerated(Move wanted, int first) const;
  void GenerateCapturesOnce();
  void GenerateQuietsOnce();
  void ScoreCaptures();
  void ScoreQuiets();
  bool TakeCapture(std::int32_t minimum, Move& move, std::int32_t& score);
  bool TakeQuiet(Move& move, std::int32_t& score);

  const PickerStage* stage_;
  Board& board_;
  Move hashMove_;
  int depth_;
  int iterationDepth_;
  bool capturesGenerated_ = false;
  bool quietsGenerated_ = false;
  std::int32_t captureCount_ = 0;
  BBMoveGenerator2 generator_;
  ScoredMoveList scoredCaptures_;  // of the generator's first captureCount_ moves
  ScoredMoveList scoredQuiets_;    // of those after them
};

}  // namespace mirvo
