#include <errno.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdio>

#include "shell/base/process.h"

namespace mirvo {
namespace {

TEST(PrepareProcess, MakesAClosedPipeAnOrdinaryWriteError) {
  void (*const before)(int) = signal(SIGPIPE, SIG_DFL);
  PrepareProcess();
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  close(ends[0]);
  EXPECT_EQ(write(ends[1], "x", 1), -1);
  EXPECT_EQ(errno, EPIPE);
  close(ends[1]);
  signal(SIGPIPE, before);
}

// In separate processes, which keep the signal action and the timer.
TEST(EndWithClosedPipe, LetsAWriteEndTheProcess) {
  EXPECT_EXIT(
      {
        PrepareProcess();
        EndWithClosedPipe();
        int ends[2];
        if (pipe(ends) != 0) _exit(1);
        close(ends[0]);
        const bool written = write(ends[1], "x", 1) == 1;
        _exit(written ? 2 : 3);
      },
      ::testing::KilledBySignal(SIGPIPE), "");
}

TEST(EndWithClosedPipe, EndsAProcessThatPrintsNothing) {
  EXPECT_EXIT(
      {
        int ends[2];
        if (pipe(ends) != 0) _exit(1);
        dup2(ends[1], STDOUT_FILENO);
        EndWithClosedPipe();
        close(ends[0]);
        alarm(0);  // the check is triggered below instead of waited for
        raise(SIGALRM);
        _exit(0);
      },
      ::testing::KilledBySignal(SIGPIPE), "");
}

TEST(EndWithClosedPipe, LeavesAProcessAloneThatIsRead) {
  EXPECT_EXIT(
      {
        int ends[2];
        if (pipe(ends) != 0) _exit(1);
        dup2(ends[1], STDOUT_FILENO);
        EndWithClosedPipe();
        raise(SIGALRM);
        _exit(0);
      },
      ::testing::ExitedWithCode(0), "");
}

TEST(UndoEndWithClosedPipe, GivesTheAlarmAndItsTimerBack) {
  EXPECT_EXIT(
      {
        PrepareProcess();
        signal(SIGALRM, [](int) { _exit(4); });
        alarm(1000);
        EndWithClosedPipe();
        EndWithClosedPipe();
        UndoEndWithClosedPipe();
        const bool ignored = signal(SIGPIPE, SIG_IGN) == SIG_IGN;
        const bool armed = alarm(0) > 900;
        if (ignored && armed) raise(SIGALRM);
        _exit(1);
      },
      ::testing::ExitedWithCode(4), "");
}

// In a separate process, which keeps the limit.
TEST(PrepareProcess, MakesAFileAtItsLargestSizeAnOrdinaryWriteError) {
  EXPECT_EXIT(
      {
        PrepareProcess();
        rlimit small;
        small.rlim_cur = small.rlim_max = 1;
        setrlimit(RLIMIT_FSIZE, &small);
        std::FILE* const file = std::tmpfile();
        const bool refused = write(fileno(file), "xy", 2) == 1 && write(fileno(file), "z", 1) == -1;
        _exit(refused && errno == EFBIG ? 0 : 1);
      },
      ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace mirvo
