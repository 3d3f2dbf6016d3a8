#include "shell/config/config_file.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "shell/base/file.h"
#include "shell/base/output.h"
#include "shell/base/text.h"

namespace mirvo {

namespace {

/// Room for one token. A longer one is truncated after most leading zeros of its
/// value have been dropped. No key is that long, and a number that still loses
/// digits is far beyond 32 bits.
constexpr std::size_t tokenCapacity = 1024;

/// Leading zeros that a long value keeps, enough to fill a book's name, the only
/// text value.
constexpr std::size_t keptZeros = sizeof EngineConfig::BookName;

struct NumberKey {
  const char* name;
  std::int32_t EngineConfig::*field;
};

constexpr NumberKey numberKeys[] = {
    {"DepthSearch", &EngineConfig::DepthSearch},
    {"UseOpeningBook", &EngineConfig::UseOpeningBook},
    {"InfiniteThinkingTime", &EngineConfig::InfiniteThinkingTime},
    {"PawnHashSize", &EngineConfig::PawnHashSize},
    {"EvalHashSize", &EngineConfig::EvalHashSize},
    {"TTHashSize", &EngineConfig::TTHashSize},
    {"AspirationWindow", &EngineConfig::AspirationWindow},
    {"FixedTimePerMove", &EngineConfig::FixedTimePerMove},
    {"UseMP", &EngineConfig::UseMP},
    {"NumberThreads", &EngineConfig::NumberThreads},
    {"StartIDDepth", &EngineConfig::StartIDDepth},
    {"LoggingMode", &EngineConfig::LoggingMode},
    {"Contempt", &EngineConfig::Contempt},
    {"MaxNumExtPerDepth", &EngineConfig::MaxNumExtPerDepth},
    {"Ponder", &EngineConfig::Ponder},
    {"MoveOverhead", &EngineConfig::MoveOverhead},
};

/// The only key with a text value.
constexpr char bookKey[] = "Book";

/// Whether the key of `length` characters at `key` is exactly `name`.
bool IsKey(const char* key, std::size_t length, const char* name) {
  return std::strlen(name) == length && std::memcmp(key, name, length) == 0;
}

/// Skips a byte-order mark at the start of a file. The bytes of an incomplete one
/// become the start of a token.
void SkipByteOrderMark(std::FILE* file, char* token, std::size_t& length) {
  for (const char expected : byteOrderMark) {
    const int c = std::fgetc(file);
    if (c != static_cast<unsigned char>(expected)) {
      if (c != EOF) std::ungetc(c, file);
      return;
    }
    token[length++] = expected;
  }
  length = 0;
}

/// Makes room in a full token by dropping all but keptZeros leading zeros of its
/// value. Returns the new length.
std::size_t DropLeadingZeros(char* token, std::size_t length) {
  const std::string_view text(token, length);
  std::size_t begin = text.find('=');
  if (begin == std::string_view::npos) return length;
  ++begin;
  if (begin < length && (text[begin] == '-' || text[begin] == '+')) ++begin;
  const std::size_t end = std::min(text.find_first_not_of('0', begin), length);
  if (end <= begin + keptZeros) return length;
  std::memmove(token + begin + keptZeros, token + end, length - end);
  return length - (end - begin - keptZeros);
}

/// Reads the next token, appending to the `length` characters that are already in
/// `token`. False at the end of the file.
bool ReadToken(std::FILE* file, char* token, std::size_t length) {
  int c = std::fgetc(file);
  while (length == 0 && c != EOF && IsBlank(static_cast<char>(c))) c = std::fgetc(file);
  bool full = false;
  for (; c != EOF && !IsBlank(static_cast<char>(c)); c = std::fgetc(file)) {
    if (!full && length + 1 == tokenCapacity) {
      length = DropLeadingZeros(token, length);
      full = length + 1 == tokenCapacity;
    }
    if (!full) token[length++] = static_cast<char>(c);
  }
  token[length] = '\0';
  return length > 0;
}

}  // namespace

void ReadConfigFile(EngineConfig& config, const char* path) {
  const File file = OpenReadable(path, "r");
  if (file == nullptr) {
    PrintToConsole("config.txt not found, using default values.\n");
    return;
  }
  char token[tokenCapacity];
  std::size_t length = 0;
  SkipByteOrderMark(file.get(), token, length);
  while (ReadToken(file.get(), token, length)) {
    ApplyConfigToken(config, token);
    length = 0;
  }
}

void ApplyConfigToken(EngineConfig& config, const char* token) {
  const char* const separator = std::strchr(token, '=');
  if (separator == nullptr) return;
  const auto keyLength = static_cast<std::size_t>(separator - token);
  const char* const value = separator + 1;
  for (const NumberKey& key : numberKeys) {
    if (IsKey(token, keyLength, key.name)) config.*key.field = ReadDecimal(value);
  }
  if (IsKey(token, keyLength, bookKey)) {
    CopyText(config.BookName, sizeof config.BookName, value);
    CopyText(bookFileOptionText, sizeof bookFileOptionText, value);
  }
}

void PrintConfig(const EngineConfig& config) {
  Output(output, "Config:\n");
  Output(output, "    DepthSearch=%d\n", config.DepthSearch);
  Output(output, "    UseOpeningBook=%d\n", config.UseOpeningBook);
  Output(output, "    PawnHashSize=%d\n", config.PawnHashSize);
  // The report calls the evaluation cache just "Hash".
  Output(output, "    HashSize=%d\n", config.EvalHashSize);
  Output(output, "    TTHashSize=%d\n", config.TTHashSize);
  Output(output, "    AspirationWindow=%d\n", config.AspirationWindow);
  Output(output, "    NumberThreads=%d\n", config.NumberThreads);
  Output(output, "    BookName=%s\n", config.BookName);
  Output(output, "    MaxNumExtPerDepth=%d\n", config.MaxNumExtPerDepth);
  Output(output, "    Ponder=%d\n", config.Ponder);
}

}  // namespace mirvo
