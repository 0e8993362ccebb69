#include "hosts/cli/values.h"

#include <algorithm>
#include <charconv>
#include <vector>

#include "core/text.h"
#include "hosts/cli/composition_names.h"
#include "hosts/cli/csv.h"
#include "hosts/cli/errors.h"
#include "hosts/cli/input_file.h"
#include "hosts/cli/json_call.h"
#include "hosts/cli/names.h"
#include "hosts/cli/units_text.h"

namespace norvane::cli {
namespace {

bool read_point_number(std::string_view text, double& value) {
  const char* const end = text.data() + text.size();
  const std::from_chars_result result = std::from_chars(text.data(), end, value);
  if (result.ec == std::errc() && result.ptr == end) return true;
  // Blanks around it, a leading '+', hexadecimal: what a text argument of a call may be.
  return parse_number(to_utf16(text), value);
}

// "input pressure of AGA8_M" for messages.
std::string name_of(const Session& session, const Target& target) {
  return "input \"" + target.name() + "\" of " + to_utf8(session.function().id);
}

bool is_number_type(std::uint32_t type) {
  return type == data_type::num || type == data_type::date || type == data_type::integer ||
         kind_of_code(type) == CodeKind::unit || kind_of_code(type) == CodeKind::quantity ||
         kind_of_code(type) == CodeKind::enumeration || kind_of_code(type) == CodeKind::enumeration_value;
}

// "12,5" or "1.234,5": numbers of a file with decimal commas.
bool looks_like_decimal_comma(std::string_view text) {
  const std::size_t comma = text.find(',');
  return comma != std::string_view::npos && comma > 0 && comma + 1 < text.size() &&
         text.find(',', comma + 1) == std::string_view::npos &&
         text.find_first_not_of("+-0123456789.,eE %") == std::string_view::npos;
}

[[noreturn]] void refuse_number(const Session& session, const Target& target, std::string_view text,
                                const Reading& reading) {
  std::string problem = name_of(session, target) + ": " + in_quotes(text) + " is not a number";
  if (reading.decimal == ',' && text.find('.') != std::string_view::npos) problem += " with a decimal comma";
  if (reading.decimal == '.' && looks_like_decimal_comma(text)) problem += "; --decimal=, reads decimal commas";
  if (!target.options.empty()) {
    problem += "; the values are ";
    for (std::size_t i = 0; i < target.options.size(); ++i)
      problem.append(i == 0 ? "" : ", ").append(target.options[i].value + " = " + target.options[i].text);
  }
  throw UsageError(problem);
}

// An option by its key or its text. A number that is an option itself is never taken for a name.
bool read_option(const Target& target, std::string_view text, double& value) {
  for (const Option& option : target.options)
    if (option.value == text && read_point_number(text, value)) return true;
  for (const Option& option : target.options)
    if (equal_names(option.text, text) || (!option.key.empty() && equal_names(option.key, text)))
      return read_point_number(option.value, value);
  return false;
}

// Between a gauge and an absolute unit lies the pressure of the atmosphere.
double converted(const Session& session, const Target& target, double value, std::uint32_t from,
                 const Reading& reading) {
  const std::uint32_t to = target.record->type;
  const auto fail = [&] { return UsageError(name_of(session, target) + ": the value cannot be converted"); };
  if (type_number(from) == type_number(to)) {
    if (session.units().Convert(from, to, value) != UNIT_OK) throw fail();
    return value;
  }
  const Unit_CEntry *source = nullptr, *wanted = nullptr;
  if (!reading.atmosphere || session.units().UnitDetails(from, source) != UNIT_OK ||
      session.units().UnitDetails(to, wanted) != UNIT_OK)
    throw fail();
  const bool to_absolute = type_number(to) == type_number(quantity::absolutepressure);
  const double pascals = value * source->factor + (to_absolute ? *reading.atmosphere : -*reading.atmosphere);
  return pascals / wanted->factor;
}

// A mole fraction: "0.965", "96.5 %".
FUNCTION_ARG read_fraction(const Session& session, const Target& target, std::string_view text,
                           const Reading& reading) {
  Quantity quantity;
  if (!read_quantity(text, reading.decimal, quantity)) refuse_number(session, target, text, reading);
  if (quantity.unit.empty()) return FUNCTION_ARG::Number(quantity.value * target.scale);
  const double scale = fraction_scale(quantity.unit);
  if (scale == 0.0) throw UsageError(name_of(session, target) + ": " + in_quotes(text) + " is not a mole fraction");
  return FUNCTION_ARG::Number(quantity.value * scale);
}

// A table of cells as its rows.
using Rows = std::vector<std::vector<std::string>>;

Rows rows_of_file(const std::string& file) {
  const std::string path = shown_path(file);
  const std::string content = read_text_file(file);
  std::string_view text = content;
  while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.remove_suffix(1);
  const char delimiter = take_delimiter(text);
  RecordEnds ends(delimiter);
  Rows rows;
  std::size_t line = 1;
  for (std::size_t from = 0; from < text.size();) {
    std::size_t end = ends.next(text, from);
    if (end == std::string_view::npos) end = text.size();
    const std::string_view record = text.substr(from, end - from);
    from = end;
    const std::size_t first_line = line;
    line += lines_of(record);
    if (is_comment(record)) continue;
    std::vector<std::string> fields;
    if (!split_record(record, delimiter, fields))
      throw UsageError(path + ", line " + std::to_string(first_line) + ": a quoted field is not closed");
    if (!rows.empty() && fields.size() != rows.front().size())
      throw UsageError(path + ", line " + std::to_string(first_line) + ": " + std::to_string(fields.size()) +
                       " values where the first row has " + std::to_string(rows.front().size()));
    rows.push_back(std::move(fields));
  }
  if (rows.empty() || (rows.size() == 1 && rows[0].size() == 1 && trimmed(rows[0][0]).empty()))
    throw UsageError(path + ": the file holds no value");
  return rows;
}

bool is_number(const std::string& text, const Reading& reading) {
  Quantity quantity;
  return read_quantity(text, reading.decimal, quantity);
}

// A gas by the names of its components: lines "methane,0.965", with or without a heading that may tell the unit
// ("name,amount [mol%]"), or a line of names above one of amounts. False when the file names nothing.
bool read_named_gas(Session& session, const Target& target, const Rows& rows, const std::string& path,
                    const Reading& reading, FUNCTION_ARG& gas) {
  std::vector<std::string> names, amounts;
  double scale = 1.0;
  const bool upright = rows[0].size() == 2 && !is_number(rows[0][0], reading) && is_number(rows.back()[1], reading) &&
                       !is_number(rows.back()[0], reading);
  if (upright) {
    std::size_t first = 0;
    if (!is_number(rows[0][1], reading) && !trimmed(rows[0][1]).empty()) {
      std::string_view name, unit;
      if (split_brackets(trimmed(rows[0][1]), name, unit)) scale = fraction_scale(unit);
      if (scale == 0.0) throw UsageError(path + ": " + in_quotes(unit) + " is no unit of mole fractions");
      first = 1;
    }
    for (std::size_t i = first; i < rows.size(); ++i) {
      names.push_back(rows[i][0]);
      amounts.push_back(rows[i][1]);
    }
  } else if (rows.size() == 2 && !is_number(rows[0][0], reading)) {
    names = rows[0];
    amounts = rows[1];
  } else {
    return false;
  }
  Targets components(session.function());
  components.prepare(session);
  std::vector<Target> found(names.size());
  for (std::size_t i = 0; i < names.size(); ++i) {
    const std::string what = path + ", " + in_quotes(names[i]);
    if (!components.find(names[i], reading, what, found[i]) || found[i].input != target.input ||
        found[i].cell == Target::whole)
      throw UsageError(what + " is no component of the gas" + did_you_mean(names[i], component_names()));
    found[i].scale *= scale;
    components.add(found[i], what);
  }
  FUNCTION_ARG& argument = session.argument(target.input);
  const FUNCTION_ARG before = argument;
  components.prepare(session);
  for (std::size_t i = 0; i < names.size(); ++i) components.put(session, found[i], amounts[i], reading);
  gas = argument;
  argument = before;
  return true;
}

FUNCTION_ARG read_range_file(Session& session, const Target& target, const std::string& path,
                             const Reading& reading) {
  const Rows rows = rows_of_file(path);
  FUNCTION_ARG gas;
  if (target.composition && read_named_gas(session, target, rows, path, reading, gas)) return gas;
  FUNCTION_ARG array = session.array(rows[0].size(), rows.size());
  std::size_t cell = 0;
  for (const std::vector<std::string>& row : rows)
    for (const std::string& field : row) array.array.elements[cell++] = read_cell(session, target, field, reading);
  return array;
}

// "[1, 2, 68 degF]": a list that is not JSON, one column of cells.
FUNCTION_ARG read_plain_list(Session& session, const Target& target, std::string_view text, const Reading& reading) {
  std::string_view inside = text.substr(1, text.size() - 2);
  if (inside.find_first_of("[]") != std::string_view::npos)
    throw UsageError(name_of(session, target) + ": " + in_quotes(text) + " is not a list");
  std::vector<std::string> fields;
  if (!split_record(inside, reading.decimal == ',' ? ';' : ',', fields))
    throw UsageError(name_of(session, target) + ": a quoted text is not closed");
  FUNCTION_ARG array = session.array(1, fields.size());
  for (std::size_t i = 0; i < fields.size(); ++i)
    array.array.elements[i] = read_cell(session, target, trimmed(fields[i]), reading);
  return array;
}

}  // namespace

std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

bool read_number(std::string_view text, char decimal, double& value) {
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

bool takes_unit(const Function_CInput& input) { return kind_of_code(input.type) == CodeKind::unit; }

FUNCTION_ARG read_number_cell(Session& session, const Target& target, double value, const Reading& reading) {
  if (target.unit != 0) return FUNCTION_ARG::Number(converted(session, target, value, target.unit, reading));
  if (target.options.empty()) return FUNCTION_ARG::Number(value * target.scale);
  read_option(target, number_text(value), value);
  return FUNCTION_ARG::Number(value);
}

FUNCTION_ARG read_cell(Session& session, const Target& target, std::string_view text, const Reading& reading) {
  const std::uint32_t type = target.record->type;
  if (type == data_type::text || type == data_type::ipaddr) return session.text(text);
  const std::string_view word = trimmed(text);
  if (word.empty()) return FUNCTION_ARG::Empty();
  double value = 0.0;
  if (read_number(word, reading.decimal, value)) return read_number_cell(session, target, value, reading);
  if (const std::uint32_t code = error_of_text(word)) return FUNCTION_ARG::Error(code);
  if (target.composition) return read_fraction(session, target, word, reading);
  if (!target.options.empty() && read_option(target, word, value)) return FUNCTION_ARG::Number(value);
  const std::u16string wide = to_utf16(word);
  if (equal_ignoring_case(wide, u"true")) return FUNCTION_ARG::Boolean(true);
  if (equal_ignoring_case(wide, u"false")) return FUNCTION_ARG::Boolean(false);
  if (!is_number_type(type) && type != data_type::boolean) return session.text(text);

  Quantity quantity;
  if (!read_quantity(word, reading.decimal, quantity)) refuse_number(session, target, text, reading);
  if (!takes_unit(*target.record)) {
    if (reading.decimal == '.' && looks_like_decimal_comma(word)) refuse_number(session, target, text, reading);
    throw UsageError(name_of(session, target) + ": " + in_quotes(text) +
                     " is not a number, and the input has no unit");
  }
  std::uint32_t from = known_unit(quantity.unit, type, reading.atmosphere.has_value());
  if (from == 0)
    from = unit_like(quantity.unit, type, reading.atmosphere.has_value(),
                     name_of(session, target) + " in " + symbol_of(type));
  return FUNCTION_ARG::Number(converted(session, target, quantity.value, from, reading));
}

FUNCTION_ARG read_argument(Session& session, const Target& target, std::string_view text, const Reading& reading) {
  const std::string_view word = trimmed(text);
  const bool list = word.size() >= 2 && word.front() == '[' && word.back() == ']';
  const bool file = word.size() >= 2 && word.front() == '@';
  const std::uint32_t type = target.record->type;
  if (!target.record->is_array() || target.cell != Target::whole) {
    if ((list || file) && type != data_type::text && type != data_type::ipaddr)
      throw UsageError(name_of(session, target) + ": the input takes one value, not a range");
    return read_cell(session, target, text, reading);
  }
  if (file) return read_range_file(session, target, std::string(word.substr(1)), reading);
  if (!list) return read_cell(session, target, text, reading);
  FUNCTION_ARG value;
  const bool json = reading.decimal == '.' && target.scale == 1.0;
  return json && read_json_value(session, target, word, reading, value)
             ? value
             : read_plain_list(session, target, word, reading);
}

void split_assignment(std::string_view assignment, std::string_view& key, std::string_view& value) {
  const std::size_t equals = assignment.find('=');
  if (equals == std::string_view::npos || trimmed(assignment.substr(0, equals)).empty())
    throw UsageError(in_quotes(assignment) + " is not of the form key=value");
  key = trimmed(assignment.substr(0, equals));
  value = assignment.substr(equals + 1);
}

void read_assignments(Session& session, const std::vector<std::string>& assignments, const Reading& reading) {
  Targets targets(session.function());
  std::vector<std::string_view> values;
  for (const std::string& assignment : assignments) {
    std::string_view key, value;
    split_assignment(assignment, key, value);
    targets.add(key, reading, "input " + in_quotes(key));
    values.push_back(value);
  }
  targets.prepare(session);
  for (std::size_t i = 0; i < values.size(); ++i) {
    const Target& target = targets.all()[i];
    targets.put(session, target, read_argument(session, target, values[i], reading), reading);
  }
}

}  // namespace norvane::cli
