// Input from a Windows pipe, up to the moment it is closed.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "protocol/input.h"

namespace mirvo {
namespace {

// One test, because the engine determines the kind of its input once per process.
TEST(PipeInput, IsSeenReadAndEnds) {
  HANDLE reading = nullptr;
  HANDLE writing = nullptr;
  ASSERT_NE(CreatePipe(&reading, &writing, nullptr, 0), 0);
  SetStdHandle(STD_INPUT_HANDLE, reading);
  const InputSource& input = SystemInput();
  char buffer[64];

  EXPECT_EQ(input.waiting(), 0U);
  EXPECT_EQ(input.read(buffer, sizeof buffer, false), nothingToRead);

  const std::string text = "stop\nisready\n";
  DWORD nWritten = 0;
  ASSERT_NE(WriteFile(writing, text.data(), static_cast<DWORD>(text.size()), &nWritten, nullptr),
            0);
  EXPECT_EQ(input.waiting(), text.size());
  // Read a part; the rest still counts as waiting.
  EXPECT_EQ(input.read(buffer, 5, false), 5);
  EXPECT_EQ(std::string(buffer, 5), "stop\n");
  EXPECT_EQ(input.waiting(), text.size() - 5);
  EXPECT_EQ(input.read(buffer, sizeof buffer, true), static_cast<int>(text.size() - 5));
  EXPECT_EQ(std::string(buffer, text.size() - 5), "isready\n");
  EXPECT_EQ(input.waiting(), 0U);

  // A closed pipe counts as waiting, so that the reader meets the end at once.
  CloseHandle(writing);
  EXPECT_EQ(input.waiting(), 1U);
  EXPECT_EQ(input.read(buffer, sizeof buffer, false), inputEnded);
  EXPECT_EQ(input.waiting(), 1U);
  EXPECT_EQ(input.read(buffer, sizeof buffer, true), inputEnded);
}

}  // namespace
}  // namespace mirvo
