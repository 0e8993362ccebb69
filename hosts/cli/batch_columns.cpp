#include "hosts/cli/batch_columns.h"

#include <algorithm>
#include <charconv>

#include "core/text.h"
#include "hosts/cli/composition_names.h"
#include "hosts/cli/errors.h"
#include "hosts/cli/names.h"
#include "hosts/cli/units_text.h"
#include "hosts/cli/values.h"

namespace norvane::cli {
namespace {

// More cells than any function takes from a row; a greater index is a slip.
constexpr std::size_t most_cells = 65536;

std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

// Splits "name [inside]"; false when there is no bracket at the end.
bool split_brackets(std::string_view title, std::string_view& name, std::string_view& inside) {
  const std::size_t open = title.find('[');
  if (open == std::string_view::npos || !title.ends_with(']')) return false;
  name = trimmed(title.substr(0, open));
  inside = trimmed(title.substr(open + 1, title.size() - open - 2));
  return true;
}

bool is_index(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

BatchColumns::BatchColumns(const Function_CFunctionSpec& spec, const std::vector<std::string>& header, Session& fixed)
    : spec_(spec), range_sizes_(spec.input_count), units_(fixed.units()) {
  for (std::size_t i = 0; i < spec.input_count; ++i) fixed_.push_back(fixed.argument(i));
  for (const std::string& title : header) {
    const BatchColumn found = column(title);
    const std::string what = "column " + in_quotes(title);
    if (fixed_[found.input].kind != ARG_MISSING)
      throw UsageError(what + ": the input is given for every row already");
    for (const BatchColumn& other : columns_)
      if (other.input == found.input &&
          (other.cell == found.cell || other.cell == BatchColumn::whole || found.cell == BatchColumn::whole))
        throw UsageError(what + ": the input is given twice");
    if (found.cell != BatchColumn::whole) {
      std::size_t& size = range_sizes_[found.input];
      size = std::max(size, found.cell + 1);
    }
    columns_.push_back(found);
  }
  // A gas named by some of its components has nothing of the others.
  if (const std::size_t input = composition_input(spec); input < spec.input_count && range_sizes_[input] != 0)
    range_sizes_[input] = std::max(range_sizes_[input], component::count);
}

BatchColumn BatchColumns::column(const std::string& title) const {
  BatchColumn result;
  std::string_view name = trimmed(title);
  std::string_view inside;
  if (name.empty()) throw UsageError("the header has a column without a name");
  const bool bracketed = split_brackets(name, name, inside);
  if (bracketed && is_index(inside)) {
    result.input = find_input(spec_, name);
    const auto parsed = std::from_chars(inside.data(), inside.data() + inside.size(), result.cell);
    if (!spec_.inputs[result.input].is_array())
      throw UsageError("column " + in_quotes(title) + ": the input takes one value, not a range");
    if (parsed.ec != std::errc() || result.cell >= most_cells)
      throw UsageError("column " + in_quotes(title) + ": the index is too large");
    return result;
  }
  const std::size_t composition = composition_input(spec_);
  const bool is_key =
      std::any_of(spec_.input_records().begin(), spec_.input_records().end(),
                  [&](const Function_CInput& input) { return equal_names(to_utf8(input.key), name); });
  if (!is_key && composition < spec_.input_count) {
    if (const std::size_t component = component_named(name); component < component::count) {
      if (bracketed) throw UsageError("column " + in_quotes(title) + ": a fraction has no unit");
      result.input = composition;
      result.cell = component;
      return result;
    }
    std::vector<std::string> known = component_names();
    for (const Function_CInput& input : spec_.input_records()) known.push_back(to_utf8(input.key));
    throw UsageError("column " + in_quotes(title) + ": " + to_utf8(spec_.id) + " has no such input or component" +
                     did_you_mean(name, known));
  }
  result.input = find_input(spec_, name);
  if (bracketed) {
    const Function_CInput& input = spec_.inputs[result.input];
    if (!takes_unit(input)) throw UsageError("column " + in_quotes(title) + ": the input has no unit");
    result.unit = unit_like(units_, inside, input.type, "column " + in_quotes(title));
  }
  return result;
}

void BatchColumns::read(Session& session, const std::vector<std::string>& cells) const {
  if (cells.size() != columns_.size())
    throw UsageError("the row has " + std::to_string(cells.size()) + " cells, the header " +
                     std::to_string(columns_.size()));
  for (std::size_t i = 0; i < spec_.input_count; ++i) {
    session.argument(i) = fixed_[i];
    // Cells without a column stay blank, which reads as 0.
    if (range_sizes_[i] != 0) session.argument(i) = session.array(1, range_sizes_[i]);
  }
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const BatchColumn& column = columns_[i];
    const Function_CInput& input = spec_.inputs[column.input];
    const std::string_view text = trimmed(cells[i]);
    FUNCTION_ARG value = FUNCTION_ARG::Empty();
    // Files are named on the command line only: what a row holds is data.
    if (!text.empty())
      value = text.front() == '[' && input.is_array() ? read_argument(session, input, text)
                                                      : read_cell(session, input, cells[i], column.unit);
    (column.cell == BatchColumn::whole ? session.argument(column.input)
                                       : session.argument(column.input).array.elements[column.cell]) = value;
  }
}

}  // namespace norvane::cli
