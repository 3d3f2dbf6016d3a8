#include "shell/base/text.h"

#include <cstring>
#include <limits>

namespace mirvo {

namespace {

constexpr std::int64_t highest = std::numeric_limits<std::int32_t>::max();
constexpr std::int64_t lowest = std::numeric_limits<std::int32_t>::min();

}  // namespace

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f';
}

const char* SkipBlanks(const char* text) {
  while (IsBlank(*text)) ++text;
  return text;
}

bool StartsWith(const char* text, const char* prefix) {
  return std::strncmp(text, prefix, std::strlen(prefix)) == 0;
}

std::string_view WithoutByteOrderMark(std::string_view text) {
  if (text.starts_with(byteOrderMark)) text.remove_prefix(byteOrderMark.size());
  return text;
}

std::int32_t ReadDecimal(const char* text) {
  text = SkipBlanks(text);
  const bool negative = *text == '-';
  if (*text == '-' || *text == '+') ++text;
  std::int64_t magnitude = 0;
  for (; IsDigit(*text); ++text) {
    // Beyond 32 bits the result saturates anyway, so the sum need not grow.
    if (magnitude <= highest) magnitude = magnitude * 10 + (*text - '0');
  }
  return Saturate(negative ? -magnitude : magnitude);
}

std::int32_t MultiplySaturated(std::int32_t a, std::int32_t b) {
  return Saturate(std::int64_t{a} * b);
}

std::int32_t Saturate(std::int64_t value) {
  if (value > highest) {
    value = highest;
  } else if (value < lowest) {
    value = lowest;
  }
  return static_cast<std::int32_t>(value);
}

void CopyText(char* destination, std::size_t size, const char* source) {
  std::size_t length = 0;
  while (length + 1 < size && source[length] != '\0') {
    destination[length] = source[length];
    ++length;
  }
  destination[length] = '\0';
}

const char* ReadWord(const char* text, char* word, std::size_t size) {
  text = SkipBlanks(text);
  std::size_t length = 0;
  for (; *text != '\0' && !IsBlank(*text); ++text) {
    if (length + 1 < size) word[length++] = *text;
  }
  word[length] = '\0';
  return text;
}

}  // namespace mirvo
