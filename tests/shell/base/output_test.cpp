#include "shell/base/output.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "tests/shell/temporary_folder.h"

namespace mirvo {
namespace {

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

/// A print record in a new folder for each test, so that no test sees another's
/// log.
class OutputTest : public testing::Test {
 protected:
  ~OutputTest() override {
    if (record.log != nullptr) {
      std::fclose(record.log);
    }
    std::free(record.buffer);
  }

  TemporaryFolder folder;
  OutputRecord record;
};

TEST_F(OutputTest, StartsWithConsoleBufferAndLog) {
  EXPECT_EQ(record.toConsole, 1);
  EXPECT_NE(record.buffer, nullptr);
  EXPECT_NE(record.log, nullptr);
  EXPECT_TRUE(std::filesystem::exists("mirvo_0.2.7_d_log.txt"));
}

TEST_F(OutputTest, WritesOneMessageToConsoleAndLog) {
  CaptureStdout();
  const std::uint32_t length = Output(record, "info depth %d score cp %d\n", 7, -31);
  // Fetching the captured output flushes every stream, so the log file is read
  // before: what it contains was flushed by the message itself.
  EXPECT_EQ(ReadFile(logFileName), "info depth 7 score cp -31\n");
  EXPECT_EQ(GetCapturedStdout(), "info depth 7 score cp -31\n");
  EXPECT_EQ(length, 26U);
}

TEST_F(OutputTest, PrintsCountsOf64BitsWhole) {
  CaptureStdout();
  Output(record, "%12llu %lld\n", 18446744073709551615ULL, -9223372036854775807LL);
  EXPECT_EQ(GetCapturedStdout(), "18446744073709551615 -9223372036854775807\n");
}

TEST_F(OutputTest, AppendsMessagesInOrder) {
  CaptureStdout();
  Output(record, "Setup");
  Output(record, ".");
  Output(record, ".");
  Output(record, "Done.\n");
  EXPECT_EQ(GetCapturedStdout(), "Setup..Done.\n");
  EXPECT_EQ(ReadFile(logFileName), "Setup..Done.\n");
}

TEST_F(OutputTest, WritesMessagesOfAnyLengthWhole) {
  for (const std::size_t length : {0U, 1U, 2046U, 2047U, 2048U, 2049U, 4096U, 100000U}) {
    const std::string message = std::string(length, 'm');
    const std::string before = ReadFile(logFileName);
    CaptureStdout();
    EXPECT_EQ(Output(record, "%s", message.c_str()), length);
    EXPECT_EQ(GetCapturedStdout(), message) << length;
    EXPECT_EQ(ReadFile(logFileName), before + message) << length;
  }
}

TEST_F(OutputTest, FormatsArgumentsOfALongMessageAgain) {
  const std::string padding(3000, '-');
  CaptureStdout();
  Output(record, "%s %d %s %llu\n", padding.c_str(), 17, "e2e4", 119060324ULL * 1000000ULL);
  EXPECT_EQ(GetCapturedStdout(), padding + " 17 e2e4 119060324000000\n");
}

TEST_F(OutputTest, TakesUserTextAsText) {
  CaptureStdout();
  Output(record, "Book File %s\n", "%n%s%d%5000d.bk");
  EXPECT_EQ(GetCapturedStdout(), "Book File %n%s%d%5000d.bk\n");
}

TEST_F(OutputTest, LeavesTheConsoleOutWhenTold) {
  record.toConsole = 0;
  CaptureStdout();
  Output(record, "only logged\n");
  EXPECT_EQ(GetCapturedStdout(), "");
  EXPECT_EQ(ReadFile(logFileName), "only logged\n");
}

TEST_F(OutputTest, WorksWithoutALog) {
  std::fclose(record.log);
  record.log = nullptr;
  CaptureStdout();
  EXPECT_EQ(Output(record, "readyok\n"), 8U);
  EXPECT_EQ(GetCapturedStdout(), "readyok\n");
}

TEST_F(OutputTest, WorksWithoutABuffer) {
  std::free(record.buffer);
  record.buffer = nullptr;
  const std::string longText(3000, 'x');
  CaptureStdout();
  Output(record, "readyok\n");
  Output(record, "%s", longText.c_str());
  EXPECT_EQ(GetCapturedStdout(), "readyok\n" + longText);
}

TEST_F(OutputTest, KeepsTheConsoleGoingWhenTheDiskIsFull) {
  std::FILE* const full = std::fopen("/dev/full", "w");
  if (full == nullptr) {
    GTEST_SKIP() << "no device that is always full";
  }
  std::fclose(record.log);
  record.log = full;
  const std::string longText(5000, 'x');
  CaptureStdout();
  Output(record, "id name\n");
  Output(record, "%s\n", longText.c_str());
  Output(record, "uciok\n");
  EXPECT_EQ(GetCapturedStdout(), "id name\n" + longText + "\nuciok\n");
}

TEST_F(OutputTest, KeepsConsoleOnlyTextsOutOfTheLog) {
  const std::string longText(4000, 'x');
  CaptureStdout();
  PrintToConsole("Final Score = %d\n", 12);
  PrintToConsole("%s", longText.c_str());
  EXPECT_EQ(GetCapturedStdout(), "Final Score = 12\n" + longText);
  EXPECT_EQ(ReadFile(logFileName), "");
}

TEST(OutputRecordTest, StartsTheLogAfresh) {
  const TemporaryFolder folder;
  WriteFile(logFileName, "an earlier run, longer than the next one\n");
  const OutputRecord record;
  ASSERT_NE(record.log, nullptr);
  EXPECT_EQ(ReadFile(logFileName), "");
  std::fclose(record.log);
  std::free(record.buffer);
}

TEST(OutputRecordTest, HasNoLogWhenItCannotBeOpened) {
  const TemporaryFolder folder;
  // A folder with that name prevents even root from opening the file.
  std::filesystem::create_directory(logFileName);
  OutputRecord record;
  EXPECT_EQ(record.log, nullptr);
  CaptureStdout();
  Output(record, "uciok\n");
  EXPECT_EQ(GetCapturedStdout(), "uciok\n");
  std::free(record.buffer);
}

}  // namespace
}  // namespace mirvo
