#include "search/time_control.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <sstream>
#include <string>

#include "search/pondering.h"
#include "search/search_flags.h"
#include "shell/base/clock.h"

namespace mirvo {
namespace {

struct AllocationCase {
  const char* name;
  std::int32_t movesToGo;
  std::int32_t timeLeft;
  std::int32_t increment;
  std::int32_t expected;
};

class Allocation : public testing::TestWithParam<AllocationCase> {};

TEST_P(Allocation, AllotsAndPrintsTheTime) {
  const AllocationCase& c = GetParam();
  SearchLimits limits;
  testing::internal::CaptureStdout();
  AllocateTime(limits, c.movesToGo, c.timeLeft, c.increment);
  const std::string printed = testing::internal::GetCapturedStdout();
  EXPECT_EQ(limits.milliseconds, c.expected);
  std::ostringstream line;
  line << "Allowing " << c.expected << " ms for move (" << c.movesToGo << ", " << c.timeLeft << ", "
       << c.increment << ")\n";
  EXPECT_EQ(printed, line.str());
}

constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();

INSTANTIATE_TEST_SUITE_P(
    Cases, Allocation,
    testing::Values(AllocationCase{"IncrementAndLittleTime", 0, 99, 1000, 30},
                    AllocationCase{"IncrementAtTheLimit", 0, 100, 1000, 454},
                    AllocationCase{"IncrementTooSmallForTheMargin", 0, 1000, 2, 0},
                    AllocationCase{"NegativeTimeWithIncrement", 0, -500, 100, 30},
                    AllocationCase{"ShortTime", 0, 4999, 0, 124},
                    AllocationCase{"MediumTimeFrom5000", 0, 5000, 0, 166},
                    AllocationCase{"MediumTimeTo30000", 0, 30000, 0, 1000},
                    AllocationCase{"LongTime", 0, 30001, 0, 1200},
                    AllocationCase{"MovesToGo", 40, 60000, 0, 1500},
                    AllocationCase{"MovesToGoIgnoresTheIncrement", 40, 60000, 5000, 1500},
                    AllocationCase{"NegativeBecomesZero", 40, -60000, 0, 0},
                    AllocationCase{"NegativeMovesToGo", -1, lowest, 0, highest},
                    AllocationCase{"NothingKnown", 0, 0, 0, 0},
                    AllocationCase{"HugeIncrement", 0, highest, highest, 1159641118}),
    [](const auto& named) { return named.param.name; });

TEST(Allotment, DoublingSaturates) {
  SearchLimits limits{.milliseconds = 1500};
  DoubleAllottedTime(limits);
  EXPECT_EQ(limits.milliseconds, 3000);
  limits.milliseconds = highest - 1;
  DoubleAllottedTime(limits);
  EXPECT_EQ(limits.milliseconds, highest);
}

std::uint32_t fakeTicks = 0;

class Clock : public testing::Test {
 protected:
  Clock() {
    SetTickSource([] { return fakeTicks; });
  }
  ~Clock() override { SetTickSource(nullptr); }

  SearchLimits limits;
};

TEST_F(Clock, TheTimeIsUpWhenMoreThanTheAllotmentHasPassed) {
  timeControl.startTime = 5000;
  limits.milliseconds = 100;
  fakeTicks = 5100;
  EXPECT_FALSE(TimeIsUp(limits));
  fakeTicks = 5101;
  EXPECT_TRUE(TimeIsUp(limits));
}

TEST_F(Clock, TheDefaultAllotmentIsUpAtOnce) {
  timeControl.startTime = 5000;
  fakeTicks = 5000;
  limits.milliseconds = noFixedTime;
  EXPECT_TRUE(TimeIsUp(limits));
}

TEST_F(Clock, TimesAreRightAcrossTheWrapOfTheClock) {
  timeControl.startTime = 0xFFFFFFF0U;
  limits.milliseconds = 100;
  fakeTicks = 0x10U;  // 32 ms later
  EXPECT_FALSE(TimeIsUp(limits));
  fakeTicks = 0x55U;  // 101 ms later
  EXPECT_TRUE(TimeIsUp(limits));
}

TEST_F(Clock, AClockStepBackwardsDoesNotEndTheSearch) {
  timeControl.startTime = 5000;
  limits.milliseconds = 100;
  fakeTicks = 4000;
  EXPECT_FALSE(TimeIsUp(limits));
}

struct DeadlineCase {
  const char* name;
  std::int32_t overhead;
  OwnClock clock;
  std::int32_t deadline;
};

class Deadline : public testing::TestWithParam<DeadlineCase> {};

TEST_P(Deadline, IsTheOwnClockLessTheOverhead) {
  SearchLimits limits{.deadline = 4711};
  SetDeadline(limits, GetParam().overhead, GetParam().clock);
  EXPECT_EQ(limits.deadline, GetParam().deadline);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, Deadline,
    testing::Values(DeadlineCase{"Usual", 50, {2000, true}, 1950},
                    DeadlineCase{"JustLeft", 50, {52, true}, 2},
                    DeadlineCase{"TheLastMillisecond", 50, {51, true}, 1},
                    DeadlineCase{"AsMuchAsTheOverhead", 50, {50, true}, 1},
                    DeadlineCase{"Less", 50, {10, true}, 1},
                    DeadlineCase{"NothingLeft", 50, {0, true}, 1},
                    DeadlineCase{"Overdrawn", 50, {-3000, true}, 1},
                    DeadlineCase{"OverdrawnByAll", highest, {lowest, true}, 1},
                    DeadlineCase{"EveryMillisecond", 1, {highest, true}, highest - 1},
                    DeadlineCase{"NoClock", 50, {0, false}, noDeadline},
                    DeadlineCase{"Off", 0, {2000, true}, noDeadline},
                    DeadlineCase{"BelowZeroIsOff", -50, {2000, true}, noDeadline}),
    [](const auto& named) { return named.param.name; });

TEST_F(Clock, TheTimeIsUpWhenTheDeadlineIsReached) {
  timeControl.startTime = 5000;
  limits.deadline = 100;
  limits.milliseconds = 2000;
  fakeTicks = 5099;
  EXPECT_FALSE(TimeIsUp(limits));
  fakeTicks = 5100;
  EXPECT_TRUE(TimeIsUp(limits));
  // The allotted time still ends the search before the deadline.
  limits.milliseconds = 50;
  fakeTicks = 5051;
  EXPECT_TRUE(TimeIsUp(limits));
}

// The deadline comes from the clock: doubling the allotted time does not move it.
TEST_F(Clock, DoublingTheAllotmentLeavesTheDeadline) {
  timeControl.startTime = 5000;
  limits.deadline = 100;
  limits.milliseconds = 80;
  DoubleAllottedTime(limits);
  EXPECT_EQ(limits.deadline, 100);
  fakeTicks = 5100;
  EXPECT_TRUE(TimeIsUp(limits));
}

TEST_F(Clock, APonderHitTurnsTheSearchIntoATimedOne) {
  fakeTicks = 7777;
  searchFlags.pondering = true;
  limits.infinite = true;
  ponderStats = PonderStats{2, 1};
  testing::internal::CaptureStdout();
  PonderHit(limits, 0, 60000, 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "PONDER HIT. CONTINUING\n"
            "Allowing 2400 ms for move (0, 60000, 0)\n"
            "Ponder hits = 3, misses = 1, percenthits = 75.0%\n");
  EXPECT_FALSE(limits.infinite);
  EXPECT_FALSE(searchFlags.pondering);
  EXPECT_EQ(timeControl.startTime, 7777U);
  EXPECT_EQ(limits.milliseconds, 2400);
  searchFlags = SearchFlags{};
  ponderStats = PonderStats{};
}

TEST(TimeLimits, AreStoredInTheSettingsAndReadFromThem) {
  EngineConfig config;
  StoreTimeLimits(config, {.depth = 3, .milliseconds = 700, .infinite = true});
  EXPECT_EQ(config.FixedTimePerMove, 700);
  EXPECT_EQ(config.InfiniteThinkingTime, 1);
  EXPECT_EQ(config.DepthSearch, 40);
  const SearchLimits limits = LimitsOf(config);
  EXPECT_EQ(limits.depth, 40);
  EXPECT_EQ(limits.milliseconds, 700);
  EXPECT_TRUE(limits.infinite);
  StoreTimeLimits(config, {});
  EXPECT_EQ(config.FixedTimePerMove, noFixedTime);
  EXPECT_EQ(config.InfiniteThinkingTime, 0);
}

TEST(PonderStatistics, NothingCountedReadsAsZero) {
  ponderStats = PonderStats{};
  testing::internal::CaptureStdout();
  PrintPonderStats();
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "Ponder hits = 0, misses = 0, percenthits = 0.0%\n");
}

}  // namespace
}  // namespace mirvo
