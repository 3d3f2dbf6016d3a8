// Whole searches while the clock wraps, stands still, jumps or runs backwards.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "search/iterate.h"
#include "search/search_flags.h"
#include "search/search_hooks.h"
#include "shell/base/clock.h"
#include "shell/base/protocol_mode.h"
#include "shell/config/config.h"
#include "tests/support/search_support.h"

namespace mirvo {
namespace {

constexpr char middleGame[] = "r4rk1/1pp1qppp/p1np1n2/2b1p1B1/2B1P1b1/P1NP1N2/1PP1QPPP/R4RK1 w -";

/// A clock that advances by `pace` between two readings, and by `step` at its
/// `stepAt`-th reading.
struct SteppingClock {
  std::uint32_t now = 0;
  int nReadings = 0;
  int stepAt = -1;
  std::int32_t step = 0;
  std::uint32_t pace = 1;
};

SteppingClock steppingClock;

std::uint32_t ReadSteppingClock() {
  if (steppingClock.nReadings++ == steppingClock.stepAt) {
    steppingClock.now += static_cast<std::uint32_t>(steppingClock.step);
  }
  steppingClock.now += steppingClock.pace;
  return steppingClock.now;
}

int nPolls = 0;

class ClockFaults : public testing::Test {
 protected:
  ClockFaults() : saved(engineConfig) {
    SetTickSource(ReadSteppingClock);
    protocolMode.mode = uciProtocol;
  }
  ~ClockFaults() override {
    SetTickSource(nullptr);
    std::construct_at(&engineConfig, saved);
    searchFlags = SearchFlags{};
    searchHooks = SearchHooks{};
    protocolMode = ProtocolMode{};
  }

  /// Searches with 30 ms for the move; the number of nodes.
  std::uint32_t SearchOn(const SteppingClock& clock) {
    test::ColdStart();
    steppingClock = clock;
    searchHooks.pollInput = poll;
    engineConfig.InfiniteThinkingTime = 0;
    engineConfig.FixedTimePerMove = 30;
    engineConfig.DepthSearch = 40;
    test::SetPosition(*board, middleGame);
    SearchRecord record = PrepareSearch(*board);
    testing::internal::CaptureStdout();
    const SearchResult result = Think(record);
    printed = testing::internal::GetCapturedStdout();
    EXPECT_NE(result.best, noMove);
    return record.state.nodeCount;
  }

  /// The times that the search reported, in their order.
  std::vector<int> ReportedTimes() const {
    constexpr char word[] = " time ";
    std::vector<int> times;
    for (const std::string& line : test::SplitLines(printed)) {
      const std::size_t found = line.find(word);
      if (found != std::string::npos) {
        times.push_back(std::stoi(line.substr(found + sizeof word - 1)));
      }
    }
    return times;
  }

  EngineConfig saved;
  void (*poll)() = nullptr;
  std::unique_ptr<Board> board = std::make_unique<Board>();
  std::string printed;
};

TEST_F(ClockFaults, AWrapInTheMiddleOfASearchChangesNothing) {
  const std::uint32_t nodes = SearchOn({.now = 5000});
  const std::vector<int> times = ReportedTimes();
  ASSERT_FALSE(times.empty());
  // Past 32 bits, past the highest signed number, and the wrap at the start.
  for (const std::uint32_t start : {0xFFFFFFF0U, 0x7FFFFFF0U, 0xFFFFFFFEU}) {
    EXPECT_EQ(SearchOn({.now = start}), nodes) << start;
    EXPECT_EQ(ReportedTimes(), times) << start;
  }
}

TEST_F(ClockFaults, AStepBackLengthensTheSearchByItsSizeAndNoMore) {
  const std::uint32_t plain = SearchOn({.now = 5000});
  const int plainReadings = steppingClock.nReadings;
  const std::uint32_t stepped = SearchOn({.now = 5000, .stepAt = 15, .step = -12});
  EXPECT_GT(stepped, plain);
  EXPECT_LE(steppingClock.nReadings, plainReadings + 12 + 1);
}

TEST_F(ClockFaults, AClockThatStepsBackBehindItsStartReportsNoNegativeTimes) {
  // An hour back after the start, with a pace that catches up again.
  SearchOn({.now = 10'000'000, .stepAt = 3, .step = -3'600'000, .pace = 20'000});
  const std::vector<int> times = ReportedTimes();
  ASSERT_FALSE(times.empty());
  for (const int time : times) EXPECT_GE(time, 0);
  EXPECT_EQ(printed.find("nps -"), std::string::npos);
}

TEST_F(ClockFaults, AJumpForwardEndsTheSearchAtTheNextReading) {
  SearchOn({.now = 5000, .stepAt = 15, .step = 3'600'000});
  // Readings up to the jump, and those of the reports at the end.
  EXPECT_LE(steppingClock.nReadings, 15 + 4);
}

// The search polls for commands by its node count, whatever the clock says.
TEST_F(ClockFaults, AClockThatStandsStillLeavesTheSearchToBeStopped) {
  nPolls = 0;
  poll = [] {
    if (++nPolls == 30) searchFlags.StopSearch = true;
  };
  SearchOn({.now = 5000, .pace = 0});
  EXPECT_EQ(nPolls, 30);
  for (const int time : ReportedTimes()) EXPECT_EQ(time, 0);
}

}  // namespace
}  // namespace mirvo
