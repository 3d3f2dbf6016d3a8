// The scores of a move list, laid out for finding the best remaining move fast.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>

#include "board/bb_move_generator.h"

namespace mirvo {

/// Selects moves of a list by score, best first, as indices into the list. The key of a
/// move has the score in its upper bits and the largest index minus the move's index in
/// its lower bits. So all keys differ, the greatest key is that of the first of the
/// best moves, and it contains the move's index.
class ScoredMoveList {
 public:
  /// Scores lie within +-maxScore.
  static constexpr std::int32_t maxScore = 1 << 22;

  /// Fills a list: construct it, add the scores in the order of the moves, close
  /// it. Count and greatest key stay in registers until then.
  class Filler {
   public:
    explicit Filler(ScoredMoveList& list) : list_(list) {}

    void Add(std::int32_t score) {
      const std::int32_t key = KeyOf(score, count_);
      list_.keys_[count_] = key;
      best_ = key > best_ ? key : best_;
      ++count_;
    }

    /// Pads the last block. A whole block of padding costs less than counting
    /// how many keys are missing.
    void Close() {
      for (int i = 0; i < block; ++i) list_.keys_[count_ + i] = noKey;
      list_.count_ = count_;
      list_.best_ = best_;
    }

   private:
    ScoredMoveList& list_;
    std::int32_t count_ = 0;
    std::int32_t best_ = noKey;
  };

  /// Takes the best remaining move if its score is at least `minimum`: returns its index
  /// and writes its score. Otherwise returns -1.
  int TakeBest(std::int32_t minimum, std::int32_t& score) {
    const int index = PeekBest(minimum);
    if (index < 0) return -1;
    score = best_ >> indexBits;
    best_ = GreatestBelow(best_);
    return index;
  }

  /// Puts the move taken last back, with a lower score.
  void PutBack(int index, std::int32_t score) {
    const std::int32_t key = KeyOf(score, index);
    keys_[index] = key;
    best_ = key > best_ ? key : best_;
  }

  /// The index that TakeBest would return.
  int PeekBest(std::int32_t minimum) const {
    return best_ < minimum * indexRange ? -1 : IndexOf(best_);
  }

 private:
  static constexpr int indexBits = 8;
  static constexpr int indexRange = 1 << indexBits;
  static constexpr int block = 4;  // keys compared at a time
  static constexpr std::int32_t noKey = std::numeric_limits<std::int32_t>::min();
  static_assert(moveListCapacity <= indexRange);

  /// A block in one vector register, which every x86-64 processor has.
  using Lanes [[gnu::vector_size(block * sizeof(std::int32_t))]] = std::int32_t;
  static Lanes Greater(Lanes a, Lanes b) { return a > b ? a : b; }

  static std::int32_t KeyOf(std::int32_t score, int index) {
    return score * indexRange + (indexRange - 1 - index);
  }
  static int IndexOf(std::int32_t key) { return indexRange - 1 - (key & (indexRange - 1)); }

  /// Greatest key below `limit`. Moves already taken have keys from `limit` on, so they
  /// need no mark, which would cost a store-forwarding stall when the block is read.
  std::int32_t GreatestBelow(std::int32_t limit) const {
    const Lanes none = Lanes{} + noKey;
    Lanes best = none;
    for (int first = 0; first < count_; first += block) {
      Lanes keys;
      std::memcpy(&keys, keys_ + first, sizeof(keys));
      best = Greater(best, keys < limit ? keys : none);
    }
    best = Greater(best, Lanes{best[2], best[3], best[0], best[1]});
    return std::max(best[0], best[1]);
  }

  std::int32_t count_ = 0;
  std::int32_t best_ = noKey;  // the greatest key left
  std::int32_t keys_[moveListCapacity + block];
};

}  // namespace mirvo
