// The staged move picker: hands one move at a time to the main and root
// search, best first, and generates no more than it has to.
#pragma once

#include <cstdint>

#include "board/bb_move_generator.h"
#include "board/board.h"
#include "board/move.h"
#include "search/move_keys.h"

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

/// One node's picker. Lives on the node's stack; nothing in it is allocated.
class MovePicker {
 public:
  /// `iterationDepth` - `depth` is the node's index in the previous PV.
  MovePicker(Board& position, Move fromHash, int nodeDepth, int iterationDepth);

  /// The next move and its ordering score; false when there is none left. A
  /// hash move may come a second time from a later stage.
  bool Next(Move& move, std::int32_t& score);

  /// The move that Next will give if the newest one's stage has another, or
  /// noMove. Nothing is generated or scored for the answer, so it may be a
  /// capture of which Next finds out first that it loses.
  Move Peek() const;

  /// Stage that the newest move came from.
  PickerStage Stage() const { return *stage_; }

 private:
  bool TakeHashMove(Move& move, std::int32_t& score);
  bool Generated(Move wanted, int first) const;
  void GenerateCapturesOnce();
  void GenerateQuietsOnce();
  void ScoreCaptures();
  void ScoreQuiets();
  bool TakeCapture(std::int32_t floor, Move& move, std::int32_t& score);
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
  MoveKeys captureKeys_;  // of the generator's first captureCount_ moves
  MoveKeys quietKeys_;    // of those behind them
};

}  // namespace mirvo
