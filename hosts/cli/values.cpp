#include "hosts/cli/values.h"

#include <charconv>
#include <vector>

#include "core/text.h"
#include "hosts/cli/csv.h"
#include "hosts/cli/errors.h"
#include "hosts/cli/json_call.h"
#include "hosts/cli/names.h"
#include "hosts/cli/platform.h"
#include "hosts/cli/units_text.h"

namespace norvane::cli {
namespace {

// A range of a million cells takes some twenty million characters.
constexpr std::size_t longest_range_file = std::size_t{256} << 20;

std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

bool read_number(std::string_view text, double& value) {
  const char* const end = text.data() + text.size();
  const std::from_chars_result result = std::from_chars(text.data(), end, value);
  if (result.ec == std::errc() && result.ptr == end) return true;
  // Blanks around it, a leading '+', hexadecimal: what a text argument of a call may be.
  return parse_number(to_utf16(text), value);
}

// "input pressure of AGA8_M" for messages.
std::string name_of(const Session& session, const Function_CInput& input) {
  return "input \"" + to_utf8(input.key) + "\" of " + to_utf8(session.function().id);
}

bool is_number_type(std::uint32_t type) {
  return type == data_type::num || type == data_type::date || type == data_type::integer ||
         kind_of_code(type) == CodeKind::unit || kind_of_code(type) == CodeKind::quantity ||
         kind_of_code(type) == CodeKind::enumeration || kind_of_code(type) == CodeKind::enumeration_value;
}

// An option by its key or display text; false when the enumeration has none such.
bool read_option(const Unit_CTypeAndUnitContainer& units, std::uint32_t type, std::string_view text, double& value) {
  const std::u16string name = to_utf16(text);
  std::vector<std::uint32_t> codes;
  if (units.ListMembers(CodeKind::enumeration_value, type, codes) != UNIT_OK) return false;
  for (const std::uint32_t code : codes) {
    const Unit_CEntry* entry = nullptr;
    if (units.EnumerationValueDetails(code, entry) != UNIT_OK) continue;
    if (equal_ignoring_case(entry->key, name) || equal_ignoring_case(entry->text, name)) {
      value = entry->factor;
      return true;
    }
  }
  return false;
}

double converted(const Session& session, const Function_CInput& input, double value, std::uint32_t from) {
  if (session.units().Convert(from, input.type, value) != UNIT_OK)
    throw UsageError(name_of(session, input) + ": the value cannot be converted");
  return value;
}

std::string read_file(const std::string& path) {
  const bool standard = path == "-";
  const int descriptor = standard ? standard_input : open_input(path);
  std::string text;
  try {
    constexpr std::size_t step = 1 << 16;
    for (;;) {
      const std::size_t size = text.size();
      text.resize(size + step);
      const std::size_t count = read_some(descriptor, text.data() + size, step, path);
      text.resize(size + count);
      if (count == 0) break;
      if (text.size() > longest_range_file) throw UsageError(path + ": the file is too large for a range");
    }
  } catch (...) {
    if (!standard) close_file(descriptor);
    throw;
  }
  if (!standard) close_file(descriptor);
  return text;
}

FUNCTION_ARG read_range_file(Session& session, const Function_CInput& input, const std::string& path) {
  const std::string content = read_file(path);
  std::string_view text = content;
  if (text.starts_with(byte_order_mark)) text.remove_prefix(byte_order_mark.size());
  while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.remove_suffix(1);
  if (trimmed(text).empty()) throw UsageError(path + ": the file holds no value");
  const char delimiter = delimiter_of(text.substr(0, text.find('\n')));
  RecordEnds ends(delimiter);
  std::vector<FUNCTION_ARG> cells;
  std::vector<std::string> fields;
  std::size_t columns = 0, rows = 0;
  for (std::size_t from = 0; from < text.size();) {
    std::size_t end = ends.next(text, from);
    if (end == std::string_view::npos) end = text.size();
    ++rows;
    if (!split_record(text.substr(from, end - from), delimiter, fields))
      throw UsageError(path + ", row " + std::to_string(rows) + ": a quoted field is not closed");
    if (rows == 1) columns = fields.size();
    if (fields.size() != columns)
      throw UsageError(path + ", row " + std::to_string(rows) + ": " + std::to_string(fields.size()) +
                       " values where the first row has " + std::to_string(columns));
    for (const std::string& field : fields) cells.push_back(read_cell(session, input, field));
    from = end;
  }
  FUNCTION_ARG array = session.array(columns, rows);
  std::copy(cells.begin(), cells.end(), array.array.elements);
  return array;
}

// "[1, 2, 68 degF]": a list that is not JSON, one column of cells.
FUNCTION_ARG read_plain_list(Session& session, const Function_CInput& input, std::string_view text) {
  std::string_view inside = text.substr(1, text.size() - 2);
  if (inside.find_first_of("[]") != std::string_view::npos)
    throw UsageError(name_of(session, input) + ": " + in_quotes(text) + " is not a list");
  std::vector<std::string> fields;
  if (!split_record(inside, ',', fields)) throw UsageError(name_of(session, input) + ": a quoted text is not closed");
  FUNCTION_ARG array = session.array(1, fields.size());
  for (std::size_t i = 0; i < fields.size(); ++i)
    array.array.elements[i] = read_cell(session, input, trimmed(fields[i]));
  return array;
}

}  // namespace

bool read_quantity(std::string_view text, Quantity& quantity) {
  text = trimmed(text);
  quantity.unit = {};
  if (read_number(text, quantity.value)) return true;
  if (text.starts_with('+')) text.remove_prefix(1);
  if (text.empty() || !(text[0] == '-' || text[0] == '.' || (text[0] >= '0' && text[0] <= '9'))) return false;
  const std::from_chars_result result = std::from_chars(text.data(), text.data() + text.size(), quantity.value);
  if (result.ec != std::errc()) return false;
  quantity.unit = trimmed(text.substr(static_cast<std::size_t>(result.ptr - text.data())));
  return true;
}

bool takes_unit(const Function_CInput& input) { return kind_of_code(input.type) == CodeKind::unit; }

FUNCTION_ARG read_cell(Session& session, const Function_CInput& input, std::string_view text, std::uint32_t unit) {
  const std::uint32_t type = input.type;
  if (type == data_type::text || type == data_type::ipaddr) return session.text(text);
  const std::string_view word = trimmed(text);
  if (word.empty()) return FUNCTION_ARG::Empty();
  double value = 0.0;
  if (read_number(word, value)) {
    if (unit != 0) value = converted(session, input, value, unit);
    return FUNCTION_ARG::Number(value);
  }
  if (const std::uint32_t code = error_of_text(word)) return FUNCTION_ARG::Error(code);
  const std::u16string wide = to_utf16(word);
  if (equal_ignoring_case(wide, u"true")) return FUNCTION_ARG::Boolean(true);
  if (equal_ignoring_case(wide, u"false")) return FUNCTION_ARG::Boolean(false);
  if (kind_of_code(type) == CodeKind::enumeration && read_option(session.units(), type, word, value))
    return FUNCTION_ARG::Number(value);
  if (!is_number_type(type) && type != data_type::boolean) return session.text(text);

  Quantity quantity;
  if (!read_quantity(word, quantity))
    throw UsageError(name_of(session, input) + ": " + in_quotes(text) + " is not a number");
  if (!takes_unit(input))
    throw UsageError(name_of(session, input) + ": " + in_quotes(text) +
                     " is not a number, and the input has no unit");
  const std::uint32_t from = unit_like(session.units(), quantity.unit, type,
                                       name_of(session, input) + " in " + symbol_of(session.units(), type));
  return FUNCTION_ARG::Number(converted(session, input, quantity.value, from));
}

FUNCTION_ARG read_argument(Session& session, const Function_CInput& input, std::string_view text) {
  const std::string_view word = trimmed(text);
  const bool list = word.size() >= 2 && word.front() == '[' && word.back() == ']';
  const bool file = word.size() >= 2 && word.front() == '@';
  const bool scalar_text = input.type == data_type::text || input.type == data_type::ipaddr;
  if (!input.is_array()) {
    if ((list || file) && !scalar_text)
      throw UsageError(name_of(session, input) + ": the input takes one value, not a range");
    return read_cell(session, input, text);
  }
  if (file) return read_range_file(session, input, std::string(word.substr(1)));
  if (!list) return read_cell(session, input, text);
  FUNCTION_ARG value;
  return read_json_value(session, word, to_utf8(input.key), value) ? value : read_plain_list(session, input, word);
}

void split_assignment(std::string_view assignment, std::string_view& key, std::string_view& value) {
  const std::size_t equals = assignment.find('=');
  if (equals == std::string_view::npos || trimmed(assignment.substr(0, equals)).empty())
    throw UsageError(in_quotes(assignment) + " is not of the form key=value");
  key = trimmed(assignment.substr(0, equals));
  value = assignment.substr(equals + 1);
}

void read_assignments(Session& session, const std::vector<std::string>& assignments) {
  for (const std::string& assignment : assignments) {
    std::string_view key, value;
    split_assignment(assignment, key, value);
    const std::size_t index = find_input(session.function(), key);
    FUNCTION_ARG& argument = session.argument(index);
    if (argument.kind != ARG_MISSING) throw UsageError("input " + in_quotes(key) + " is given twice");
    argument = read_argument(session, session.function().inputs[index], value);
  }
}

}  // namespace norvane::cli
