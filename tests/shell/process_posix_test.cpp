#include <errno.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdio>

#include "shell/process.h"

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

// In a process of its own, which the limit is left to.
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
