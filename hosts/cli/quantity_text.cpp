#include "hosts/cli/quantity_text.h"

#include <algorithm>
#include <charconv>

#include "core/text.h"

namespace norvane::cli {
namespace {

bool read_point_number(std::string_view text, double& value) {
  const char* const end = text.data() + text.size();
  const std::from_chars_result result = std::from_chars(text.data(), end, value);
  if (result.ec == std::errc() && result.ptr == end) return true;
  // Blanks around it, a leading '+', hexadecimal: what a text argument of a call may be.
  return parse_number(to_utf16(text), value);
}

}  // namespace

std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

bool read_number(std::string_view text, char decimal, double& value) {
  const char* const end = text.data() + text.size();
  if (!text.empty() && read_plain_number(text.data(), end, decimal, '\0', value) == end) return true;
  if (decimal == '.') return read_point_number(text, value);
  if (text.find('.') != std::string_view::npos) return false;
  std::string point(text);
  std::replace(point.begin(), point.end(), ',', '.');
  return read_point_number(point, value);
}

bool read_quantity(std::string_view text, char decimal, Quantity& quantity) {
  text = trimmed(text);
  quantity.unit = {};
  if (read_number(text, decimal, quantity.value)) return true;
  if (text.starts_with('+')) text.remove_prefix(1);
  if (text.empty() || !(text[0] == '-' || text[0] == '.' || (text[0] >= '0' && text[0] <= '9'))) return false;
  std::string point;
  std::string_view number = text;
  if (decimal == ',') {
    // The points of a unit ("kW.h") stand behind the number.
    point = text;
    for (char& c : point)
      if (c == ',' || c == '.') c = c == ',' ? '.' : ',';
    number = point;
  }
  const std::from_chars_result result = std::from_chars(number.data(), number.data() + number.size(), quantity.value);
  if (result.ec != std::errc()) return false;
  const std::string_view rest = text.substr(static_cast<std::size_t>(result.ptr - number.data()));
  // "1,5": what follows a number directly and is no unit.
  if (rest.starts_with(',') || rest.starts_with('.')) return false;
  quantity.unit = trimmed(rest);
  return true;
}

}  // namespace norvane::cli
