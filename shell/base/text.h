// Bounded helpers for reading text from outside.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace mirvo {

/// Space, tab, line feed, carriage return, vertical tab or form feed.
bool IsBlank(char c);

/// A decimal digit of ASCII.
constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }

/// First character that is not a blank.
const char* SkipBlanks(const char* text);

/// Whether `text` begins with `prefix`.
bool StartsWith(const char* text, const char* prefix);

/// The byte-order mark of UTF-8, which some programs write at the start of a text.
inline constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

/// `text` without a byte-order mark at its start; part of a mark stays.
std::string_view WithoutByteOrderMark(std::string_view text);

/// Signed decimal number from the leading digits, after blanks and one sign.
/// No digits read as 0; values beyond 32 bits saturate.
std::int32_t ReadDecimal(const char* text);

/// `a * b` saturated to 32 bits, for unit conversions of numbers from outside.
std::int32_t MultiplySaturated(std::int32_t a, std::int32_t b);

/// `value` saturated to 32 bits.
std::int32_t Saturate(std::int64_t value);

/// Copies at most size - 1 characters and a terminating 0. `size` is above 0.
void CopyText(char* destination, std::size_t size, const char* source);

/// Copies the next blank-separated word (cut at size - 1 characters, the rest
/// of the word skipped) and returns the text behind it; at the end the word is
/// empty.
const char* ReadWord(const char* text, char* word, std::size_t size);

}  // namespace mirvo
