#include "search/move_picker.h"

#include "search/hash_table.h"
#include "search/move_order.h"
#include "search/static_exchange.h"

namespace mirvo {
namespace {

constexpr PickerStage stageList[] = {stageHashMove,    stageScoreCaptures, stageGoodCaptures,
                                     stageScoreQuiets, stageQuiets,        stageBadCaptures,
                                     stageEnd};

constexpr std::int32_t anyScore = -MoveKeys::maxScore;

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

// Only a move that the generator offers here is played; the word played is the
// table's, with its promotion piece.
bool MovePicker::TakeHashMove(Move& move, std::int32_t& score) {
  if (hashMove_ == noMove) return false;
  GenerateCapturesOnce();
  bool found = Generated(hashMove_, 0);
  if (!found) {
    GenerateQuietsOnce();
    found = Generated(hashMove_, captureCount_);
  }
  move = hashMove_;
  score = hashMoveScore;
  hashMove_ = noMove;
  return found;
}

bool MovePicker::Generated(Move wanted, int first) const {
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
  MoveKeys::Filler keys(captureKeys_);
  for (int i = 0; i < captureCount_; ++i) {
    const int victim = CaptureVictim(board_, generator_.moves[i]);
    const Move move = WithCaptured(generator_.moves[i], victim) | captureFlag;
    generator_.moves[i] = move;
    keys.Add(CaptureScore(move, victim));
  }
  keys.Close();
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
  MoveKeys::Filler keys(quietKeys_);
  for (int i = captureCount_; i < generator_.count; ++i) {
    const Move move = generator_.moves[i];
    std::int32_t score = history[FromSquare(move)][ToSquare(move)];
    const Move identity = Identity(move);
    if (identity == firstKiller || identity == secondKiller) {
      score = killerScore;
    } else if (identity == pvMove) {
      score = previousPvScore;
    }
    keys.Add(score);
  }
  keys.Close();
}

Move MovePicker::Peek() const {
  if (*stage_ == stageQuiets) {
    const int place = quietKeys_.PeekBest(anyScore);
    return place < 0 ? noMove : generator_.moves[captureCount_ + place];
  }
  if (*stage_ != stageGoodCaptures && *stage_ != stageBadCaptures) return noMove;
  const int place = captureKeys_.PeekBest(*stage_ == stageGoodCaptures ? 0 : anyScore);
  return place < 0 ? noMove : generator_.moves[place];
}

// Whether a capture loses is found out when its turn comes: after a cut-off
// nobody needs to know. The good ones are all taken before the first of the bad
// ones, so none of those is in doubt any more.
bool MovePicker::TakeCapture(std::int32_t floor, Move& move, std::int32_t& score) {
  for (;;) {
    const int place = captureKeys_.TakeBest(floor, score);
    if (place < 0) return false;
    move = generator_.moves[place];
    const std::int32_t loss = score >= 0 ? ExchangeLoss(board_, move) : 0;
    if (loss == 0) return true;
    captureKeys_.Return(place, loss);
  }
}

bool MovePicker::TakeQuiet(Move& move, std::int32_t& score) {
  const int place = quietKeys_.TakeBest(anyScore, score);
  if (place < 0) return false;
  move = generator_.moves[captureCount_ + place];
  return true;
}

}  // namespace mirvo
