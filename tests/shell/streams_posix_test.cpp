#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "book/opening_book.h"
#include "search/hash/hash_allocation.h"
#include "search/hash/hash_table.h"
#include "shell/base/streams.h"
#include "shell/config/config.h"
#include "shell/startup.h"
#include "tests/shell/temporary_folder.h"

namespace mirvo {
namespace {

/// What can be read from a pipe without waiting.
std::string ReadWaiting(int pipeEnd) {
  fcntl(pipeEnd, F_SETFL, O_NONBLOCK);
  std::string text;
  char bytes[4096];
  ssize_t length = 0;
  while ((length = read(pipeEnd, bytes, sizeof bytes)) > 0) {
    text.append(bytes, static_cast<std::size_t>(length));
  }
  return text;
}

/// Releases the memory that start-up allocates.
void ReleaseStarted() {
  DestroyOpeningBook(openingBook);
  for (HashTable* const table : {&EvalHashTable, &PawnHashTable, &TranspositionTable}) {
    HashRelease(*table);
  }
}

TEST(StartUpStreams, LetNoTextWaitInABuffer) {
  const TemporaryFolder folder;
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  std::fflush(stdout);
  const int before = dup(STDOUT_FILENO);
  dup2(ends[1], STDOUT_FILENO);
  const char* const words[] = {"mirvo", "-test"};
  StartUp(2, words);
  // Written without the print routine and not flushed.
  std::fputs("at once", stdout);
  const std::string text = ReadWaiting(ends[0]);
  dup2(before, STDOUT_FILENO);
  close(before);
  close(ends[0]);
  close(ends[1]);
  EXPECT_EQ(text.substr(text.size() - 7), "at once");
  ReleaseStarted();
}

// The action of SIGPIPE after a start with these options.
void (*ActionAfterStart(std::initializer_list<const char*> options))(int) {
  const TemporaryFolder folder;
  void (*const before)(int) = signal(SIGPIPE, SIG_DFL);
  std::vector<const char*> words{"mirvo"};
  words.insert(words.end(), options);
  testing::internal::CaptureStdout();
  StartUp(static_cast<int>(words.size()), words.data());
  testing::internal::GetCapturedStdout();
  ReleaseStarted();
  std::construct_at(&engineConfig);
  return signal(SIGPIPE, before);
}

TEST(StartUpStreams, AClosedPipeDoesNotEndAnEngine) {
  EXPECT_EQ(ActionAfterStart({}), SIG_IGN);
  EXPECT_EQ(ActionAfterStart({"-quiet", "-time", "3", "-depth", "5", "-usebook", "b.bk"}), SIG_IGN);
}

TEST(StartUpStreams, AClosedPipeEndsATask) {
  for (const char* option : {"-perft", "--p", "-test", "-analyze", "--a", "-eval", "-createbook",
                             "-mergebooks", "-listmoves", "-bookstats"}) {
    EXPECT_EQ(ActionAfterStart({"-quiet", option}), SIG_DFL) << option;
  }
}

// Each in a separate process, which loses its streams.
TEST(StandardStreams, MissingOnesAreOccupied) {
  for (const int missing : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    EXPECT_EXIT(
        {
          close(missing);
          OccupyStandardStreams();
          const int next = open("/dev/null", O_RDONLY);
          char byte = 0;
          const bool silent = write(missing, "x", 1) == 1 && read(missing, &byte, 1) == 0;
          _exit(next > STDERR_FILENO && silent ? 0 : 1);
        },
        testing::ExitedWithCode(0), "")
        << missing;
  }
}

TEST(StandardStreams, NothingIsOpenedBesideCompleteOnes) {
  const int before = open("/dev/null", O_RDONLY);
  close(before);
  OccupyStandardStreams();
  const int after = open("/dev/null", O_RDONLY);
  close(after);
  EXPECT_EQ(after, before);
}

}  // namespace
}  // namespace mirvo
