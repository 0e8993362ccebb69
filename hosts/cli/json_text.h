// Writing JSON straight into a text.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "framework/function_arg.h"

namespace norvane::cli {

// The shortest text that reads back as the same number. The number must be finite.
void append_number(std::string& out, double value);
// The same into at most `longest_number` characters; answers their end.
inline constexpr std::size_t longest_number = 64;
char* write_number(char* to, double value, int precision) noexcept;
// The same with this number of significant digits; 0: as many as it takes.
void append_number(std::string& out, double value, int precision);
void append_integer(std::string& out, std::int64_t value);
// A JSON string, quotation marks included. Broken UTF-8 and unpaired surrogates become U+FFFD.
void append_text(std::string& out, std::string_view utf8);
void append_text(std::string& out, std::u16string_view text);
// A value of a call: null when it was not written, {"error":"#NUM!"} for a number JSON cannot hold, a list
// for one column, a list of rows for an array with more columns.
void append_value(std::string& out, const FUNCTION_ARG& value);

}  // namespace norvane::cli
