// Standard input of this platform, through real pipes and files.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <string>

#include "protocol/input.h"
#include "shell/base/clock.h"

namespace mirvo {
namespace {

class StandardInput : public ::testing::Test {
 protected:
  void SetUp() override {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    saved = dup(STDIN_FILENO);
    dup2(ends[0], STDIN_FILENO);
    close(ends[0]);
    writer = ends[1];
  }

  void TearDown() override {
    CloseWriter();
    dup2(saved, STDIN_FILENO);
    close(saved);
  }

  void CloseWriter() {
    if (writer >= 0) close(writer);
    writer = -1;
  }

  void Send(const std::string& bytes) const {
    ASSERT_EQ(write(writer, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  }

  int Read(bool wait) { return source.read(buffer, sizeof buffer, wait); }

  const InputSource& source = SystemInput();
  int saved = -1;
  int writer = -1;
  char buffer[64];
};

TEST_F(StandardInput, AnEmptyPipeHasNothing) {
  EXPECT_EQ(source.waiting(), 0U);
  EXPECT_EQ(Read(false), nothingToRead);
}

TEST_F(StandardInput, BytesAreCountedAndRead) {
  Send("stop\n");
  EXPECT_EQ(source.waiting(), 5U);
  ASSERT_EQ(Read(false), 5);
  EXPECT_EQ(std::memcmp(buffer, "stop\n", 5), 0);
  EXPECT_EQ(source.waiting(), 0U);
}

TEST_F(StandardInput, AReadTakesNoMoreThanItsRoom) {
  Send(std::string(sizeof buffer + 1, 'x'));
  EXPECT_EQ(Read(true), static_cast<int>(sizeof buffer));
  EXPECT_EQ(Read(false), 1);
}

TEST_F(StandardInput, AClosedPipeReportsInputAndReadsAsItsEnd) {
  Send("x");
  CloseWriter();
  EXPECT_EQ(source.waiting(), 1U);
  EXPECT_EQ(Read(false), 1);
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(source.waiting(), 1U);
    EXPECT_EQ(Read(false), inputEnded);
    EXPECT_EQ(Read(true), inputEnded);
  }
}

TEST_F(StandardInput, ClosedStandardInputReadsAsItsEnd) {
  close(STDIN_FILENO);
  EXPECT_EQ(source.waiting(), 1U);
  EXPECT_EQ(Read(true), inputEnded);
}

TEST_F(StandardInput, AFileEndsToo) {
  const int file = open("/dev/null", O_RDONLY);
  dup2(file, STDIN_FILENO);
  close(file);
  EXPECT_EQ(source.waiting(), 1U);
  EXPECT_EQ(Read(false), inputEnded);
}

TEST_F(StandardInput, ADirectoryReadsAsAnEnd) {
  const int folder = open("/", O_RDONLY);
  dup2(folder, STDIN_FILENO);
  close(folder);
  EXPECT_EQ(Read(true), inputEnded);
}

// Without input a wait returns after a while, so that its caller can check for
// signals.
TEST_F(StandardInput, AWaitWithoutInputReturnsToItsCaller) {
  const std::uint32_t start = TickCount();
  EXPECT_EQ(Read(true), nothingToRead);
  EXPECT_LT(ElapsedSince(start), 5000);
}

// Standard output is restored before anything is checked.
TEST_F(StandardInput, TellsWhetherAnybodyReadsTheOutput) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  const int before = dup(STDOUT_FILENO);
  dup2(ends[1], STDOUT_FILENO);
  close(ends[1]);
  const bool closedWhileOpen = source.outputClosed();
  close(ends[0]);
  const bool closedOnceClosed = source.outputClosed();
  const int file = open("/dev/null", O_WRONLY);
  dup2(file, STDOUT_FILENO);
  close(file);
  const bool closedInAFile = source.outputClosed();
  dup2(before, STDOUT_FILENO);
  close(before);
  EXPECT_FALSE(closedWhileOpen);
  EXPECT_TRUE(closedOnceClosed);
  EXPECT_FALSE(closedInAFile);
}

TEST_F(StandardInput, TheParentIsThere) { EXPECT_FALSE(source.parentExited()); }

}  // namespace
}  // namespace mirvo
