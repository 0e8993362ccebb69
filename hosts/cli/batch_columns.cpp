#include "hosts/cli/batch_columns.h"

#include <algorithm>
#include <unordered_set>

#include "core/text.h"
#include "hosts/cli/arguments.h"
#include "hosts/cli/composition_names.h"
#include "hosts/cli/csv.h"
#include "hosts/cli/errors.h"
#include "hosts/cli/names.h"
#include "hosts/cli/quantity_text.h"
#include "hosts/cli/record_text.h"
#include "hosts/cli/units_text.h"
#include "hosts/cli/values.h"

namespace norvane::cli {
namespace {

// "mass density" of "mass density [kg/m3]".
std::string_view bare(std::string_view title) {
  title = trimmed(title);
  std::string_view name, inside;
  return split_brackets(title, name, inside) ? name : title;
}

bool contains(const std::vector<std::string>& list, const std::string& name) {
  return std::find(list.begin(), list.end(), name) != list.end();
}

// "temp" for "temperature", "density" for "dens": one is the other cut off within a word.
bool is_cut(std::string_view a, std::string_view b) {
  if (a.size() > b.size()) std::swap(a, b);
  return a.size() >= 3 && a.size() < b.size() && b.starts_with(a) && b[a.size()] != '_';
}

// A column that is almost the name of an input.
bool is_slip(const std::string& given, const std::string& known) {
  if (is_cut(normalised(given), normalised(known))) return true;
  // Short names are all near each other.
  constexpr std::size_t shortest = 4;
  return given.size() >= shortest && known.size() >= shortest && is_misspelt(given, known);
}

}  // namespace

BatchColumns::BatchColumns(const Function_CFunctionSpec& spec, const std::vector<std::string>& header,
                           const BatchOptions& options, const Reading& reading)
    : spec_(spec), reading_(reading), header_(header), kept_(header.size(), true), targets_(spec) {
  std::vector<std::string> constants = options.inputs;
  constants.insert(constants.end(), options.set.begin(), options.set.end());
  find_targets(options, constants, options.inputs.size());
  choose_kept(options);
  if (reading.no_defaults) refuse_missing();
}

void BatchColumns::find_targets(const BatchOptions& options, const std::vector<std::string>& constants,
                                std::size_t first_set) {
  std::vector<std::string_view> values;
  Targets set(spec_);
  for (std::size_t i = 0; i < constants.size(); ++i) {
    std::string_view key, value;
    split_assignment(constants[i], key, value);
    const std::string what = "input " + in_quotes(key);
    targets_.add(key, reading_, what);
    if (i >= first_set) set.add(key, reading_, what);
    values.push_back(value);
  }
  constants_.begin(spec_);
  for (std::size_t i = 0; i < values.size(); ++i)
    constant_values_.push_back(read_argument(constants_, targets_.all()[i], values[i], reading_));

  std::vector<bool> mapped(header_.size());
  for (const std::string& map : options.map) {
    std::string_view key, name, title, unit;
    split_assignment(map, key, name);
    const std::size_t column = column_named(name, "--map");
    mapped[column] = true;
    std::string target(key);
    if (split_brackets(trimmed(header_[column]), title, unit)) target.append(" [").append(unit).append("]");
    targets_.add(target, reading_, "--map " + in_quotes(map));
    uses_.push_back({column, targets_.all().size() - 1});
  }
  std::vector<std::size_t> unknown;
  for (std::size_t i = 0; i < header_.size(); ++i) {
    if (mapped[i]) continue;
    const std::string what = "column " + in_quotes(header_[i]);
    Target target;
    if (!targets_.find(header_[i], reading_, what, target)) {
      unknown.push_back(i);
      continue;
    }
    // --set and --map decide over a column of the same name.
    const bool mapped_already = std::any_of(uses_.begin(), uses_.end(), [&](const Use& use) {
      const Target& other = targets_.all()[use.target];
      return mapped[use.column] && other.input == target.input && other.cell == target.cell;
    });
    if (mapped_already || set.given(target.input)) continue;
    targets_.add(std::move(target), what);
    uses_.push_back({i, targets_.all().size() - 1});
  }
  warnings_ = targets_.take_warnings(values.size());
  for (const Message& message : constants_.messages()) warnings_.push_back(to_utf8(message.text));
  for (const std::size_t column : unknown)
    if (!contains(options.keep, header_[column])) refuse_slip(header_[column]);
  if (uses_.empty())
    throw UsageError("no column of the file is an input of " + to_utf8(spec_.id) + "; norvane describe " +
                     to_utf8(spec_.id) + " lists them");
}

void BatchColumns::choose_kept(const BatchOptions& options) {
  if (options.keep.empty() && !options.only_outputs) return;
  keeps_all_ = false;
  kept_.assign(header_.size(), false);
  for (const std::string& name : options.keep) kept_[column_named(name, "--keep")] = true;
}

std::size_t BatchColumns::column_named(std::string_view name, std::string_view option) const {
  const std::string_view wanted = trimmed(name);
  std::vector<std::size_t> found;
  for (const bool whole : {true, false}) {
    for (std::size_t i = 0; i < header_.size() && found.empty(); ++i)
      if (equal_names(whole ? trimmed(header_[i]) : bare(header_[i]), wanted)) found.push_back(i);
  }
  if (!found.empty()) return found.front();
  throw UsageError(std::string(option) + ": the file has no column " + in_quotes(wanted) +
                   did_you_mean(wanted, header_));
}

// An input that something else gives cannot be meant by a column that is merely like it; nor can one whose unit is of
// another kind.
void BatchColumns::refuse_slip(const std::string& title) const {
  std::string_view name = trimmed(title), unit;
  split_brackets(name, name, unit);
  const auto refuse = [&](const std::string& meant) {
    throw UsageError("column " + in_quotes(title) + " is no input of " + to_utf8(spec_.id) + "; did you mean " +
                     meant + "? (--map \"" + meant + "=" + std::string(name) + "\" takes it as such, --set " + meant +
                     "=... gives another value, --keep " + in_quotes(title) + " passes it on)");
  };
  for (std::size_t i = 0; i < spec_.input_count; ++i) {
    const Function_CInput& input = spec_.inputs[i];
    const std::string key = to_utf8(input.key);
    if (targets_.given(i) || !is_slip(std::string(name), key)) continue;
    const std::vector<const Unit_CEntry*> units = units_named(unit);
    const bool same_kind = std::any_of(units.begin(), units.end(), [&](const Unit_CEntry* entry) {
      return type_number(entry->code) == type_number(input.type);
    });
    if (unit.empty() || (takes_unit(input) && (same_kind || units.empty()))) refuse(key);
  }
  const std::size_t gas = composition_input(spec_);
  if (gas == spec_.input_count || !unit.empty()) return;
  for (const std::string& component : component_names()) {
    Target target;
    targets_.find(component, reading_, "", target);
    const auto same = [&](const Target& other) { return other.input == target.input && other.cell == target.cell; };
    if (std::none_of(targets_.all().begin(), targets_.all().end(), same) && name.size() >= 5 &&
        is_misspelt(name, component))
      refuse(component);
  }
}

void BatchColumns::refuse_missing() const {
  Session call;
  call.begin(spec_);
  for (std::size_t i = 0; i < spec_.input_count; ++i)
    if (targets_.given(i)) call.argument(i) = FUNCTION_ARG::Empty();
  std::vector<std::size_t> missing;
  left_to_defaults(call, missing);
  refuse_defaults(call, missing);
}

std::string BatchColumns::answer_header(char delimiter) const {
  std::string line;
  std::unordered_set<std::string> used;
  for (std::size_t i = 0; i < header_.size(); ++i) {
    if (!kept_[i]) continue;
    append_field(line, header_[i], delimiter);
    line += delimiter;
    used.insert(normalised(bare(header_[i])));
  }
  const auto add = [&](const std::string& name, const std::string& unit) {
    std::string title = name;
    for (int again = 1; !used.insert(normalised(title)).second; ++again)
      title = to_utf8(spec_.id) + " " + name + (again == 1 ? "" : " " + std::to_string(again));
    append_field(line, title + (unit.empty() ? "" : " [" + unit + "]"), delimiter);
    line += delimiter;
  };
  for (const Function_COutput& output : spec_.output_records())
    add(to_utf8(output.key), unit_text(constants_.units(), output.type));
  add("messages", "");
  line.pop_back();
  return line;
}

void BatchColumns::read(Session& session, std::span<const std::string_view> cells) const {
  if (cells.size() != header_.size())
    throw UsageError("the row has " + std::to_string(cells.size()) + " cells, the header " +
                     std::to_string(header_.size()));
  targets_.prepare(session);
  for (std::size_t i = 0; i < constant_values_.size(); ++i)
    targets_.put(session, targets_.all()[i], constant_values_[i], reading_);
  for (const Use& use : uses_) {
    const Target& target = targets_.all()[use.target];
    const std::string_view cell = cells[use.column], text = trimmed(cell);
    // Files are named on the command line only: what a row holds is data.
    const bool list = target.cell == Target::whole && target.record->is_array() && text.starts_with('[');
    targets_.put(session, target,
                 list ? read_argument(session, target, text, reading_) : read_cell(session, target, cell, reading_),
                 reading_);
  }
}

}  // namespace norvane::cli
