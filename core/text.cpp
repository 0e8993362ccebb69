#include "core/text.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace norvane {
namespace {

// Longest number text that is looked at; digits beyond it could not change a double that is not made to tease.
constexpr std::size_t max_parsed = 4096;

constexpr bool is_blank(char16_t unit) { return unit == u' ' || unit == u'\t'; }
// The C library's conversions skip these in front of a number, beside blank and tab.
constexpr bool is_space(char16_t unit) { return is_blank(unit) || (unit >= u'\n' && unit <= u'\r'); }
constexpr bool is_digit(char c) { return c >= '0' && c <= '9'; }

std::u16string_view trim_blanks(std::u16string_view text) noexcept {
  while (!text.empty() && is_blank(text.back())) text.remove_suffix(1);
  while (!text.empty() && is_space(text.front())) text.remove_prefix(1);
  return text;
}

// An ASCII copy; false when the text is too long or holds anything else.
bool to_ascii(std::u16string_view text, char (&buffer)[max_parsed], std::size_t& length) noexcept {
  if (text.empty() || text.size() > max_parsed) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] >= 0x80) return false;
    buffer[i] = static_cast<char>(text[i]);
  }
  length = text.size();
  return true;
}

// Overflow gives infinity and underflow zero, as strtod does; from_chars leaves the value alone in both cases.
double out_of_range_value(const char* first, const char* last, bool hexadecimal) noexcept {
  long exponent = 0;
  long scale = 0;  // digits before the point, or minus the zeros after it
  bool point = false;
  bool significant = false;
  const char marker = hexadecimal ? 'p' : 'e';
  const char* p = first;
  for (; p != last && (*p | 0x20) != marker; ++p) {
    if (*p == '.') {
      point = true;
    } else if (*p != '0' || significant) {
      significant = true;
      if (!point) ++scale;
    } else if (point) {
      --scale;
    }
  }
  if (p != last) {
    ++p;
    const bool negative = p != last && *p == '-';
    if (p != last && (*p == '-' || *p == '+')) ++p;
    for (; p != last && is_digit(*p); ++p) exponent = exponent < 100000000 ? exponent * 10 + (*p - '0') : exponent;
    if (negative) exponent = -exponent;
  }
  const long magnitude = exponent + scale * (hexadecimal ? 4 : 1);
  return magnitude > 0 ? std::numeric_limits<double>::infinity() : 0.0;
}

}  // namespace

int compare_ignoring_case(std::u16string_view a, std::u16string_view b) noexcept {
  const std::size_t n = a.size() < b.size() ? a.size() : b.size();
  for (std::size_t i = 0; i < n; ++i) {
    const int difference = static_cast<int>(fold_ascii_lower(a[i])) - static_cast<int>(fold_ascii_lower(b[i]));
    if (difference != 0) return difference;
  }
  return a.size() == b.size() ? 0 : (a.size() < b.size() ? -1 : 1);
}

bool parse_number(std::u16string_view text, double& value) noexcept {
  char buffer[max_parsed];
  std::size_t length = 0;
  if (!to_ascii(trim_blanks(text), buffer, length)) return false;
  const char* first = buffer;
  const char* const last = buffer + length;
  const bool negative = *first == '-';
  if (*first == '-' || *first == '+') ++first;
  // from_chars would take a second sign, which the C library does not.
  if (first == last || *first == '-' || *first == '+') return false;
  const bool hexadecimal = last - first > 2 && first[0] == '0' && (first[1] | 0x20) == 'x';
  if (hexadecimal) {
    first += 2;
    // Nor would it take "0xinf".
    if (!is_digit(*first) && *first != '.' && !((*first | 0x20) >= 'a' && (*first | 0x20) <= 'f')) return false;
  }
  double parsed = 0.0;
  const auto result =
      std::from_chars(first, last, parsed, hexadecimal ? std::chars_format::hex : std::chars_format::general);
  if (result.ptr != last || result.ec == std::errc::invalid_argument) return false;
  if (result.ec == std::errc::result_out_of_range) parsed = out_of_range_value(first, last, hexadecimal);
  value = negative ? -parsed : parsed;
  return true;
}

bool parse_integer(std::u16string_view text, std::int32_t& value) noexcept {
  char buffer[max_parsed];
  std::size_t length = 0;
  if (!to_ascii(trim_blanks(text), buffer, length)) return false;
  const char* first = buffer;
  const char* const last = buffer + length;
  if (*first == '+') {
    ++first;
    if (first == last || *first == '-') return false;
  }
  std::int32_t parsed = 0;
  const auto result = std::from_chars(first, last, parsed, 10);
  if (result.ptr != last || result.ec == std::errc::invalid_argument) return false;
  if (result.ec == std::errc::result_out_of_range)
    parsed = buffer[0] == '-' ? std::numeric_limits<std::int32_t>::min() : std::numeric_limits<std::int32_t>::max();
  value = parsed;
  return true;
}

std::size_t format_number(double value, char16_t (&buffer)[max_number_text + 1]) noexcept {
  char text[max_number_text];
  const auto result = std::to_chars(text, text + max_number_text, value, std::chars_format::general, 14);
  std::size_t length = static_cast<std::size_t>(result.ptr - text);
  if (length > 0 && text[length - 1] == '.') --length;
  for (std::size_t i = 0; i < length; ++i) buffer[i] = static_cast<char16_t>(text[i]);
  buffer[length] = u'\0';
  return length;
}

std::u16string format_number(double value) {
  char16_t buffer[max_number_text + 1];
  return {buffer, format_number(value, buffer)};
}

std::size_t format_integer(std::int32_t value, char16_t (&buffer)[max_number_text + 1]) noexcept {
  char text[max_number_text];
  const auto result = std::to_chars(text, text + max_number_text, value);
  const std::size_t length = static_cast<std::size_t>(result.ptr - text);
  for (std::size_t i = 0; i < length; ++i) buffer[i] = static_cast<char16_t>(text[i]);
  buffer[length] = u'\0';
  return length;
}

char32_t take_character(std::u16string_view text, std::size_t& position) noexcept {
  const char32_t unit = text[position++];
  if (unit < 0xD800 || unit > 0xDFFF) return unit;
  if (unit > 0xDBFF || position == text.size() || text[position] < 0xDC00 || text[position] > 0xDFFF) return 0xFFFD;
  return 0x10000 + ((unit - 0xD800) << 10) + (text[position++] - 0xDC00u);
}

char32_t take_character(std::string_view utf8, std::size_t& position) noexcept {
  const auto lead = static_cast<unsigned char>(utf8[position]);
  const std::size_t extra = lead < 0x80   ? 0
                            : lead < 0xC2 ? 4
                            : lead < 0xE0 ? 1
                            : lead < 0xF0 ? 2
                            : lead < 0xF5 ? 3
                                          : 4;
  char32_t character = extra == 0 ? lead : extra < 4 ? lead & (0x3Fu >> extra) : 0xFFFD;
  bool good = extra < 4 && position + extra < utf8.size();
  for (std::size_t k = 1; good && k <= extra; ++k) {
    const auto follow = static_cast<unsigned char>(utf8[position + k]);
    good = (follow & 0xC0) == 0x80;
    character = (character << 6) | (follow & 0x3Fu);
  }
  constexpr char32_t smallest[] = {0, 0x80, 0x800, 0x10000};
  good = good && character >= smallest[extra] && character <= 0x10FFFF && (character < 0xD800 || character > 0xDFFF);
  position += good ? extra + 1 : 1;
  return good ? character : 0xFFFD;
}

std::size_t put_character(char32_t character, char (&utf8)[4]) noexcept {
  if (character < 0x80) {
    utf8[0] = static_cast<char>(character);
    return 1;
  }
  const std::size_t count = character < 0x800 ? 2 : character < 0x10000 ? 3 : 4;
  constexpr unsigned leads[] = {0, 0, 0xC0, 0xE0, 0xF0};
  for (std::size_t i = count - 1; i > 0; --i, character >>= 6) utf8[i] = static_cast<char>(0x80 | (character & 0x3F));
  utf8[0] = static_cast<char>(leads[count] | character);
  return count;
}

std::size_t put_character(char32_t character, char16_t (&units)[2]) noexcept {
  if (character < 0x10000) {
    units[0] = static_cast<char16_t>(character);
    return 1;
  }
  units[0] = static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10));
  units[1] = static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FF));
  return 2;
}

std::string to_utf8(std::u16string_view text) {
  std::string out;
  out.reserve(text.size());
  char bytes[4];
  for (std::size_t i = 0; i < text.size();) out.append(bytes, put_character(take_character(text, i), bytes));
  return out;
}

std::u16string to_utf16(std::string_view text) {
  std::u16string out;
  out.reserve(text.size());
  char16_t units[2];
  for (std::size_t i = 0; i < text.size();) out.append(units, put_character(take_character(text, i), units));
  return out;
}

}  // namespace norvane
