#include "book/book_random.h"

#include <gtest/gtest.h>

#include <vector>

#include "book/opening_book.h"

namespace mirvo {
namespace {

std::vector<std::uint32_t> Draw(int n) {
  ResetRandom();
  std::vector<std::uint32_t> words;
  for (int i = 0; i < n; ++i) words.push_back(NextRandom());
  return words;
}

TEST(NextRandom, StartsFromTheSeedWords) {
  const std::vector<std::uint32_t> words = Draw(55);
  // Both indices walk down: 54 and 23, 53 and 22, ... until the lower wraps.
  for (int i = 0; i < 24; ++i) {
    EXPECT_EQ(words[static_cast<std::size_t>(i)], RandomSeedWords[54 - i] + RandomSeedWords[23 - i])
        << i;
  }
  // From the 25th number on the lagged word is an earlier result.
  EXPECT_EQ(words[24], RandomSeedWords[30] + words[0]);
  EXPECT_EQ(words[54], RandomSeedWords[0] + words[30]);
}

TEST(NextRandom, AddsTheNumbers55And24DrawsAgo) {
  const std::vector<std::uint32_t> words = Draw(2000);
  for (std::size_t n = 55; n < words.size(); ++n) {
    ASSERT_EQ(words[n], words[n - 55] + words[n - 24]) << n;
  }
}

TEST(NextRandom, HasAnOddSeedWord) {
  bool odd = false;
  for (const std::uint32_t word : RandomSeedWords) odd = odd || (word & 1) != 0;
  EXPECT_TRUE(odd);
}

TEST(NextRandom, ReachesEveryResidueEvenly) {
  // A hundred residues, ten thousand draws each on average. The bound is ten
  // standard deviations.
  std::vector<int> seen(100);
  for (const std::uint32_t word : Draw(1000000)) ++seen[word % 100];
  for (const int n : seen) EXPECT_NEAR(n, 10000, 1000);
}

}  // namespace
}  // namespace mirvo
