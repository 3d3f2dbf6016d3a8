#include "search/move_picker.h"

#include "search/hash/hash_table.h"
#include "search/move_order.h"
#include "search/static_exchange.h"

namespace mirvo {
namespace {

constexpr PickerStage stageList[] = {stageHashMove,    stageScoreCaptures, stageGoodCaptures,
                                     stageScoreQuiets, stageQuiets,        stageBadCaptures,
                                     stageEnd};

constexpr std::int32_t anyScore = -ScoredMoveList::maxScore;

}  // namespace

MovePicker::MovePicker(Board& position, Move fromHash, int nodeDepth, int iterationDepth)
    : stage_(stageList),
      board_(position),
      hashMove_(fromHash),
      depth_(nodeDepth),
      iterationDepth_(iterationDepth),
      generator_(position, position.sideToMove) {}

bool MovePicker::Next(Move& move, std::int32_t& score) {
  for (;; ++stage_) {
    switch (*stage_) {
      case stageHashMove:
        if (TakeHashMove(move, score)) return true;
        break;
      case stageScoreCaptures:
        ScoreCaptures();
        break;
      case stageGoodCaptures:
        if (TakeCapture(0, move, score)) return true;
        break;
      case stageScoreQuiets:
        ScoreQuiets();
        break;
      case stageQuiets:
        if (TakeQuiet(move, score)) return true;
        break;
      case stageBadCaptures:
        if (TakeCapture(anyScore, move, score)) return true;
        break;
      case stageEnd:
        return false;
      default:
        break;
    }
  }
}

// Accepts the hash move only if the generator offers it here. Returns the table's move
// word, which names the promotion piece.
bool MovePicker::TakeHashMove(Move& move, std::int32_t& score) {
  if (hashMove_ == noMove) return false;
  GenerateCapturesOnce();
  bool found = IsGenerated(hashMove_, 0);
  if (!found) {
    GenerateQuietsOnce();
    found = IsGenerated(hashMove_, captureCount_);
  }
  move = hashMove_;
  score = hashMoveScore;
  hashMove_ = noMove;
  return found;
}

bool MovePicker::IsGenerated(Move wanted, int first) const {
  for (int i = first; i < generator_.count; ++i) {
    if (SameMove(generator_.moves[i], wanted)) return true;
  }
  return false;
}

void MovePicker::GenerateCapturesOnce() {
  if (capturesGenerated_) return;
  capturesGenerated_ = true;
  generator_.GenerateCaptures();
  captureCount_ = generator_.count;
}

void MovePicker::GenerateQuietsOnce() {
  if (quietsGenerated_) return;
  quietsGenerated_ = true;
  generator_.GenerateNonCaptures();
}

void MovePicker::ScoreCaptures() {
  GenerateCapturesOnce();
  ScoredMoveList::Filler scores(scoredCaptures_);
  for (int i = 0; i < captureCount_; ++i) {
    const int victim = CaptureVictim(board_, generator_.moves[i]);
    const Move move = WithCaptured(generator_.moves[i], victim) | captureFlag;
    generator_.moves[i] = move;
    scores.Add(CaptureScore(move, victim));
  }
  scores.Close();
}

void MovePicker::ScoreQuiets() {
  GenerateQuietsOnce();
  const KillerEntry& killers = KillersAt(board_.plyCount);
  const Move firstKiller = Identity(killers.first);
  const Move secondKiller = Identity(killers.second);
  const int pvIndex = iterationDepth_ - depth_;
  const bool hasPvMove = pvIndex >= 0 && pvIndex < previousPv.length;
  const Move pvMove = hasPvMove ? Identity(previousPv.moves[pvIndex]) : noMove;
  const auto& history = HistoryTable[board_.sideToMove];
  ScoredMoveList::Filler scores(scoredQuiets_);
  for (int i = captureCount_; i < generator_.count; ++i) {
    const Move move = generator_.moves[i];
    std::int32_t score = history[FromSquare(move)][ToSquare(move)];
    const Move identity = Identity(move);
    if (identity == firstKiller || identity == secondKiller) {
      score = killerScore;
    } else if (identity == pvMove) {
      score = previousPvScore;
    }
    scores.Add(score);
  }
  scores.Close();
}

Move MovePicker::Peek() const {
  if (*stage_ == stageQuiets) {
    const int index = scoredQuiets_.PeekBest(anyScore);
    return index < 0 ? noMove : generator_.moves[captureCount_ + index];
  }
  if (*stage_ != stageGoodCaptures && *stage_ != stageBadCaptures) return noMove;
  const int index = scoredCaptures_.PeekBest(*stage_ == stageGoodCaptures ? 0 : anyScore);
  return index < 0 ? noMove : generator_.moves[index];
}

// Captures are first scored as if none lost material. The exchange value is computed
// when a capture's turn comes, because a cut-off makes most of them unnecessary; a
// capture that loses material goes back with its loss as the score. After the good
// captures every capture left is a losing one.
bool MovePicker::TakeCapture(std::int32_t minimum, Move& move, std::int32_t& score) {
  for (;;) {
    const int index = scoredCaptures_.TakeBest(minimum, score);
    if (index < 0) return false;
    move = generator_.moves[index];
    const std::int32_t loss = score >= 0 ? ExchangeLoss(board_, move) : 0;
    if (loss == 0) return true;
    scoredCaptures_.PutBack(index, loss);
  }
}

bool MovePicker::TakeQuiet(Move& move, std::int32_t& score) {
  const int index = scoredQuiets_.TakeBest(anyScore, score);
  if (index < 0) return false;
  move = generator_.moves[captureCount_ + index];
  return true;
}

}  // namespace mirvo
