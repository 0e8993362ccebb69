#include "hosts/cli/plain_rows.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "hosts/cli/composition_names.h"
#include "hosts/cli/errors.h"
#include "hosts/cli/quantity_text.h"
#include "hosts/cli/values.h"

namespace norvane::cli {
namespace {

// A row of numbers is short; a longer one is a range of a worksheet's size, of which there are few.
constexpr std::size_t longest_row = 256;

bool number_of(const FUNCTION_ARG& value, double& number) {
  if (value.kind != ARG_NUMBER && value.kind != ARG_BOOLEAN) return false;
  number = value.kind == ARG_NUMBER ? value.number : value.boolean;
  return true;
}

}  // namespace

PlainRows::PlainRows(const BatchColumns& columns, const Reading& reading, char delimiter)
    : columns_(columns),
      spec_(columns.function()),
      reading_(reading),
      delimiter_(delimiter),
      signature_(host::find_signature(spec_.id)) {
  session_.begin(spec_);
  if (signature_ == nullptr || !signature_->plan.complete || !lay_out()) {
    signature_ = nullptr;
    return;
  }
  output_columns_.resize(signature_->outputs.size());
}

bool PlainRows::lay_out() {
  const Targets& targets = columns_.targets();
  if (spec_.name_input >= 0 && targets.given(static_cast<std::size_t>(spec_.name_input))) return false;
  const std::size_t gas = composition_input(spec_);
  std::size_t gas_place = none;
  bool gas_varies = false;
  for (const host::Parameter& parameter : signature_->inputs) {
    host::Column& input = inputs_.emplace_back();
    places_.push_back(0);
    if (!targets.given(parameter.index)) continue;
    bool varies = false;
    if (!lay_out(parameter.index, input.cells, places_.back(), varies)) return false;
    input.row_step = varies ? 1 : 0;
    input.cell_step = 1;
    if (parameter.index != gas) continue;
    gas_place = places_.back();
    gas_varies = varies;
  }
  if (cells_.empty() || model_.size() > longest_row) return false;
  std::stable_sort(cells_.begin(), cells_.end(), [](const Cell& a, const Cell& b) { return a.column < b.column; });
  for (std::size_t i = 0; i < inputs_.size(); ++i) {
    if (inputs_[i].cells == 0) continue;
    if (inputs_[i].row_step == 0)
      inputs_[i].values = constants_.data() + places_[i];
    else
      inputs_[i].row_step = model_.size();
  }
  find_defaults(gas, gas_place, gas_varies);
  return true;
}

// One input that is given. False when it takes more than numbers.
bool PlainRows::lay_out(std::size_t input, std::size_t& cells, std::size_t& place, bool& varies) {
  const std::span<const Target> targets = columns_.targets().all();
  const std::span<const FUNCTION_ARG> constants = columns_.constants();
  const bool composition = input == composition_input(spec_);
  std::size_t given = 0;
  bool by_cells = false;
  cells = composition ? component::count : 1;
  for (std::size_t i = 0; i < targets.size(); ++i) {
    if (targets[i].input != input) continue;
    const bool constant = i < constants.size();
    varies = varies || !constant;
    ++given;
    if (targets[i].cell == Target::whole) {
      // A list in a cell of the file is rare, and may hold anything.
      if (targets[i].record->is_array() && (!constant || constants[i].kind != ARG_ARRAY)) return false;
      if (!targets[i].record->is_array()) continue;
      if (constants[i].array.columns != 1) return false;
      cells = constants[i].array.rows;
    } else {
      by_cells = true;
      if (targets[i].cell != Target::c6plus) cells = std::max(cells, targets[i].cell + 1);
    }
  }
  // What no cell names is 0 in a gas and blank in any other list.
  if (cells == 0 || cells > longest_row || (by_cells && !composition && given != cells)) return false;

  std::vector<double>& row = varies ? model_ : constants_;
  place = row.size();
  row.resize(place + cells);
  for (std::size_t i = 0; i < targets.size(); ++i) {
    const Target& target = targets[i];
    if (target.input != input) continue;
    const std::size_t at = place + (target.cell < cells ? target.cell : 0);
    if (i < constants.size()) {
      const FUNCTION_ARG& value = constants[i];
      const bool list = value.kind == ARG_ARRAY;
      if (list != (target.record->is_array() && target.cell == Target::whole)) return false;
      if (target.cell == Target::c6plus) {
        double amount = 0.0;
        if (!number_of(value, amount)) return false;
        spread_c6plus(amount, row.data() + place);
        continue;
      }
      for (std::size_t cell = 0; cell < (list ? cells : 1); ++cell)
        if (!number_of(list ? value.array.elements[cell] : value, row[at + cell])) return false;
      continue;
    }
    const std::uint32_t type = target.record->type;
    if (type == data_type::text || type == data_type::ipaddr || type == data_type::unit) return false;
    Cell& cell = cells_.emplace_back();
    cell = {columns_.column_of(i), &target, target.cell == Target::c6plus ? place : at, {}};
    for (const Option& option : target.options) {
      double number = 0.0;
      if (!read_number(option.value, '.', number)) return false;
      cell.options.push_back(number);
    }
  }
  return true;
}

void PlainRows::find_defaults(std::size_t gas, std::size_t gas_place, bool gas_varies) {
  for (std::size_t i = 0; i < spec_.input_count; ++i)
    if (columns_.targets().given(i)) session_.argument(i) = FUNCTION_ARG::Empty();
  if (gas_place == none) {
    left_to_defaults(session_, defaulted_);
    return;
  }
  FUNCTION_ARG& composition = session_.argument(gas);
  composition = session_.array(1, component::count);
  FUNCTION_ARG& amount = composition.array.elements[component::neo_pentane];
  amount = FUNCTION_ARG::Number(0.0);
  left_to_defaults(session_, defaulted_without_neo_pentane_);
  amount = FUNCTION_ARG::Number(1.0);
  left_to_defaults(session_, defaulted_);
  const std::size_t place = gas_place + component::neo_pentane;
  if (gas_varies)
    neo_pentane_ = place;
  else if (place >= constants_.size() || constants_[place] == 0.0)
    defaulted_ = defaulted_without_neo_pentane_;
}

// The number at `text` up to the delimiter, whose place is answered; null when it is none.
const char* PlainRows::read(const char* text, const char* end, double& value) const {
  while (text != end && (*text == ' ' || *text == '\t') && *text != delimiter_) ++text;
  if (const char* after = read_plain_number(text, end, reading_.decimal, delimiter_, value)) return after;
  const char* const stop = std::find(text, end, delimiter_);
  const std::string_view cell = trimmed({text, static_cast<std::size_t>(stop - text)});
  if (reading_.decimal != '.') return !cell.empty() && read_number(cell, reading_.decimal, value) ? stop : nullptr;
  const std::from_chars_result result = std::from_chars(cell.data(), cell.data() + cell.size(), value);
  return result.ec == std::errc() && result.ptr == cell.data() + cell.size() ? stop : nullptr;
}

bool PlainRows::put(const Cell& cell, double value, double* row) {
  const Target& target = *cell.target;
  if (target.unit != 0) {
    try {
      value = read_number_cell(session_, target, value, reading_).number;
    } catch (const UsageError&) {
      return false;
    }
  } else if (!target.options.empty()) {
    if (std::find(cell.options.begin(), cell.options.end(), value) == cell.options.end()) return false;
  } else {
    value *= target.scale;
  }
  if (target.cell != Target::c6plus) {
    row[cell.place] = value;
    return true;
  }
  spread_c6plus(value, row + cell.place);
  return true;
}

void PlainRows::spread_c6plus(double amount, double* gas) const {
  for (std::size_t i = 0; i < reading_.c6plus.size(); ++i) gas[component::n_hexane + i] = amount * reading_.c6plus[i];
}

bool PlainRows::add(std::string_view record) {
  if (signature_ == nullptr) return false;
  const std::size_t length = model_.size();
  if (numbers_.size() < (rows_ + 1) * length) numbers_.resize(std::max((rows_ + 1) * length, numbers_.size() * 2));
  double* const row = row_of(rows_);
  std::copy(model_.begin(), model_.end(), row);
  const char* text = record.data();
  const char* const end = text + record.size();
  auto cell = cells_.begin();
  for (std::size_t column = 0;; ++column) {
    if (cell != cells_.end() && cell->column == column) {
      double value = 0.0;
      text = read(text, end, value);
      if (text == nullptr) return false;
      for (; cell != cells_.end() && cell->column == column; ++cell)
        if (!put(*cell, value, row)) return false;
    } else {
      text = std::find(text, end, delimiter_);
    }
    if (column + 1 == columns_.count()) break;
    if (text == end) return false;
    ++text;
  }
  if (text != end || (reading_.no_defaults && !defaulted(rows_).empty())) return false;
  ++rows_;
  return true;
}

void PlainRows::calculate() {
  if (rows_ == 0) return;
  const std::size_t count = output_columns_.size();
  outputs_.resize(std::max(outputs_.size(), count * rows_));
  for (std::size_t i = 0; i < count; ++i) output_columns_[i] = outputs_.data() + i * rows_;
  if (statuses_.size() < rows_) {
    remarked_ = std::make_unique<bool[]>(rows_);
    statuses_.resize(rows_);
  }
  good_.assign(rows_, 0);
  for (std::size_t i = 0; i < inputs_.size(); ++i)
    if (inputs_[i].row_step != 0) inputs_[i].values = numbers_.data() + places_[i];
  if (host::run_batch(*signature_, rows_, inputs_, output_columns_, statuses_.data(), remarked_.get()) ==
      host::batch_refused) {
    signature_ = nullptr;  // nor will it take the next rows
    return;
  }
  for (std::size_t row = 0; row < rows_; ++row) good_[row] = statuses_[row] == 0 && !remarked_[row];
  for (std::size_t i = 0; i < count; ++i)
    for (std::size_t row = 0; row < rows_; ++row)
      if (!std::isfinite(output_columns_[i][row])) good_[row] = 0;
}

}  // namespace norvane::cli
