// How the dispatcher handles signals in an XBoard session. Each test runs in a
// separate process, so that none leaves signal handlers behind.
#include <signal.h>

#include <cstdlib>

#include "tests/protocol/uci_test_kit.h"

namespace mirvo {
namespace {

/// Exit status of a test's process that survives its statement.
constexpr int cameThrough = 42;

class SessionSignals : public UciTest {
 protected:
  void SetUp() override {
    UciTest::SetUp();
    // The tests may run in a shell's background job, which ignores interrupts.
    signal(SIGINT, SIG_DFL);
  }

  static void Say(const std::string& text) {
    fakeInput.bytes += text;
    RunIdle();
  }
};

TEST_F(SessionSignals, AnInterruptIsIgnoredUnderXboard) {
  EXPECT_EXIT(
      {
        Say("xboard\n");
        raise(SIGINT);
        std::exit(cameThrough);
      },
      ::testing::ExitedWithCode(cameThrough), "");
}

TEST_F(SessionSignals, AnInterruptEndsTheProcessOtherwise) {
  EXPECT_EXIT(
      {
        Say("uci\n");
        raise(SIGINT);
        std::exit(cameThrough);
      },
      ::testing::KilledBySignal(SIGINT), "");
  EXPECT_EXIT(
      {
        Say("xboard\nuci\n");
        raise(SIGINT);
        std::exit(cameThrough);
      },
      ::testing::KilledBySignal(SIGINT), "");
}

TEST_F(SessionSignals, UnderXboardTerminationWaitsForTheLinesInThePipe) {
  EXPECT_EXIT(
      {
        Say("xboard\nnew\nforce\n");
        raise(SIGTERM);
        fakeInput.bytes = "e2e4\ne7e5\n";
        Dispatch(protocolMode, false);
        if (gameBoard.plyCount != 1) std::exit(1);
        Dispatch(protocolMode, false);
        std::exit(cameThrough);
      },
      ::testing::ExitedWithCode(0), "");
}

TEST_F(SessionSignals, AnIdleProcessEndsAtItsNextTurn) {
  EXPECT_EXIT(
      {
        Say("xboard\nnew\n");
        raise(SIGTERM);
        Dispatch(protocolMode, false);
        std::exit(cameThrough);
      },
      ::testing::ExitedWithCode(0), "");
}

// A process that a blocking read keeps from its next turn.
TEST_F(SessionSignals, TheAlarmAfterATerminationEndsTheProcess) {
  EXPECT_EXIT(
      {
        Say("xboard\n");
        raise(SIGALRM);
        std::exit(cameThrough);
      },
      ::testing::ExitedWithCode(0), "");
}

TEST_F(SessionSignals, ASearchEndsTheProcessOnceNothingWaits) {
  xboardGame.think = [](SearchRecord&) -> SearchResult {
    fakeInput.bytes = "time 100\n";
    PollInput();
    std::exit(cameThrough);
  };
  EXPECT_EXIT(
      {
        Say("xboard\nnew\neasy\n");
        raise(SIGTERM);
        fakeInput.bytes = "go\n";
        Dispatch(protocolMode, false);
      },
      ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace mirvo
