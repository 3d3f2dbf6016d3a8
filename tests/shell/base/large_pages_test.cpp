#include "shell/base/large_pages.h"

#include <gtest/gtest.h>

#include <cstdint>

#include "tests/support/memory_map.h"

namespace mirvo {
namespace {

constexpr std::size_t nPages = 3;
constexpr std::size_t size = nPages * largePageSize;

class LargePages : public testing::Test {
 protected:
  LargePages() { memory = static_cast<unsigned char*>(ReserveMemory(size)); }
  ~LargePages() override {
    if (memory != nullptr) ReleaseMemory(memory, size);
  }
  void SetUp() override { ASSERT_NE(memory, nullptr); }

  unsigned char* memory = nullptr;
};

TEST_F(LargePages, ReservedMemoryIsAlignedAndNotThereYet) {
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(memory) % largePageSize, 0U);
  EXPECT_EQ(test::MissingPages(memory, size), size / test::SmallPageSize());
  EXPECT_EQ(memory[0], 0);
  EXPECT_EQ(memory[size - 1], 0);
}

TEST_F(LargePages, ReservedMemoryComesInSmallPages) {
  memory[largePageSize + 5] = 1;
  EXPECT_EQ(test::MissingPages(memory, size), size / test::SmallPageSize() - 1);
  EXPECT_FALSE(test::AsksForLargePages(memory));
}

TEST_F(LargePages, PrefaultingIsForOnePage) {
  PrefaultLargePage(memory + largePageSize);
  EXPECT_EQ(test::MissingPages(memory + largePageSize, largePageSize), 0U);
  EXPECT_EQ(test::MissingPages(memory, largePageSize), largePageSize / test::SmallPageSize());
  EXPECT_EQ(test::MissingPages(memory + 2 * largePageSize, largePageSize),
            largePageSize / test::SmallPageSize());
  if (!test::KnowsLargePages()) GTEST_SKIP() << "no large pages on this system";
  EXPECT_FALSE(test::AsksForLargePages(memory));
  EXPECT_TRUE(test::AsksForLargePages(memory + largePageSize));
  EXPECT_TRUE(test::AsksForLargePages(memory + 2 * largePageSize - 1));
  EXPECT_FALSE(test::AsksForLargePages(memory + 2 * largePageSize));
}

TEST_F(LargePages, PrefaultingKeepsContents) {
  memory[7] = 1;
  memory[largePageSize - 1] = 2;
  PrefaultLargePage(memory);
  EXPECT_EQ(memory[7], 1);
  EXPECT_EQ(memory[largePageSize - 1], 2);
  EXPECT_EQ(memory[8], 0);
}

TEST_F(LargePages, TouchingProvidesAndKeepsContents) {
  memory[test::SmallPageSize()] = 3;
  TouchMemory(memory, largePageSize);
  EXPECT_EQ(test::MissingPages(memory, largePageSize), 0U);
  EXPECT_GT(test::MissingPages(memory + largePageSize, largePageSize), 0U);
  EXPECT_EQ(memory[test::SmallPageSize()], 3);
}

TEST_F(LargePages, MemoryIsGivenBackFromItsEnd) {
  memory[0] = 1;
  memory[size - 1] = 1;
  const std::size_t left = ReleaseMemoryEnd(memory, size, largePageSize);
  EXPECT_EQ(left, size - largePageSize);
  EXPECT_EQ(memory[0], 1);
  EXPECT_EQ(test::MissingPages(memory + left, largePageSize), SIZE_MAX);  // nobody's
  EXPECT_EQ(ReleaseMemoryEnd(memory, left, size), 0U);
  EXPECT_EQ(test::MissingPages(memory, largePageSize), SIZE_MAX);
  memory = nullptr;
}

TEST(LargePagesRefused, MoreThanThereAreAddressesIsNull) {
  EXPECT_EQ(ReserveMemory(std::size_t{1} << 62), nullptr);
}

}  // namespace
}  // namespace mirvo
