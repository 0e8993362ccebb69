// Bits and number bases: BitTest, Bits2Num, Num2Num.
#include <cmath>
#include <cstdint>
#include <iterator>

#include "framework/context.h"
#include "framework/general/arguments.h"
#include "framework/records.h"

namespace norvane::functions {
namespace {

// The low 32 bits of a number as a sheet holds it: below zero as a signed 32-bit integer (saturating), else
// as a 64-bit integer and beyond, where a double still is a whole number.
std::uint32_t low_bits(double number) noexcept {
  if (number < 0.0)
    return static_cast<std::uint32_t>(number > -2147483648.0 ? static_cast<std::int32_t>(number) : INT32_MIN);
  return static_cast<std::uint32_t>(std::fmod(number, 4294967296.0));
}

// The value of a digit in bases up to 16, or 16 for another character.
constexpr std::uint32_t digit_value(char16_t c) {
  if (c >= u'0' && c <= u'9') return c - u'0';
  if (c >= u'A' && c <= u'F') return c - u'A' + 10u;
  if (c >= u'a' && c <= u'f') return c - u'a' + 10u;
  return 16;
}

std::uint32_t bit_test(Function_CContext& context, FUNCTION_ARG* args, std::size_t count, FUNCTION_ARG& output) {
  const Arguments arg{args, count};
  double number = 0.0;
  std::int32_t bit = 0;
  if (!context.ReadNumber(arg[0], number) || !read_whole(context, arg[1], bit)) return ERROR_VALUE;
  if (!std::isfinite(number)) {
    context.ReportError(0, u"is not a finite number");
    return ERROR_VALUE;
  }
  if (static_cast<std::uint32_t>(bit) > 31) return ERROR_VALUE;
  output = FUNCTION_ARG::Integer(static_cast<std::int32_t>(low_bits(number) >> bit & 1u));
  return ERROR_OK;
}

std::uint32_t bits_to_number(Function_CContext& context, FUNCTION_ARG* args, std::size_t count,
                             FUNCTION_ARG& output) {
  constexpr std::uint32_t most_bits = 64;
  const Arguments arg{args, count};
  output = FUNCTION_ARG::Error(ERROR_VALUE);
  double sum = 0.0;
  FUNCTION_ARG::Array bits{};
  if (context.ReadArray(arg[0], bits)) {
    if (bits.columns > most_bits) {
      context.ReportError(0, u"should not be wider than 64 columns");
      return ERROR_VALUE;
    }
    double place = 1.0;
    for (std::uint32_t i = 0; i < (bits.rows != 0 ? bits.columns : 0); ++i, place *= 2.0) {
      std::int32_t bit = 0;
      if (!context.ReadInteger(&bits.elements[i], bit)) {
        context.ReportError(0, u"has a cell that is not a whole number");
        return ERROR_VALUE;
      }
      // The place counts whatever the bit is: n readable cells give 2^n - 1, and sheets rely on it. Intended.
      sum += place;
    }
  }
  std::int32_t base = 0;
  if (!read_whole(context, arg[1], base)) {
    context.ReportError(1, u"is not a whole number");
    return ERROR_VALUE;
  }
  // The description names 8 and 16 as well, but base 10 alone has ever been accepted. Intended.
  if (base != 10) {
    context.ReportError(1, u"should be 10");
    return ERROR_VALUE;
  }
  output = FUNCTION_ARG::Number(sum);
  return ERROR_OK;
}

std::uint32_t number_to_number(Function_CContext& context, FUNCTION_ARG* args, std::size_t count,
                               FUNCTION_ARG& output) {
  constexpr std::int64_t largest = 100000000000000000;
  constexpr std::size_t longest = 64;
  static_assert(largest < std::int64_t{1} << 57);  // the digits of the smallest base fit the longest text
  const Arguments arg{args, count};
  std::u16string_view text;
  std::int32_t from = 0;
  std::int32_t to = 0;
  std::int32_t length = 0;
  if (!context.ReadText(arg[0], text) || !read_whole(context, arg[1], from) || !read_whole(context, arg[2], to) ||
      !read_whole(context, arg[3], length))
    return ERROR_VALUE;
  if (from < 2 || from > 16 || to < 2 || to > 16 || length < 0 || length > static_cast<std::int32_t>(longest))
    return ERROR_VALUE;
  if (text.empty()) {
    context.ReportError(0, u"cannot be empty");
    return ERROR_VALUE;
  }
  std::int64_t value = 0;
  for (char16_t c : text) {
    const std::uint32_t digit = digit_value(c);
    if (digit >= static_cast<std::uint32_t>(from)) {
      context.ReportError(0, u"has a character that is no digit of the input base");
      return ERROR_VALUE;
    }
    value = value * from + digit;
    if (value > largest) {
      context.ReportError(0, u"should be lower or equal than: 100000000000000000");
      return ERROR_VALUE;
    }
  }
  char16_t digits[longest];
  std::size_t start = longest;
  for (; value != 0; value /= to) digits[--start] = u"0123456789ABCDEF"[value % to];
  const std::size_t at_least = length == 0 ? 1 : static_cast<std::size_t>(length);
  while (longest - start < at_least) digits[--start] = u'0';
  return context.SetText(output, {digits + start, longest - start}) ? ERROR_OK : ERROR_VALUE;
}

constexpr record::Input bit_test_inputs[] = {
    record::input(u"number", u"Number", u"Integer number", data_type::integer).required(),
    record::input(u"bit", u"Bit", u"Bit to test", data_type::integer).required().within(0, 31),
};
constexpr record::Output bit_test_outputs[] = {
    record::output(u"Test", u"Test", u"The tested bit (0 or 1)", data_type::integer, u""),
};

constexpr record::Input bits_inputs[] = {
    record::input(u"bits", u"Bits", u"Range of bits", data_type::any).required().range(),
    record::input(u"base", u"Base", u"Base (8,10,16)", data_type::integer).otherwise(10),
};
constexpr record::Output bits_outputs[] = {
    record::output(u"Num", u"Number", u"Sum of the place values", data_type::num, u""),
};

constexpr record::Input number_inputs[] = {
    record::input(u"input value", u"Input value", u"Input value as string (integer value)", data_type::text)
        .required(),
    record::input(u"input value base", u"Input base", u"Input base (2-16)", data_type::integer)
        .required()
        .within(2, 16),
    record::input(u"output value base", u"Output base", u"Output base (2-16)", data_type::integer)
        .required()
        .within(2, 16),
    record::input(u"mini output length", u"Output length", u"Output length (padded with zero's)", data_type::integer)
        .required()
        .within(0, 64),
};
constexpr record::Output number_outputs[] = {
    record::output(u"Num", u"Number", u"The value in the output base", data_type::text, u""),
};

}  // namespace

extern const record::Function BitTest;
const record::Function BitTest = {
    .group = GroupId::Extended,
    .id = u"BitTest",
    .description = u"Tests a bit of an integer number",
    .category = u"General",
    .subcategory = u"Extended",
    .inputs = bit_test_inputs,
    .outputs = bit_test_outputs,
    .implementation = bit_test,
    .notes =
        u"A negative number is taken as a signed 32-bit integer (two's complement), any other by its low "
        u"32 bits; a fraction is cut off.\n",
};

extern const record::Function Bits2Num;
const record::Function Bits2Num = {
    .group = GroupId::Extended,
    .id = u"Bits2Num",
    .description = u"Converts a range of bits to a number",
    .category = u"General",
    .subcategory = u"Extended",
    .flags = FUNCTION_FALLBACK | FUNCTION_NO_RANGE_CHECK,
    .inputs = bits_inputs,
    .outputs = bits_outputs,
    .implementation = bits_to_number,
    .notes =
        u"Adds the place values 1, 2, 4, ... of the cells of the first row, at most 64. The cells must be readable "
        u"as whole numbers but their values are not used: n cells give 2^n - 1.\n"
        u"Only base 10 (the default) is accepted.\n",
};

extern const record::Function Num2Num;
const record::Function Num2Num = {
    .group = GroupId::Extended,
    .id = u"Num2Num",
    .description = u"Converts a whole number from one base to another",
    .category = u"General",
    .subcategory = u"Extended",
    .inputs = number_inputs,
    .outputs = number_outputs,
    .implementation = number_to_number,
    .notes =
        u"The value is written without blanks or a sign and is at most 100000000000000000 (1e17); "
        u"digits above 9 are A to F in either case, and upper case in the result.\n",
};

}  // namespace norvane::functions
