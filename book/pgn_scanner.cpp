#include "book/pgn_scanner.h"

#include <cstring>

#include "shell/base/text.h"

namespace mirvo {
namespace {

bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

bool IsBlankByte(int byte) { return byte != endOfFile && IsBlank(static_cast<char>(byte)); }

bool EndsWord(int byte) {
  return byte == endOfFile || IsBlankByte(byte) || byte == '{' || byte == '(' || byte == ')' ||
         byte == ';' || byte == '[';
}

// A byte of the byte-order mark of UTF-8 or UTF-16.
bool IsMarkByte(int byte) {
  if (byte == endOfFile) return false;
  return byte == 0xFE || byte == 0xFF ||
         byteOrderMark.find(static_cast<char>(byte)) != std::string_view::npos;
}

bool EndsLine(int byte) { return byte == endOfFile || byte == '\n' || byte == '\r'; }

// The most recent characters of a stream, enough to see whether one of the short
// texts below has just ended.
class TextWindow {
 public:
  void Add(int byte) {
    std::memmove(last, last + 1, sizeof(last) - 1);
    last[sizeof(last) - 1] = static_cast<char>(byte);
  }
  bool EndsWith(const char* text) const {
    const std::size_t length = std::strlen(text);
    return std::memcmp(last + sizeof(last) - length, text, length) == 0;
  }

 private:
  char last[7] = {};
};

}  // namespace

// Skips zero bytes, which makes English text in 16-bit encodings readable.
int PgnScanner::NextCharacter() {
  if (atStart) SkipMark();
  int byte = bytes.Next();
  while (byte == 0) byte = bytes.Next();
  return byte;
}

int PgnScanner::PeekCharacter() {
  if (atStart) SkipMark();
  while (bytes.Peek() == 0) bytes.Next();
  return bytes.Peek();
}

// Skips the byte-order mark. Its bytes mean nothing else at the start of a game,
// so part of a mark is skipped as well.
void PgnScanner::SkipMark() {
  atStart = false;
  while (IsMarkByte(bytes.Peek())) bytes.Next();
}

void PgnScanner::SkipComment() {
  for (int byte = NextCharacter(); byte != endOfFile && byte != '}';) byte = NextCharacter();
}

void PgnScanner::SkipLine() {
  while (!EndsLine(NextCharacter())) {
  }
}

// Variations nest, and comments in them may contain any bracket. A tag at the
// start of a line ends an unclosed variation: it belongs to the next game.
void PgnScanner::SkipVariation() {
  std::int64_t depth = 1;
  bool lineStart = false;
  while (depth > 0) {
    if (lineStart && PeekCharacter() == '[') return;
    const int byte = NextCharacter();
    lineStart = EndsLine(byte) || byte == ';';
    if (byte == endOfFile) return;
    if (byte == '(') ++depth;
    if (byte == ')') --depth;
    if (byte == '{') SkipComment();
    if (byte == ';') SkipLine();
  }
}

void PgnScanner::ReadTag() {
  TextWindow window;
  bool whiteWins = false;
  bool blackWins = false;
  bool drawn = false;
  tagHasResult = false;
  for (int byte = NextCharacter(); byte != endOfFile && byte != ']'; byte = NextCharacter()) {
    window.Add(byte);
    // Each of the texts ends with one of these four characters.
    if (byte == 't' && window.EndsWith("Result")) tagHasResult = true;
    if (byte == '0' && window.EndsWith("1-0")) whiteWins = true;
    if (byte == '1' && window.EndsWith("0-1")) blackWins = true;
    if (byte == '2' && window.EndsWith("1/2-1/2")) drawn = true;
  }
  whitePoints = whiteWins ? 2 : drawn ? 1 : 0;
  blackPoints = blackWins ? 2 : drawn ? 1 : 0;
}

void PgnScanner::ReadWordText(int first) {
  int length = 0;
  word[length++] = static_cast<char>(first);
  while (!EndsWord(PeekCharacter())) {
    const int byte = NextCharacter();
    if (length < pgnWordCapacity - 1) word[length++] = static_cast<char>(byte);
  }
  word[length] = '\0';
}

PgnToken PgnScanner::Next() {
  for (;;) {
    const int byte = NextCharacter();
    if (byte == endOfFile) return PgnToken::end;
    if (byte == '[') {
      ReadTag();
      return PgnToken::tag;
    }
    if (byte == '{') {
      SkipComment();
    } else if (byte == '(') {
      SkipVariation();
    } else if (byte == ';') {
      SkipLine();
    } else if (byte != ')' && !IsBlankByte(byte)) {
      ReadWordText(byte);
      return PgnToken::word;
    }
  }
}

const char* MoveInWord(const char* word) {
  const char* text = word;
  while (IsDigit(*text)) ++text;
  if (text != word && *text == '.') {
    while (*text == '.') ++text;
  } else {
    text = word;
  }
  return IsLetter(*text) ? text : nullptr;
}

}  // namespace mirvo
