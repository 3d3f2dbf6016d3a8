#include <errno.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

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

}  // namespace
}  // namespace mirvo
