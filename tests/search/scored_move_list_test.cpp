#include "search/scored_move_list.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <utility>
#include <vector>

namespace mirvo {
namespace {

using Scores = std::vector<std::int32_t>;
using Taken = std::vector<std::pair<int, std::int32_t>>;  // index and score

constexpr std::int32_t anyScore = -ScoredMoveList::maxScore;

void Fill(ScoredMoveList& list, const Scores& scores) {
  ScoredMoveList::Filler keys(list);
  for (const std::int32_t score : scores) keys.Add(score);
  keys.Close();
}

Taken TakeAll(ScoredMoveList& list, std::int32_t minimum) {
  Taken taken;
  std::int32_t score = 0;
  for (int index = 0; (index = list.TakeBest(minimum, score)) >= 0;) {
    taken.emplace_back(index, score);
    if (taken.size() > static_cast<std::size_t>(moveListCapacity)) break;  // would never end
  }
  return taken;
}

/// Indices in order of descending score, the earlier of equal ones first.
Taken Sorted(const Scores& scores) {
  std::vector<int> order(scores.size());
  std::iota(order.begin(), order.end(), 0);
  const auto scoreOf = [&](int index) { return scores[static_cast<std::size_t>(index)]; };
  std::stable_sort(order.begin(), order.end(),
                   [&](int a, int b) { return scoreOf(a) > scoreOf(b); });
  Taken sorted;
  for (const int index : order) sorted.emplace_back(index, scoreOf(index));
  return sorted;
}

/// Few different scores, so that many are equal.
Scores RandomScores(std::mt19937& random, int count) {
  Scores scores;
  for (int i = 0; i < count; ++i) scores.push_back(static_cast<std::int32_t>(random() % 41) - 20);
  return scores;
}

// Around the ends of blocks, and a full list.
constexpr int lengths[] = {0, 1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 63, 64, 65, 248, 249, 255, 256};

TEST(ScoredMoveList, GiveTheGreatestScoreFirst) {
  ScoredMoveList list;
  Fill(list, {3, 90, -4, 60, 0});
  EXPECT_EQ(TakeAll(list, anyScore), (Taken{{1, 90}, {3, 60}, {0, 3}, {4, 0}, {2, -4}}));
}

TEST(ScoredMoveList, GiveTheEarlierOfEqualScoresFirst) {
  ScoredMoveList list;
  Fill(list, {5, 7, 5, 7, -1, -1});
  EXPECT_EQ(TakeAll(list, anyScore), (Taken{{1, 7}, {3, 7}, {0, 5}, {2, 5}, {4, -1}, {5, -1}}));
}

TEST(ScoredMoveList, HoldBackWhatIsBelowTheMinimum) {
  ScoredMoveList list;
  Fill(list, {-1, 6, 5, -300, 4, 0});
  EXPECT_EQ(TakeAll(list, 5), (Taken{{1, 6}, {2, 5}}));
  EXPECT_EQ(TakeAll(list, 5), Taken{});
  EXPECT_EQ(TakeAll(list, 0), (Taken{{4, 4}, {5, 0}}));
  EXPECT_EQ(TakeAll(list, anyScore), (Taken{{0, -1}, {3, -300}}));
  EXPECT_EQ(TakeAll(list, anyScore), Taken{});
}

TEST(ScoredMoveList, LeaveTheScoreAloneWhenThereIsNoMove) {
  ScoredMoveList list;
  Fill(list, {-8});
  std::int32_t score = 77;
  EXPECT_EQ(list.TakeBest(-7, score), -1);
  EXPECT_EQ(score, 77);
  EXPECT_EQ(list.TakeBest(-8, score), 0);
  EXPECT_EQ(score, -8);
}

TEST(ScoredMoveList, ANewListIsEmpty) {
  ScoredMoveList list;
  EXPECT_EQ(list.PeekBest(anyScore), -1);
  EXPECT_EQ(TakeAll(list, anyScore), Taken{});
  Fill(list, {});
  EXPECT_EQ(list.PeekBest(anyScore), -1);
  EXPECT_EQ(TakeAll(list, anyScore), Taken{});
}

TEST(ScoredMoveList, PeekTellsTheNextIndexAndTakesNothing) {
  ScoredMoveList list;
  Fill(list, {2, -9, 11});
  std::int32_t score = 0;
  for (const int index : {2, 0}) {
    EXPECT_EQ(list.PeekBest(0), index);
    EXPECT_EQ(list.PeekBest(0), index);
    EXPECT_EQ(list.TakeBest(0, score), index);
  }
  EXPECT_EQ(list.PeekBest(0), -1);
  EXPECT_EQ(list.PeekBest(-9), 1);
  EXPECT_EQ(list.TakeBest(-9, score), 1);
  EXPECT_EQ(list.PeekBest(anyScore), -1);
}

TEST(ScoredMoveList, ListsOfEveryLengthAreSorted) {
  std::mt19937 random(8);
  ScoredMoveList list;
  for (const int length : lengths) {
    for (int round = 0; round < 20; ++round) {
      // Keys of the previous list are still there past the end.
      Fill(list, RandomScores(random, moveListCapacity));
      const Scores scores = RandomScores(random, length);
      Fill(list, scores);
      ASSERT_EQ(TakeAll(list, anyScore), Sorted(scores)) << length;
    }
  }
}

TEST(ScoredMoveList, TheExtremeScoresAreKept) {
  for (const int length : {2, 9, 256}) {
    Scores scores(static_cast<std::size_t>(length), 0);
    scores.front() = -ScoredMoveList::maxScore;
    scores.back() = ScoredMoveList::maxScore;
    ScoredMoveList list;
    Fill(list, scores);
    ASSERT_EQ(TakeAll(list, anyScore), Sorted(scores)) << length;
    std::swap(scores.front(), scores.back());
    Fill(list, scores);
    ASSERT_EQ(TakeAll(list, anyScore), Sorted(scores)) << length;
    Fill(list, Scores(static_cast<std::size_t>(length), -ScoredMoveList::maxScore));
    ASSERT_EQ(TakeAll(list, anyScore).size(), scores.size()) << length;
  }
}

TEST(ScoredMoveList, AReturnedMoveComesAtItsNewScore) {
  ScoredMoveList list;
  Fill(list, {50, 90, 20});
  std::int32_t score = 0;
  ASSERT_EQ(list.TakeBest(anyScore, score), 1);
  list.PutBack(1, 30);
  EXPECT_EQ(TakeAll(list, anyScore), (Taken{{0, 50}, {1, 30}, {2, 20}}));
}

TEST(ScoredMoveList, AReturnedMoveMayBeTheBestAgain) {
  ScoredMoveList list;
  Fill(list, {50, 90, 20});
  std::int32_t score = 0;
  ASSERT_EQ(list.TakeBest(anyScore, score), 1);
  list.PutBack(1, 89);
  EXPECT_EQ(list.PeekBest(anyScore), 1);
  EXPECT_EQ(TakeAll(list, anyScore), (Taken{{1, 89}, {0, 50}, {2, 20}}));
}

TEST(ScoredMoveList, ALastMoveIsReturnedAsOftenAsIsWanted) {
  ScoredMoveList list;
  Fill(list, {10});
  std::int32_t score = 0;
  for (std::int32_t lower = 9; lower >= -9; --lower) {
    ASSERT_EQ(list.TakeBest(anyScore, score), 0);
    EXPECT_EQ(score, lower + 1);
    list.PutBack(0, lower);
  }
  EXPECT_EQ(TakeAll(list, 0), Taken{});
  EXPECT_EQ(TakeAll(list, anyScore), (Taken{{0, -9}}));
}

TEST(ScoredMoveList, AReturnedMoveStandsAmongItsEqualsByIndex) {
  ScoredMoveList list;
  Fill(list, {7, 90, 7});
  std::int32_t score = 0;
  ASSERT_EQ(list.TakeBest(anyScore, score), 1);
  list.PutBack(1, 7);
  EXPECT_EQ(TakeAll(list, anyScore), (Taken{{0, 7}, {1, 7}, {2, 7}}));
}

// As the search uses it: the exchange value of a move is computed when its turn
// comes, and moves that lose material come last.
TEST(ScoredMoveList, LazyExchangeValuesGiveTheSameOrderAsEagerOnes) {
  std::mt19937 random(9);
  for (const int length : lengths) {
    for (int round = 0; round < 20; ++round) {
      Scores hoped = RandomScores(random, length);
      for (std::int32_t& score : hoped) score = std::abs(score);
      Scores known = hoped;
      for (std::int32_t& score : known) {
        if (random() % 2 == 0) score = -1 - static_cast<std::int32_t>(random() % 5);
      }
      ScoredMoveList list;
      Fill(list, hoped);
      Taken taken;
      std::int32_t score = 0;
      for (const std::int32_t minimum : {0, anyScore}) {
        for (int index = 0; (index = list.TakeBest(minimum, score)) >= 0;) {
          const std::int32_t loss = known[static_cast<std::size_t>(index)];
          if (score >= 0 && loss < 0) {
            list.PutBack(index, loss);
          } else {
            taken.emplace_back(index, score);
          }
          ASSERT_LE(taken.size(), known.size());
        }
      }
      ASSERT_EQ(taken, Sorted(known)) << length;
    }
  }
}

}  // namespace
}  // namespace mirvo
