#include <cmath>

#include "core/text.h"
#include "hosts/cli/commands.h"
#include "hosts/cli/json_text.h"
#include "hosts/cli/names.h"
#include "hosts/cli/units_text.h"
#include "units/unit_oddities.h"

namespace norvane::cli {
namespace {

std::vector<const Unit_CEntry*> known_units(const std::string& text) {
  std::vector<const Unit_CEntry*> named = units_named(text);
  if (named.empty()) throw UsageError(in_quotes(text) + " is no unit" + unit_suggestion(text));
  return named;
}

// The rounded factors put absolute zero itself a hair below 0 K.
bool below_absolute_zero(const Unit_CTypeAndUnitContainer& units, std::uint32_t unit, double value) {
  return units.Convert(unit, unit::K, value) == UNIT_OK && value < -1e-9;
}

}  // namespace

ExitCode convert(const ConvertOptions& options, Output& out) {
  const Unit_CTypeAndUnitContainer& units = Unit_CTypeAndUnitContainer::Instance();
  double value = 0.0;
  if (!parse_number(to_utf16(options.value), value)) throw UsageError(in_quotes(options.value) + " is not a number");

  // A symbol may stand for units of several quantities: the first pair of one quantity is meant.
  const std::vector<const Unit_CEntry*> from = known_units(options.from);
  const std::vector<const Unit_CEntry*> to = known_units(options.to);
  const Unit_CEntry* source = nullptr;
  const Unit_CEntry* target = nullptr;
  for (const Unit_CEntry* a : from)
    for (const Unit_CEntry* b : to)
      if (source == nullptr && type_number(a->code) == type_number(b->code)) {
        source = a;
        target = b;
      }
  if (source == nullptr)
    throw UsageError(to_utf8(from.front()->text) + " is a unit of " + quantity_of(from.front()->code) + ", but " +
                     to_utf8(to.front()->text) + " is one of " + quantity_of(to.front()->code));
  if (below_absolute_zero(units, source->code, value))
    throw UsageError(to_utf8(format_number(value)) + " " + to_utf8(source->text) + " is below absolute zero");
  const std::string warning = to_utf8(conversion_warning(source->code, target->code));
  if (const std::uint32_t result = units.Convert(source->code, target->code, value); result != UNIT_OK)
    throw UsageError("the value cannot be converted");
  const bool finite = std::isfinite(value);
  if (options.json) {
    out.buffer() += "{\"value\":";
    append_value(out.buffer(), finite ? FUNCTION_ARG::Number(value) : FUNCTION_ARG::Empty());
    out.buffer() += ",\"unit\":";
    append_text(out.buffer(), target->key);
    if (!warning.empty()) {
      out.buffer() += ",\"warning\":";
      append_text(out.buffer(), warning);
    }
    out.write("}\n");
  } else {
    out.write(to_utf8(format_number(value)) + " " + to_utf8(target->text) + "\n");
    out.flush();
    if (!warning.empty()) tell("warning: " + warning + "\n");
  }
  return finite ? exit_good : exit_calculation;
}

}  // namespace norvane::cli
