#include "hosts/cli/arguments.h"

#include <vector>

#include "hosts/cli/composition_names.h"
#include "hosts/cli/csv.h"
#include "hosts/cli/errors.h"
#include "hosts/cli/input_file.h"
#include "hosts/cli/json_call.h"
#include "hosts/cli/names.h"
#include "hosts/cli/quantity_text.h"
#include "hosts/cli/values.h"
#include "units/unit_names.h"

namespace norvane::cli {
namespace {

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
  for (std::size_t i = 0; i < names.size(); ++i)
    components.put(session, found[i], read_cell(session, found[i], amounts[i], reading), reading);
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
    throw UsageError(full_name(session, target) + ": " + in_quotes(text) + " is not a list");
  std::vector<std::string> fields;
  if (!split_record(inside, reading.decimal == ',' ? ';' : ',', fields))
    throw UsageError(full_name(session, target) + ": a quoted text is not closed");
  FUNCTION_ARG array = session.array(1, fields.size());
  for (std::size_t i = 0; i < fields.size(); ++i)
    array.array.elements[i] = read_cell(session, target, trimmed(fields[i]), reading);
  return array;
}

}  // namespace

FUNCTION_ARG read_argument(Session& session, const Target& target, std::string_view text, const Reading& reading) {
  const std::string_view word = trimmed(text);
  const bool list = word.size() >= 2 && word.front() == '[' && word.back() == ']';
  const bool file = word.size() >= 2 && word.front() == '@';
  const std::uint32_t type = target.record->type;
  if (!target.record->is_array() || target.cell != Target::whole) {
    if ((list || file) && type != data_type::text && type != data_type::ipaddr)
      throw UsageError(full_name(session, target) + ": the input takes one value, not a range");
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
