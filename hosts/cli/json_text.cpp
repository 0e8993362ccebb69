#include "hosts/cli/json_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "core/text.h"

namespace norvane::cli {
namespace {

void append_escaped(std::string& out, std::string_view utf8) {
  out += '"';
  std::size_t clean = 0;
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    const auto c = static_cast<unsigned char>(utf8[i]);
    if (c >= 0x20 && c != '"' && c != '\\') continue;
    out.append(utf8, clean, i - clean);
    clean = i + 1;
    if (c == '"' || c == '\\') {
      out += '\\';
      out += static_cast<char>(c);
    } else if (c == '\n') {
      out += "\\n";
    } else if (c == '\t') {
      out += "\\t";
    } else if (c == '\r') {
      out += "\\r";
    } else {
      constexpr char digits[] = "0123456789abcdef";
      out += "\\u00";
      out += digits[c >> 4];
      out += digits[c & 15];
    }
  }
  out.append(utf8, clean, utf8.size() - clean);
  out += '"';
}

void append_error(std::string& out, std::uint32_t code) {
  out += "{\"error\":";
  append_text(out, error_text(code));
  out += '}';
}

// Bounds the recursion: an array within an array is nothing the framework makes.
void append_nested(std::string& out, const FUNCTION_ARG& value, int depth) {
  switch (value.kind) {
    case ARG_NUMBER:
      if (std::isfinite(value.number))
        append_number(out, value.number);
      else
        append_error(out, ERROR_NUM);
      return;
    case ARG_INTEGER: append_integer(out, value.integer); return;
    case ARG_BOOLEAN: out += value.boolean != 0 ? "true" : "false"; return;
    case ARG_STRING: append_text(out, value.text()); return;
    case ARG_ERROR: append_error(out, value.error); return;
    case ARG_ARRAY: {
      if (depth > 1) break;
      const std::size_t columns = value.array.columns;
      const std::size_t rows = value.array.rows;
      out += '[';
      for (std::size_t row = 0; row < rows; ++row) {
        if (row != 0) out += ',';
        if (columns != 1) out += '[';
        for (std::size_t column = 0; column < columns; ++column) {
          if (column != 0) out += ',';
          append_nested(out, value.array.elements[row * columns + column], depth + 1);
        }
        if (columns != 1) out += ']';
      }
      out += ']';
      return;
    }
    default: break;
  }
  out += "null";
}

}  // namespace

char* write_number(char* to, double value, int precision) noexcept {
  if (precision != 0) return std::to_chars(to, to + longest_number, value, std::chars_format::general, precision).ptr;
  // Readers of JSON take "-0" for an integer and lose the sign.
  if (value == 0.0 && std::signbit(value)) return std::copy_n("-0.0", 4, to);
  return std::to_chars(to, to + longest_number, value).ptr;
}

void append_number(std::string& out, double value) { append_number(out, value, 0); }

void append_number(std::string& out, double value, int precision) {
  char buffer[longest_number];
  out.append(buffer, write_number(buffer, value, precision));
}

void append_integer(std::string& out, std::int64_t value) {
  char buffer[24];
  const std::to_chars_result result = std::to_chars(buffer, buffer + sizeof buffer, value);
  out.append(buffer, result.ptr);
}

void append_text(std::string& out, std::string_view utf8) {
  for (const char c : utf8)
    if (static_cast<unsigned char>(c) >= 0x80) {
      append_escaped(out, to_utf8(to_utf16(utf8)));
      return;
    }
  append_escaped(out, utf8);
}

void append_text(std::string& out, std::u16string_view text) {
  const auto plain = [](char16_t c) { return c >= 0x20 && c < 0x80 && c != u'"' && c != u'\\'; };
  if (!std::all_of(text.begin(), text.end(), plain)) {
    append_escaped(out, to_utf8(text));
    return;
  }
  const std::size_t start = out.size();
  out.resize(start + text.size() + 2, '"');
  std::transform(text.begin(), text.end(), out.begin() + static_cast<std::ptrdiff_t>(start) + 1,
                 [](char16_t c) { return static_cast<char>(c); });
}

void append_value(std::string& out, const FUNCTION_ARG& value) { append_nested(out, value, 0); }

}  // namespace norvane::cli
