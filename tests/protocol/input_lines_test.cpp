#include "protocol/input_lines.h"

#include <gtest/gtest.h>

#include "tests/protocol/fake_input.h"

namespace mirvo {
namespace {

class InputLines : public ::testing::Test {
 protected:
  void SetUp() override {
    fakeInput = FakeInput{};
    reader.source = &fakeSource;
  }

  /// All lines that complete without waiting, each in brackets.
  std::string Lines() {
    std::string lines;
    while (ReadLine(reader, false, line) == LineStatus::line) {
      lines += '[';
      lines += line;
      lines += ']';
    }
    return lines;
  }

  std::string LinesOf(const std::string& bytes) {
    fakeInput.bytes = bytes;
    fakeInput.ended = true;
    return Lines();
  }

  LineReader reader;
  char line[lineCapacity];
};

struct LineCase {
  const char* name;
  const char* bytes;
  const char* lines;
};

class InputLineCases : public InputLines, public ::testing::WithParamInterface<LineCase> {};

TEST_P(InputLineCases, AreTakenApart) { EXPECT_EQ(LinesOf(GetParam().bytes), GetParam().lines); }

INSTANTIATE_TEST_SUITE_P(
    All, InputLineCases,
    ::testing::Values(LineCase{"Nothing", "", ""}, LineCase{"OneLine", "uci\n", "[uci]"},
                      LineCase{"TwoLines", "uci\nisready\n", "[uci][isready]"},
                      LineCase{"EmptyLines", "\n\n", "[][]"},
                      LineCase{"LastLineWithoutEnd", "uci\nquit", "[uci][quit]"},
                      LineCase{"CarriageReturns", "uci\r\nquit\r\n", "[uci][quit]"},
                      LineCase{"OnlyOneCarriageReturn", "uci\r\r\n", "[uci\r]"},
                      LineCase{"CarriageReturnInside", "u\rci\n", "[u\rci]"},
                      LineCase{"ByteOrderMark", "\xEF\xBB\xBFuci\nuci\n", "[uci][uci]"},
                      LineCase{"ByteOrderMarkAlone", "\xEF\xBB\xBF", "[]"},
                      LineCase{"ByteOrderMarkLater", "uci\n\xEF\xBB\xBFx\n",
                               "[uci][\xEF\xBB\xBFx]"},
                      LineCase{"HalfByteOrderMark", "\xEF\xBBuci\n", "[\xEF\xBBuci]"}),
    [](const ::testing::TestParamInfo<LineCase>& testCase) { return testCase.param.name; });

TEST_F(InputLines, HalfALineWaitsForItsRest) {
  fakeInput.bytes = "isre";
  EXPECT_EQ(ReadLine(reader, false, line), LineStatus::nothing);
  fakeInput.bytes = "ady\nst";
  EXPECT_EQ(Lines(), "[isready]");
  fakeInput.bytes = "op\n";
  EXPECT_EQ(Lines(), "[stop]");
}

TEST_F(InputLines, SingleBytesMakeTheSameLines) {
  fakeInput.maxRead = 1;
  EXPECT_EQ(LinesOf("\xEF\xBB\xBFuci\r\nisready\nquit"), "[uci][isready][quit]");
}

TEST_F(InputLines, TheEndIsReportedAgainAndAgainAndMayPass) {
  fakeInput.ended = true;
  EXPECT_EQ(ReadLine(reader, true, line), LineStatus::ended);
  EXPECT_EQ(ReadLine(reader, true, line), LineStatus::ended);
  // A terminal continues after its user has typed the end-of-file character.
  fakeInput.bytes = "uci\n";
  EXPECT_EQ(Lines(), "[uci]");
}

TEST_F(InputLines, AWaitingReadThatIsCutShortGivesNothing) {
  EXPECT_EQ(ReadLine(reader, true, line), LineStatus::nothing);
}

TEST_F(InputLines, LinesThatWereReadAheadCountAsWaiting) {
  EXPECT_FALSE(InputWaits(reader));
  fakeInput.bytes = "a\nb\n";
  EXPECT_TRUE(InputWaits(reader));
  ReadLine(reader, false, line);
  EXPECT_TRUE(fakeInput.bytes.empty());
  EXPECT_TRUE(InputWaits(reader));
  ReadLine(reader, false, line);
  EXPECT_FALSE(InputWaits(reader));
}

TEST_F(InputLines, TheEndOfInputCountsAsWaiting) {
  fakeInput.ended = true;
  EXPECT_TRUE(InputWaits(reader));
}

TEST_F(InputLines, AZeroByteEndsTheTextOfItsLineOnly) {
  EXPECT_EQ(LinesOf(std::string("stop\0rest\nuci\n", 14)), "[stop][uci]");
}

// The limit of 4095 characters includes the line feed.
TEST_F(InputLines, ALineOf4094CharactersAndItsEndIsWhole) {
  const std::string text(4094, 'x');
  EXPECT_EQ(LinesOf(text + "\nuci\n"), "[" + text + "][uci]");
}

TEST_F(InputLines, ALineOf4094CharactersWithCarriageReturnIsWhole) {
  const std::string text(4094, 'x');
  EXPECT_EQ(LinesOf(text + "\r\nuci\n"), "[" + text + "][uci]");
}

TEST_F(InputLines, ACarriageReturnAtTheLimitStaysWhenTextFollows) {
  const std::string text(4094, 'x');
  EXPECT_EQ(LinesOf(text + "\ry\n"), "[" + text + "\r][y]");
}

TEST_F(InputLines, ALineOf4095CharactersLeavesItsEndBehind) {
  const std::string text(4095, 'x');
  EXPECT_EQ(LinesOf(text + "\nuci\n"), "[" + text + "][][uci]");
}

TEST_F(InputLines, ALongerLineIsSplit) {
  const std::string text(4095, 'x');
  EXPECT_EQ(LinesOf(text + text + "yz\n"), "[" + text + "][" + text + "][yz]");
}

TEST_F(InputLines, AFullLineIsGivenWithoutWaitingForMore) {
  fakeInput.bytes = std::string(4095, 'x');
  EXPECT_EQ(ReadLine(reader, false, line), LineStatus::line);
}

}  // namespace
}  // namespace mirvo
