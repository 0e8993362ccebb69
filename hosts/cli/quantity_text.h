// Numbers as people type them, with and without a unit.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace norvane::cli {

// Without blanks and tabs at both ends.
std::string_view trimmed(std::string_view text);

// digits / 10^fraction, where the division rounds but once: a whole number up to 2^53 and the power of ten are exact.
// False when they are not, or when `count` digits may not have fitted into 64 bits.
inline bool exact_quotient(std::uint64_t digits, std::size_t count, std::size_t fraction, double& value) noexcept {
  constexpr double tens[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,
                             1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19};
  if (count > 19 || digits > std::uint64_t{1} << 53) return false;
  value = static_cast<double>(digits) / tens[fraction];
  return true;
}

// The plain decimal number at the front of a text, "-12.5": a sign, digits, a decimal sign and digits, up to the end of
// the text or a delimiter. Answers where that is; null when something else stands there, or more digits than are exact.
inline const char* read_plain_number(const char* text, const char* end, char decimal, char delimiter,
                                     double& value) noexcept {
  const bool negative = text != end && *text == '-';
  if (negative) ++text;
  std::uint64_t digits = 0;
  const auto take_digits = [&] {
    const char* const first = text;
    for (; text != end && static_cast<unsigned char>(*text - '0') < 10; ++text)
      digits = digits * 10 + static_cast<unsigned char>(*text - '0');
    return static_cast<std::size_t>(text - first);
  };
  const std::size_t whole = take_digits();
  std::size_t fraction = 0;
  if (text != end && *text == decimal && decimal != delimiter) {
    ++text;
    fraction = take_digits();
    if (fraction == 0) return nullptr;
  }
  if (whole == 0 || (text != end && *text != delimiter) || !exact_quotient(digits, whole + fraction, fraction, value))
    return nullptr;
  if (negative) value = -value;
  return text;
}

// A whole text that is a number. With a decimal comma a point is no part of a number, so that "1.234" of a file
// with thousands separators is never taken for 1.234.
bool read_number(std::string_view text, char decimal, double& value);

// A number that may be followed by a unit: "60", "870psia", "68 degF".
struct Quantity {
  double value = 0.0;
  std::string_view unit;  // empty when there is none
};
// False when the text is something else.
bool read_quantity(std::string_view text, char decimal, Quantity& quantity);

}  // namespace norvane::cli
