// Text: UTF-16 throughout, ASCII case folding, locale-independent numbers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace norvane {

constexpr char16_t fold_ascii_upper(char16_t unit) {
  return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - u'a' + u'A') : unit;
}

constexpr bool equal_ignoring_case(std::u16string_view a, std::u16string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i)
    if (fold_ascii_upper(a[i]) != fold_ascii_upper(b[i])) return false;
  return true;
}

constexpr char16_t fold_ascii_lower(char16_t unit) {
  return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit - u'A' + u'a') : unit;
}

// Order by code unit after folding 'A' to 'Z' to lower case, so that '_' comes before the letters ("AGA10_M"
// before "AGA10ex_M"); negative, zero or positive.
int compare_ignoring_case(std::u16string_view a, std::u16string_view b) noexcept;

// The whole text, blanks and tabs around it aside, as the C library's conversions read it in the "C" locale
// (decimal, hexadecimal, "inf", "nan"). False when anything else is left over or nothing is there.
bool parse_number(std::u16string_view text, double& value) noexcept;
// The same for a signed decimal integer; a value outside 32 bits saturates.
bool parse_integer(std::u16string_view text, std::int32_t& value) noexcept;

// Longest text that format_number writes, terminating NUL not counted.
inline constexpr std::size_t max_number_text = 32;

// 14 significant digits in the general form ("0.1", "100", "1e+20"), no trailing point; returns the length.
std::size_t format_number(double value, char16_t (&buffer)[max_number_text + 1]) noexcept;
std::u16string format_number(double value);
// Signed decimal; returns the length.
std::size_t format_integer(std::int32_t value, char16_t (&buffer)[max_number_text + 1]) noexcept;

// Unpaired surrogates and malformed bytes become U+FFFD.
std::string to_utf8(std::u16string_view text);
std::u16string to_utf16(std::string_view text);

// The same a character at a time, for callers with buffers of their own: takes the character at a position, which
// moves behind it, and puts one into at most four bytes or two units; the number of those.
char32_t take_character(std::u16string_view text, std::size_t& position) noexcept;
char32_t take_character(std::string_view utf8, std::size_t& position) noexcept;
std::size_t put_character(char32_t character, char (&utf8)[4]) noexcept;
std::size_t put_character(char32_t character, char16_t (&units)[2]) noexcept;

}  // namespace norvane
