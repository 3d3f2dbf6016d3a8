// Scores of a move list, laid out for finding the best one fast.
#pragma once

#include <cstdint>
#include <cstring>
#include <limits>

#include "board/bb_move_generator.h"

namespace mirvo {

/// One key a move: the score in the upper bits, below them how far the move is
/// from the end of the list. So keys differ, the greatest one is the earliest
/// of the moves with the greatest score, and it tells its own place.
class MoveKeys {
 public:
  /// Scores lie within +-maxScore.
  static constexpr std::int32_t maxScore = 1 << 22;

  /// Fills a list: made for it, given the scores in the order of the moves, and
  /// closed. Until then the count and the greatest key stay in registers.
  class Filler {
   public:
    explicit Filler(MoveKeys& list) : list_(list) {}

    void Add(std::int32_t score) {
      const std::int32_t key = score * places + (places - 1 - count_);
      list_.keys_[count_] = key;
      best_ = key > best_ ? key : best_;
      ++count_;
    }

    /// Fills the last block, and as many keys behind it as cost less than to
    /// tell how many those are.
    void Close() {
      for (int i = 0; i < block; ++i) list_.keys_[count_ + i] = taken;
      list_.count_ = count_;
      list_.best_ = best_;
    }

   private:
    MoveKeys& list_;
    std::int32_t count_ = 0;
    std::int32_t best_ = taken;
  };

  /// Takes the best move that is left with a score of at least `floor`: its place
  /// in the list and its score, or -1 when there is none.
  int TakeBest(std::int32_t floor, std::int32_t& score) {
    if (best_ < floor * places) return -1;
    const int place = PlaceOf(best_);
    score = best_ >> placeBits;
    best_ = GreatestBelow(best_);
    return place;
  }

  /// Puts the move that was taken last back, with a lower score.
  void Return(int place, std::int32_t score) {
    const std::int32_t key = score * places + (places - 1 - place);
    keys_[place] = key;
    best_ = key > best_ ? key : best_;
  }

  /// The place that TakeBest would tell, which is known at no cost.
  int PeekBest(std::int32_t floor) const { return best_ < floor * places ? -1 : PlaceOf(best_); }

 private:
  static constexpr int placeBits = 8;
  static constexpr int places = 1 << placeBits;
  static constexpr int block = 4;  // keys that the processor compares at a time
  static constexpr std::int32_t taken = std::numeric_limits<std::int32_t>::min();
  static_assert(moveListCapacity <= places);

  /// A block as one register of any x86-64 processor.
  using Lanes [[gnu::vector_size(block * sizeof(std::int32_t))]] = std::int32_t;
  static void KeepGreater(Lanes& best, const Lanes& other) { best = best > other ? best : other; }

  static int PlaceOf(std::int32_t key) { return places - 1 - (key & (places - 1)); }

  /// Greatest key below `limit`. The moves that were taken have the keys from
  /// there on: nothing has to be marked, and what was just written not read.
  std::int32_t GreatestBelow(std::int32_t limit) const {
    const Lanes none = Lanes{} + taken;
    Lanes best = none;
    for (int first = 0; first < count_; first += block) {
      Lanes keys;
      std::memcpy(&keys, keys_ + first, sizeof(keys));
      keys = keys < limit ? keys : none;
      KeepGreater(best, keys);
    }
    KeepGreater(best, __builtin_shufflevector(best, best, 2, 3, 0, 1));
    KeepGreater(best, __builtin_shufflevector(best, best, 1, 0, 3, 2));
    return best[0];
  }

  std::int32_t count_ = 0;
  std::int32_t best_ = taken;  // the greatest key left
  std::int32_t keys_[moveListCapacity + block];
};

}  // namespace mirvo
