#include "book/pgn_scanner.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/book/book_fixture.h"

namespace mirvo {
namespace {

// A text with n copies of a character in the middle.
std::string Around(const char* before, std::size_t n, char c, const char* after) {
  std::string text = before;
  text.append(n, c);
  text += after;
  return text;
}

// The tokens of a text: words as they are, tags as "[points:points]" or "[]"
// without a result.
std::string Scan(const std::string& text) {
  const ScratchDirectory scratch;
  std::FILE* file = std::fopen(scratch.Write("games.pgn", text).c_str(), "r");
  PgnScanner scanner(file);
  std::string tokens;
  for (PgnToken token = scanner.Next(); token != PgnToken::end; token = scanner.Next()) {
    if (!tokens.empty()) tokens += ' ';
    if (token == PgnToken::word) {
      tokens += scanner.Word();
    } else if (!scanner.TagHasResult()) {
      tokens += "[]";
    } else {
      tokens += '[';
      tokens += std::to_string(scanner.WhitePoints());
      tokens += ':';
      tokens += std::to_string(scanner.BlackPoints());
      tokens += ']';
    }
  }
  EXPECT_EQ(scanner.Next(), PgnToken::end);
  std::fclose(file);
  return tokens;
}

struct ScanCase {
  const char* name;
  std::string text;
  std::string tokens;
};

class ScanTest : public testing::TestWithParam<ScanCase> {};

TEST_P(ScanTest, GivesTagsAndWords) { EXPECT_EQ(Scan(GetParam().text), GetParam().tokens); }

INSTANTIATE_TEST_SUITE_P(
    Tags, ScanTest,
    testing::Values(ScanCase{"WhiteWins", "[Result \"1-0\"]", "[2:0]"},
                    ScanCase{"BlackWins", "[Result \"0-1\"]", "[0:2]"},
                    ScanCase{"Draw", "[Result \"1/2-1/2\"]", "[1:1]"},
                    ScanCase{"Unknown", "[Result \"*\"]", "[0:0]"},
                    ScanCase{"AnyTagThatSaysResult", "[FinalResult \"1-0\"]", "[2:0]"},
                    ScanCase{"ResultsElsewhere", "[Event \"1-0\"]", "[]"},
                    ScanCase{"CaseMatters", "[result \"1-0\"]", "[]"},
                    ScanCase{"Spread", "[Result\n\"1-0\"\n]", "[2:0]"},
                    ScanCase{"ResultAtTheEnd", "[x 0-1 Result]", "[0:2]"},
                    ScanCase{"TwoTags", "[a][b]", "[] []"},
                    ScanCase{"Unterminated", "[Result \"1-0\" e4 e5", "[2:0]"},
                    ScanCase{"Empty", "[]", "[]"},
                    ScanCase{"Long", Around("[", 100000, 'x', "Result 1-0]e4"), "[2:0] e4"},
                    ScanCase{"ClosedByTheFirstBracket", "[a ] b]", "[] b]"}),
    CaseName());

INSTANTIATE_TEST_SUITE_P(
    Words, ScanTest,
    testing::Values(ScanCase{"Blanks", " e4\te5\r\nNf3\v\fNc6 ", "e4 e5 Nf3 Nc6"},
                    ScanCase{"Nothing", "", ""}, ScanCase{"OnlyBlanks", " \n\r\n", ""},
                    ScanCase{"EndedByComment", "e4{c}e5", "e4 e5"},
                    ScanCase{"EndedByVariation", "e4(d4)e5", "e4 e5"},
                    ScanCase{"EndedByClosing", "e4)e5", "e4 e5"},
                    ScanCase{"EndedByLineComment", "e4;d4\ne5", "e4 e5"},
                    ScanCase{"EndedByTag", "e4[a]e5", "e4 [] e5"},
                    ScanCase{"ClosingBraceStays", "e4}e5", "e4}e5"},
                    ScanCase{"FileEndsInWord", "1. e4", "1. e4"},
                    ScanCase{"HighBytes", "\xC3\xA9", "\xC3\xA9"}),
    CaseName());

INSTANTIATE_TEST_SUITE_P(
    Comments, ScanTest,
    testing::Values(
        ScanCase{"Braces", "e4 {a (b [c} e5", "e4 e5"},
        ScanCase{"BracesDoNotNest", "{a {b} c}", "c}"},
        ScanCase{"BracesSpanLines", "{a\n[Result \"1-0\"]\n} e4", "e4"},
        ScanCase{"UnterminatedBrace", "e4 {e5\n\n[Result \"1-0\"]\ne4", "e4"},
        ScanCase{"Line", "e4 ; {[( \n e5", "e4 e5"},
        ScanCase{"LineEndsAtReturn", "e4 ;x\re5\r\n;y\r\nd4", "e4 e5 d4"},
        ScanCase{"LineAtTheEnd", "e4 ;x", "e4"}, ScanCase{"Variation", "e4 (d4 d5) e5", "e4 e5"},
        ScanCase{"Nested", "e4 (d4 (c4 (b4)) d5) e5", "e4 e5"},
        ScanCase{"CommentInVariation", "e4 (d4 {:)} d5) e5", "e4 e5"},
        ScanCase{"LineInVariation", "e4 (d4 ;:)\n d5) e5", "e4 e5"},
        ScanCase{"BracketInVariation", "e4 (d4 [x] d5) e5", "e4 e5"},
        ScanCase{"StrayClosing", ") e4 ))) e5", "e4 e5"},
        ScanCase{"UnterminatedVariation", "e4 (d4 (c4 c5) d5", "e4"},
        ScanCase{"TheNextGameEndsAnOpenVariation", "e4 ((d4\n[Result \"1-0\"]\ne5", "e4 [2:0] e5"},
        ScanCase{"SoDoesItAfterALineComment", "e4 (d4;)\n[a]\ne5", "e4 [] e5"},
        ScanCase{"LongComment", Around("e4 {", 10000000, '(', "} e5"), "e4 e5"},
        ScanCase{"DeepVariation", Around("e4 ", 1000000, '(', "") + Around("", 1000000, ')', "e5"),
                 "e4 e5"}),
    CaseName());

INSTANTIATE_TEST_SUITE_P(
    Encodings, ScanTest,
    testing::Values(ScanCase{"Mark", "\xEF\xBB\xBF[a]e4", "[] e4"},
                    ScanCase{"MarkBeforeAMove",
                             "\xEF\xBB\xBF"
                             "e4",
                             "e4"},
                    ScanCase{"MarkInTheMiddleIsAWord", "e4 \xEF\xBB\xBF", "e4 \xEF\xBB\xBF"},
                    ScanCase{"OnlyAMark", "\xEF\xBB\xBF", ""},
                    ScanCase{"ZeroBytes", std::string("e\0004\0 \0e5\0", 8), "e4 e5"},
                    ScanCase{"Wide",
                             std::string("\xFF\xFE[\0R\0e\0s\0u\0l\0t\0 \0001\0-\0000\0]\0"
                                         "e\0004\0",
                                         30),
                             "[2:0] e4"},
                    ScanCase{"WideSwapped", std::string("\xFE\xFF\0e\0004\0 \0e\0005", 12),
                             "e4 e5"}),
    CaseName());

TEST(PgnScanner, KeepsSixtyThreeCharactersOfAWord) {
  EXPECT_EQ(Scan(std::string(62, 'x')), std::string(62, 'x'));
  EXPECT_EQ(Scan(std::string(63, 'x')), std::string(63, 'x'));
  EXPECT_EQ(Scan(Around("", 64, 'x', " e4")), Around("", 63, 'x', " e4"));
  EXPECT_EQ(Scan(Around("", 1000000, 'x', " e4")), Around("", 63, 'x', " e4"));
}

struct MoveWordCase {
  const char* word;
  const char* move;  // null: no move
};

class MoveInWordTest : public testing::TestWithParam<MoveWordCase> {};

TEST_P(MoveInWordTest, SkipsTheNumber) {
  const char* move = MoveInWord(GetParam().word);
  if (GetParam().move == nullptr) {
    EXPECT_EQ(move, nullptr) << GetParam().word;
  } else {
    EXPECT_STREQ(move, GetParam().move);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Words, MoveInWordTest,
    testing::Values(
        MoveWordCase{"e4", "e4"}, MoveWordCase{"Nf3", "Nf3"}, MoveWordCase{"12.Nf3", "Nf3"},
        MoveWordCase{"12...Nf6", "Nf6"}, MoveWordCase{"1.O-O", "O-O"}, MoveWordCase{"zzz", "zzz"},
        MoveWordCase{"Z", "Z"}, MoveWordCase{"12.", nullptr}, MoveWordCase{"12", nullptr},
        MoveWordCase{"12...", nullptr}, MoveWordCase{"1-0", nullptr}, MoveWordCase{"0-1", nullptr},
        MoveWordCase{"1/2-1/2", nullptr}, MoveWordCase{"*", nullptr}, MoveWordCase{"$5", nullptr},
        MoveWordCase{"...", nullptr}, MoveWordCase{"...Nf6", nullptr}, MoveWordCase{"0-0", nullptr},
        MoveWordCase{"12Nf3", nullptr}, MoveWordCase{"1.$3", nullptr}, MoveWordCase{"}e4", nullptr},
        MoveWordCase{"\xC3\xA9", nullptr}, MoveWordCase{"", nullptr}));

}  // namespace
}  // namespace mirvo
