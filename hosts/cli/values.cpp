#include "hosts/cli/values.h"

#include <algorithm>

#include "core/text.h"
#include "hosts/cli/composition_names.h"
#include "hosts/cli/errors.h"
#include "hosts/cli/names.h"
#include "hosts/cli/quantity_text.h"
#include "hosts/cli/record_text.h"
#include "hosts/cli/units_text.h"
#include "units/unit_oddities.h"

namespace norvane::cli {
namespace {

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
  std::string problem = full_name(session, target) + ": " + in_quotes(text) + " is not a number";
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
    if (option.value == text && read_number(text, '.', value)) return true;
  for (const Option& option : target.options)
    if (equal_names(option.text, text) || (!option.key.empty() && equal_names(option.key, text)))
      return read_number(option.value, '.', value);
  return false;
}

// Between a gauge and an absolute unit lies the pressure of the atmosphere.
double converted(Session& session, const Target& target, double value, std::uint32_t from, const Reading& reading) {
  const std::uint32_t to = target.record->type;
  if (from != to) {
    const std::u16string warning = from == target.unit ? target.warning : conversion_warning(from, to);
    if (!warning.empty()) session.remark(target.input, warning);
  }
  const auto fail = [&] { return UsageError(full_name(session, target) + ": the value cannot be converted"); };
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
  if (scale == 0.0) throw UsageError(full_name(session, target) + ": " + in_quotes(text) + " is not a mole fraction");
  return FUNCTION_ARG::Number(quantity.value * scale);
}

}  // namespace

std::string full_name(const Session& session, const Target& target) {
  return "input \"" + target.name() + "\" of " + to_utf8(session.function().id);
}

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
    throw UsageError(full_name(session, target) + ": " + in_quotes(text) +
                     " is not a number, and the input has no unit");
  }
  std::uint32_t from = known_unit(quantity.unit, type, reading.atmosphere.has_value());
  if (from == 0)
    from = unit_like(quantity.unit, type, reading.atmosphere.has_value(),
                     full_name(session, target) + " in " + symbol_of(type));
  return FUNCTION_ARG::Number(converted(session, target, quantity.value, from, reading));
}

}  // namespace norvane::cli
