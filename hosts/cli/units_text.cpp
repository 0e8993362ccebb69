#include "hosts/cli/units_text.h"

#include <algorithm>

#include "core/text.h"
#include "hosts/cli/errors.h"
#include "hosts/cli/names.h"

namespace norvane::cli {
namespace {

std::vector<const Unit_CEntry*> all_units(const Unit_CTypeAndUnitContainer& units) {
  std::vector<std::uint32_t> codes;
  units.ListMembers(CodeKind::unit, 0, codes);
  std::vector<const Unit_CEntry*> entries;
  for (const std::uint32_t code : codes) {
    const Unit_CEntry* entry = nullptr;
    if (units.UnitDetails(code, entry) == UNIT_OK) entries.push_back(entry);
  }
  return entries;
}

}  // namespace

std::vector<const Unit_CEntry*> units_named(const Unit_CTypeAndUnitContainer& units, std::string_view text) {
  const std::u16string name = to_utf16(text);
  std::vector<const Unit_CEntry*> result;
  const auto add = [&](auto&& matches) {
    for (const Unit_CEntry* entry : all_units(units))
      if (matches(*entry) && std::find(result.begin(), result.end(), entry) == result.end()) result.push_back(entry);
  };
  add([&](const Unit_CEntry& entry) { return equal_ignoring_case(entry.key, name); });
  add([&](const Unit_CEntry& entry) { return entry.text == name; });
  add([&](const Unit_CEntry& entry) { return equal_ignoring_case(entry.text, name); });
  return result;
}

std::string unit_suggestion(const Unit_CTypeAndUnitContainer& units, std::string_view text) {
  std::vector<std::string> known;
  for (const Unit_CEntry* entry : all_units(units)) known.push_back(to_utf8(entry->key));
  return did_you_mean(text, known);
}

std::string symbol_of(const Unit_CTypeAndUnitContainer& units, std::uint32_t code) {
  std::u16string_view text;
  return units.TextOfCode(code, text) == UNIT_OK ? to_utf8(text) : std::string();
}

std::string quantity_of(const Unit_CTypeAndUnitContainer& units, std::uint32_t unit) {
  std::uint32_t type = 0;
  return Unit_CTypeAndUnitContainer::TypeOfUnit(unit, type) == UNIT_OK ? symbol_of(units, type) : std::string();
}

std::uint32_t unit_like(const Unit_CTypeAndUnitContainer& units, std::string_view text, std::uint32_t wanted,
                        const std::string& what) {
  const std::vector<const Unit_CEntry*> named = units_named(units, text);
  for (const Unit_CEntry* entry : named)
    if (type_number(entry->code) == type_number(wanted)) return entry->code;
  if (named.empty()) throw UsageError(what + ": " + in_quotes(text) + " is no unit" + unit_suggestion(units, text));
  throw UsageError(what + ": " + to_utf8(named.front()->text) + " is a unit of " +
                   quantity_of(units, named.front()->code) + ", but " + symbol_of(units, wanted) + " is one of " +
                   quantity_of(units, wanted));
}

}  // namespace norvane::cli
