#include "shell/base/clock.h"

#include <gtest/gtest.h>

#include <chrono>

namespace mirvo {
namespace {

std::uint32_t fakeTicks = 0;

std::uint32_t FakeTickCount() { return fakeTicks; }

class ClockTest : public testing::Test {
 protected:
  void SetUp() override { SetTickSource(FakeTickCount); }
  void TearDown() override { SetTickSource(nullptr); }
};

TEST_F(ClockTest, ReadsTheSourceItWasGiven) {
  fakeTicks = 4711;
  EXPECT_EQ(TickCount(), 4711U);
}

TEST_F(ClockTest, CountsFromAStart) {
  fakeTicks = 5500;
  EXPECT_EQ(ElapsedSince(5000), 500);
  EXPECT_EQ(ElapsedSince(5500), 0);
}

TEST_F(ClockTest, CountsAcrossTheWrap) {
  // The 32-bit count starts again after about 49 days.
  fakeTicks = 99;
  EXPECT_EQ(ElapsedSince(0xFFFFFF9CU), 199);
}

TEST_F(ClockTest, GivesANegativeTimeWhenTheClockWentBack) {
  fakeTicks = 1000;
  EXPECT_EQ(ElapsedSince(1250), -250);
}

TEST_F(ClockTest, RestoresTheSystemClock) {
  SetTickSource(nullptr);
  const std::uint32_t before = SystemTickCount();
  const auto elapsed = static_cast<std::int32_t>(TickCount() - before);
  EXPECT_GE(elapsed, 0);
  EXPECT_LT(elapsed, 60'000);
}

TEST_F(ClockTest, DoesNotSleepUnderAReplacedClock) {
  const std::uint32_t before = SystemTickCount();
  SleepMilliseconds(100'000);
  EXPECT_LT(static_cast<std::int32_t>(SystemTickCount() - before), 50'000);
}

TEST(SystemClock, NeverRunsBackwards) {
  std::uint32_t last = SystemTickCount();
  for (int i = 0; i < 10'000; ++i) {
    const std::uint32_t now = SystemTickCount();
    ASSERT_GE(static_cast<std::int32_t>(now - last), 0);
    last = now;
  }
}

TEST(SystemClock, CountsMilliseconds) {
  using Clock = std::chrono::steady_clock;
  constexpr std::int64_t span = 60;
  constexpr std::int64_t granularity = 20;  // some systems count in steps of 16 ms
  const auto milliseconds = [](Clock::duration length) {
    return std::int64_t{std::chrono::duration_cast<std::chrono::milliseconds>(length).count()};
  };
  const Clock::time_point outer = Clock::now();
  const std::uint32_t start = SystemTickCount();
  const Clock::time_point inner = Clock::now();
  while (milliseconds(Clock::now() - inner) < span) {
  }
  const std::int64_t counted = static_cast<std::int32_t>(SystemTickCount() - start);
  EXPECT_GE(counted, span - granularity);
  EXPECT_LE(counted, milliseconds(Clock::now() - outer) + granularity);
}

TEST(SystemClock, ReturnsFromZeroLengthSleeps) {
  YieldTimeSlice();
  SleepMilliseconds(0);
}

}  // namespace
}  // namespace mirvo
