#include "hosts/cli/target.h"

#include <algorithm>
#include <charconv>

#include "core/text.h"
#include "hosts/cli/composition_names.h"
#include "hosts/cli/errors.h"
#include "hosts/cli/names.h"
#include "hosts/cli/quantity_text.h"
#include "hosts/cli/units_text.h"
#include "units/unit_oddities.h"

namespace norvane::cli {
namespace {

// More cells than any function takes; a greater index is a slip.
constexpr std::size_t most_cells = 65536;

bool is_index(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// "C6+", "hexane plus", "C6 and heavier": an amount of n-hexane and all that is heavier.
bool is_c6plus(std::string_view name) {
  const std::string text = normalised(name);
  for (const std::string_view known : {"c6+", "c6plus", "c6_plus", "hexanes+", "hexane+", "hexanes_plus",
                                       "hexane_plus", "n_hexane+", "nc6+", "c6++"})
    if (text == known) return true;
  return false;
}

// "C4": chromatographs mean one of two by it, and nobody knows which.
bool is_ambiguous(std::string_view name, std::string& either) {
  const std::string text = normalised(name);
  if (text == "c4" || text == "c4h10" || text == "butanes") either = "i-butane or n-butane";
  if (text == "c5" || text == "c5h12" || text == "pentanes") either = "i-pentane, n-pentane or neo-pentane";
  return !either.empty();
}

std::string range_name(const Function_CInput& record, std::size_t cell) {
  return to_utf8(record.key) + "[" + std::to_string(cell) + "]";
}

}  // namespace

std::string Target::name() const {
  if (cell == whole) return to_utf8(record->key);
  if (cell == c6plus) return "C6+";
  return composition && cell < component::count ? std::string(component::table[cell].name)
                                                : range_name(*record, cell);
}

Targets::Targets(const Function_CFunctionSpec& spec)
    : spec_(&spec),
      composition_(composition_input(spec)),
      taken_(spec.input_count),
      sizes_(spec.input_count),
      given_cells_(spec.input_count) {}

std::vector<std::string> Targets::known_names() const {
  std::vector<std::string> names;
  for (const Function_CInput& input : spec_->input_records()) names.push_back(to_utf8(input.key));
  if (composition_ < spec_->input_count)
    for (std::string& name : component_names()) names.push_back(std::move(name));
  return names;
}

bool Targets::find(std::string_view given, const Reading& reading, const std::string& what, Target& target) const {
  target = {};
  std::string_view name = trimmed(given), inside;
  const bool bracketed = split_brackets(name, name, inside);
  for (std::size_t i = 0; i < spec_->input_count; ++i) {
    const Function_CInput& input = spec_->inputs[i];
    if (!equal_names(to_utf8(input.key), name)) continue;
    target.record = &input;
    target.input = i;
    target.composition = i == composition_;
    if (!input.is_array()) target.options = options_of(input);
    if (!bracketed) return true;
    if (is_index(inside)) {
      if (!input.is_array()) throw UsageError(what + ": the input takes one value, not a range");
      const auto parsed = std::from_chars(inside.data(), inside.data() + inside.size(), target.cell);
      if (parsed.ec != std::errc() || target.cell >= most_cells) throw UsageError(what + ": the index is too large");
      return true;
    }
    if (target.composition && fraction_scale(inside) != 0.0) {
      target.scale = fraction_scale(inside);
      return true;
    }
    if (!takes_unit(input)) throw UsageError(what + ": the input has no unit");
    target.unit = unit_like(inside, input.type, reading.atmosphere.has_value(), what);
    target.warning = conversion_warning(target.unit, input.type);
    return true;
  }
  if (composition_ == spec_->input_count) return false;

  target.record = &spec_->inputs[composition_];
  target.input = composition_;
  target.composition = true;
  target.cell = component_named(name);
  std::string either;
  if (target.cell == component::count && is_c6plus(name)) {
    if (reading.c6plus.empty())
      throw UsageError(
          what +
          ": an amount of n-hexane and heavier must be split; for example --c6plus=47,36,17 takes 47 % of "
          "it as n-hexane, 36 % as n-heptane and 17 % as n-octane");
    target.cell = Target::c6plus;
  } else if (target.cell == component::count) {
    if (is_ambiguous(name, either)) throw UsageError(what + ": it may be " + either + "; name the one it is");
    return false;
  }
  if (bracketed) {
    target.scale = fraction_scale(inside);
    if (target.scale == 0.0)
      throw UsageError(
          what + ": " + in_quotes(inside) +
          " is no unit of mole fractions (they are mol/mol, %, mol%, ppm; volume and mass percent must be "
          "converted first)");
  }
  return true;
}

void Targets::add(Target target, const std::string& what) {
  Taken& taken = taken_[target.input];
  const bool whole = target.cell == Target::whole;
  const auto twice = [&](const std::string& name) { return UsageError(what + ": " + name + " is given twice"); };
  if (taken == Taken::whole || (whole && taken == Taken::cells)) throw twice(to_utf8(target.record->key));
  taken = whole ? Taken::whole : Taken::cells;
  if (!whole) {
    // The split of a C6+ amount takes all places from n-hexane on.
    const bool split = target.cell == Target::c6plus;
    const std::size_t first = split ? std::size_t{component::n_hexane} : target.cell;
    const std::size_t last = split ? std::size_t{component::n_decane} : target.cell;
    std::vector<bool>& given = given_cells_[target.input];
    if (given.size() <= last) given.resize(std::max(given.size() * 2, last + 1));
    for (std::size_t cell = first; cell <= last; ++cell) {
      if (given[cell]) {
        target.cell = cell;
        throw twice(target.name());
      }
      given[cell] = true;
    }
    std::size_t& size = sizes_[target.input];
    size = std::max({size, last + 1, target.composition ? component::count : 0});
  }
  targets_.push_back(std::move(target));
}

void Targets::add(std::string_view name, const Reading& reading, const std::string& what) {
  Target target;
  if (!find(name, reading, what, target)) {
    const std::vector<std::string> known = known_names();
    std::string text = to_utf8(spec_->id) + " has no input " + in_quotes(name) + did_you_mean(name, known);
    if (nearest(name, known).empty()) {
      text += "; its inputs are ";
      for (std::size_t i = 0; i < spec_->input_count; ++i) text.append(i == 0 ? "" : ", ").append(known[i]);
      if (composition_ < spec_->input_count) text += " and the components of the gas (norvane components)";
    }
    throw UsageError(text);
  }
  add(std::move(target), what);
}

std::vector<std::string> Targets::take_warnings(std::size_t first) {
  std::vector<std::string> warnings;
  for (std::size_t i = first; i < targets_.size(); ++i) {
    Target& target = targets_[i];
    if (!target.warning.empty()) warnings.push_back(target.name() + ": " + to_utf8(target.warning));
    target.warning.clear();
  }
  return warnings;
}

void Targets::prepare(Session& session) const {
  for (std::size_t i = 0; i < sizes_.size(); ++i) {
    if (sizes_[i] == 0) continue;
    FUNCTION_ARG& argument = session.argument(i);
    argument = session.array(1, sizes_[i]);
    if (i != composition_) continue;
    for (std::size_t cell = 0; cell < sizes_[i]; ++cell) argument.array.elements[cell] = FUNCTION_ARG::Number(0.0);
  }
}

void Targets::put(Session& session, const Target& target, const FUNCTION_ARG& value, const Reading& reading) const {
  FUNCTION_ARG& argument = session.argument(target.input);
  const bool range_cell = target.cell != Target::whole && !target.composition;
  if (value.kind == ARG_EMPTY && !range_cell) {
    if (!reading.blank_is_default)
      throw UsageError(target.name() + " is blank (--blank=default takes " +
                       (target.cell == Target::whole ? "its default)" : "0)"));
    return;  // the argument stays omitted, the fraction 0
  }
  if (target.composition && value.kind == ARG_ARRAY && !reading.blank_is_default)
    for (std::size_t i = 0; i < value.count(); ++i)
      if (value.array.elements[i].kind == ARG_EMPTY)
        throw UsageError(range_name(*target.record, i) + " is blank (--blank=default takes 0)");
  if (target.cell == Target::whole) {
    argument = value;
  } else if (target.cell != Target::c6plus) {
    argument.array.elements[target.cell] = value;
  } else if (value.kind == ARG_NUMBER) {
    for (std::size_t i = 0; i < reading.c6plus.size(); ++i)
      argument.array.elements[component::n_hexane + i] = FUNCTION_ARG::Number(value.number * reading.c6plus[i]);
  } else {
    argument.array.elements[component::n_hexane] = value;
  }
}

bool takes_unit(const Function_CInput& input) { return kind_of_code(input.type) == CodeKind::unit; }

bool split_brackets(std::string_view title, std::string_view& name, std::string_view& inside) {
  if (title.empty() || (title.back() != ']' && title.back() != ')')) return false;
  // "bar(a)" within brackets, "pressure (bar(a))": the bracket that belongs to the last one.
  const char close = title.back(), open = close == ']' ? '[' : '(';
  std::size_t depth = 0, at = title.size();
  do {
    --at;
    if (title[at] == close) ++depth;
    if (title[at] == open && --depth == 0) break;
  } while (at > 0);
  if (depth != 0 || at == 0) return false;
  inside = trimmed(title.substr(at + 1, title.size() - at - 2));
  name = trimmed(title.substr(0, at));
  return true;
}

void left_to_defaults(Session& session, std::vector<std::size_t>& inputs) {
  inputs.clear();
  const Function_CFunctionSpec& spec = session.function();
  for (std::size_t i = 0; i < spec.input_count; ++i) {
    const Function_CInput& input = spec.inputs[i];
    if (session.argument(i).kind != ARG_MISSING || input.role == 1 ||
        input.default_value.tag() == Core_CVariant::EMPTY)
      continue;
    if (input.type == enumeration::compneoc5mode) {
      const std::size_t composition = composition_input(spec);
      if (composition == spec.input_count) continue;
      const FUNCTION_ARG& gas = session.argument(composition);
      if (gas.kind != ARG_ARRAY || gas.count() <= component::neo_pentane) continue;
      const FUNCTION_ARG& amount = gas.array.elements[component::neo_pentane];
      if (amount.kind == ARG_EMPTY || (amount.kind == ARG_NUMBER && amount.number == 0.0)) continue;
    }
    inputs.push_back(i);
  }
}

std::string defaults_text(const Session& session, std::span<const std::size_t> inputs) {
  std::string text;
  for (const std::size_t index : inputs) {
    const Function_CInput& input = session.function().inputs[index];
    const std::string unit = unit_text(session.units(), input.type);
    text.append(text.empty() ? "" : ", ").append(to_utf8(input.key)).append(" = ");
    text += variant_text(input.default_value);
    if (!unit.empty()) text += " " + unit;
    if (const std::string label = label_of(input, input.default_value); !label.empty()) text += " (" + label + ")";
  }
  return text;
}

void refuse_defaults(const Session& session, std::span<const std::size_t> inputs) {
  if (inputs.empty()) return;
  throw UsageError("--no-defaults: not given are " + defaults_text(session, inputs));
}

}  // namespace norvane::cli
