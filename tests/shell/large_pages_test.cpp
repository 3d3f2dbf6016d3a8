#include "shell/large_pages.h"

#include <gtest/gtest.h>
#include <sys/mman.h>

#include "tests/support/memory_map.h"

namespace mirvo {
namespace {

constexpr std::size_t pageSize = 4096;
constexpr std::size_t nPages = 2048;

class LargePages : public testing::Test {
 protected:
  LargePages() {
    void* const given = mmap(nullptr, nPages * pageSize, PROT_READ | PROT_WRITE,
                             MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (given != MAP_FAILED) memory = static_cast<unsigned char*>(given);
  }
  ~LargePages() override {
    if (memory != nullptr) munmap(memory, nPages * pageSize);
  }
  void SetUp() override {
    ASSERT_NE(memory, nullptr);
    if (!test::KnowsLargePages()) GTEST_SKIP() << "no large pages on this system";
  }

  unsigned char* memory = nullptr;
};

TEST_F(LargePages, AreAskedForFromTheFirstWholePageOn) {
  memory[7] = 1;
  PreferLargePages(memory + 1, (nPages - 1) * pageSize);
  EXPECT_FALSE(test::AsksForLargePages(memory));
  EXPECT_TRUE(test::AsksForLargePages(memory + pageSize));
  EXPECT_TRUE(test::AsksForLargePages(memory + (nPages - 1) * pageSize - 1));
  EXPECT_EQ(memory[7], 1);
}

TEST_F(LargePages, AreAskedForFromTheStartWhereAPageBeginsThere) {
  PreferLargePages(memory + pageSize, pageSize);
  EXPECT_FALSE(test::AsksForLargePages(memory));
  EXPECT_TRUE(test::AsksForLargePages(memory + pageSize));
  EXPECT_FALSE(test::AsksForLargePages(memory + 2 * pageSize));
}

TEST_F(LargePages, AreNotAskedForWithinOnePage) {
  PreferLargePages(memory + 16, 0);
  PreferLargePages(memory + 16, pageSize - 16);
  EXPECT_FALSE(test::AsksForLargePages(memory));
  EXPECT_FALSE(test::AsksForLargePages(memory + pageSize));
}

// Addresses that hold nothing are the system's to refuse.
TEST_F(LargePages, AreNoMatterWhereThereIsNoMemory) {
  munmap(memory, nPages * pageSize);
  PreferLargePages(memory, nPages * pageSize);
  memory = nullptr;
}

}  // namespace
}  // namespace mirvo
