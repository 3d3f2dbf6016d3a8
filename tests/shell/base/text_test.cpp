#include "shell/base/text.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace mirvo {
namespace {

constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();

TEST(IsDigit, IsTrueForTheTenDigitsOnly) {
  for (char c = '0'; c <= '9'; ++c) EXPECT_TRUE(IsDigit(c)) << c;
  for (const char c : {'/', ':', '\0', 'a', '-', '\xB2'}) EXPECT_FALSE(IsDigit(c)) << c;
}

TEST(WithoutByteOrderMark, RemovesOneWholeMarkAtTheStart) {
  const struct {
    std::string_view text;
    std::string_view rest;
  } cases[] = {
      {"", ""},
      {"uci", "uci"},
      {"\xEF\xBB\xBFuci", "uci"},
      {"\xEF\xBB\xBF", ""},
      {"\xEF\xBB\xBF\xEF\xBB\xBF", "\xEF\xBB\xBF"},
      {"\xEF\xBBuci", "\xEF\xBBuci"},
      {"u\xEF\xBB\xBF", "u\xEF\xBB\xBF"},
  };
  for (const auto& [text, rest] : cases) EXPECT_EQ(WithoutByteOrderMark(text), rest);
}

TEST(ReadDecimal, ReadsTheLeadingDigits) {
  const struct {
    const char* text;
    std::int32_t value;
  } cases[] = {
      {"0", 0},
      {"7", 7},
      {"300000", 300000},
      {"-5", -5},
      {"+12", 12},
      {"  \t\r\n\v\f42", 42},
      {" -8 9", -8},
      {"12moves", 12},
      {"3.9", 3},
      {"007", 7},
      {"000000000000000000000000000000000000000000000000009", 9},
      {"", 0},
      {"   ", 0},
      {"-", 0},
      {"+", 0},
      {"- 5", 0},
      {"+-5", 0},
      {"--5", 0},
      {"depth", 0},
      {"x5", 0},
      {"0x10", 0},
      {"\xEF\xBC\x91", 0},  // a full-width digit is no digit
  };
  for (const auto& [text, value] : cases) {
    EXPECT_EQ(ReadDecimal(text), value) << '"' << text << '"';
  }
}

TEST(ReadDecimal, SaturatesBeyond32Bits) {
  EXPECT_EQ(ReadDecimal("2147483646"), highest - 1);
  EXPECT_EQ(ReadDecimal("2147483647"), highest);
  EXPECT_EQ(ReadDecimal("2147483648"), highest);
  EXPECT_EQ(ReadDecimal("21474836470"), highest);
  EXPECT_EQ(ReadDecimal("4294967296"), highest);
  EXPECT_EQ(ReadDecimal("18446744073709551617"), highest);
  EXPECT_EQ(ReadDecimal(std::string(5000, '9').c_str()), highest);
  EXPECT_EQ(ReadDecimal("-2147483647"), lowest + 1);
  EXPECT_EQ(ReadDecimal("-2147483648"), lowest);
  EXPECT_EQ(ReadDecimal("-2147483649"), lowest);
  EXPECT_EQ(ReadDecimal(("-" + std::string(5000, '9')).c_str()), lowest);
}

TEST(MultiplySaturated, StaysWithin32Bits) {
  EXPECT_EQ(MultiplySaturated(5, 1000), 5000);
  EXPECT_EQ(MultiplySaturated(-5, 1000), -5000);
  EXPECT_EQ(MultiplySaturated(2147483, 1000), 2147483000);
  EXPECT_EQ(MultiplySaturated(2147484, 1000), highest);
  EXPECT_EQ(MultiplySaturated(highest, highest), highest);
  EXPECT_EQ(MultiplySaturated(-2147484, 1000), lowest);
  EXPECT_EQ(MultiplySaturated(lowest, lowest), highest);
}

TEST(Saturate, KeepsWhatFits) {
  EXPECT_EQ(Saturate(0), 0);
  EXPECT_EQ(Saturate(highest), highest);
  EXPECT_EQ(Saturate(std::int64_t{highest} + 1), highest);
  EXPECT_EQ(Saturate(lowest), lowest);
  EXPECT_EQ(Saturate(std::int64_t{lowest} - 1), lowest);
}

TEST(IsBlank, KnowsTheSixBlanks) {
  for (int code = 0; code < 256; ++code) {
    const char c = static_cast<char>(code);
    const bool expected = std::string(" \t\n\r\v\f").find(c) != std::string::npos;
    EXPECT_EQ(IsBlank(c), expected) << code;
  }
}

TEST(SkipBlanks, StopsAtTheFirstOtherCharacter) {
  EXPECT_STREQ(SkipBlanks(" \t go"), "go");
  EXPECT_STREQ(SkipBlanks("go "), "go ");
  EXPECT_STREQ(SkipBlanks("  "), "");
  EXPECT_STREQ(SkipBlanks(""), "");
}

TEST(StartsWith, ComparesTheWholePrefix) {
  EXPECT_TRUE(StartsWith("ucinewgame", "uci"));
  EXPECT_TRUE(StartsWith("uci", "uci"));
  EXPECT_TRUE(StartsWith("uci", ""));
  EXPECT_FALSE(StartsWith("uc", "uci"));
  EXPECT_FALSE(StartsWith("UCI", "uci"));
  EXPECT_FALSE(StartsWith(" uci", "uci"));
  EXPECT_FALSE(StartsWith("", "uci"));
}

TEST(CopyText, CutsAtTheWidth) {
  for (const std::size_t length : {0U, 1U, 6U, 7U, 8U, 100U}) {
    char field[9] = "########";
    const std::string source(length, 'b');
    CopyText(field, 8, source.c_str());
    EXPECT_EQ(field, source.substr(0, 7)) << length;
    EXPECT_EQ(field[8], '\0');
  }
}

TEST(CopyText, FillsAFieldOfOneCharacterWithTheEmptyText) {
  char field[2] = {'x', 'y'};
  CopyText(field, 1, "book.bk");
  EXPECT_EQ(field[0], '\0');
  EXPECT_EQ(field[1], 'y');
}

TEST(ReadWord, TakesOneWordAfterAnother) {
  char word[10];
  const char* text = "  go\tdepth 7\r\n";
  text = ReadWord(text, word, sizeof word);
  EXPECT_STREQ(word, "go");
  text = ReadWord(text, word, sizeof word);
  EXPECT_STREQ(word, "depth");
  text = ReadWord(text, word, sizeof word);
  EXPECT_STREQ(word, "7");
  text = ReadWord(text, word, sizeof word);
  EXPECT_STREQ(word, "");
  EXPECT_STREQ(text, "");
}

TEST(ReadWord, CutsALongWordAndSkipsItsRest) {
  char word[5];
  EXPECT_STREQ(ReadWord("abcd next", word, sizeof word), " next");
  EXPECT_STREQ(word, "abcd");
  EXPECT_STREQ(ReadWord("abcde next", word, sizeof word), " next");
  EXPECT_STREQ(word, "abcd");
}

}  // namespace
}  // namespace mirvo
