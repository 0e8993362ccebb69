#include "hosts/cli/units_text.h"

#include <algorithm>
#include <utility>

#include "core/text.h"
#include "hosts/cli/errors.h"
#include "hosts/cli/names.h"
#include "units/unit_oddities.h"

namespace norvane::cli {
std::string unit_suggestion(std::string_view text) {
  if (normalised(text).starts_with("mpa")) return "; the catalogue has no megapascal: 1 MPa is 1000 kPa, 10 bar";
  std::vector<std::string> known;
  for (const Unit_CEntry* entry : all_units()) known.push_back(to_utf8(entry->key));
  const std::string near = did_you_mean(text, known);
  return near.empty() ? "; norvane units lists them" : near;
}

std::string symbol_of(std::uint32_t code) {
  std::u16string_view text;
  return Unit_CTypeAndUnitContainer::Instance().TextOfCode(code, text) == UNIT_OK ? to_utf8(text) : std::string();
}

std::string quantity_of(std::uint32_t unit) {
  std::uint32_t type = 0;
  return Unit_CTypeAndUnitContainer::TypeOfUnit(unit, type) == UNIT_OK ? symbol_of(type) : std::string();
}

std::string unit_note(const Unit_CEntry& unit) {
  const std::string key = normalised(to_utf8(unit.key));
  std::string note = to_utf8(unit_warning(unit.code));
  for (const auto& [name, text] : {std::pair<std::string_view, std::string_view>{"nm3", "normal"},
                                   {"sm3", "standard"},
                                   {"scf", "standard"},
                                   {"scc", "standard"},
                                   {"ncc", "normal"},
                                   {"sbbl", "standard"}})
    if (note.empty() && key.find(name) != std::string::npos)
      note = std::string(text) + " volumes count as all other normal and standard ones, whatever their conditions";
  return note;
}

std::uint32_t known_unit(std::string_view text, std::uint32_t wanted, bool gauge_and_absolute) {
  // The cells of a column name the same unit over and over.
  struct Found {
    std::string text;
    std::uint32_t wanted = 0, code = 0;
    bool gauge_and_absolute = false;
  };
  constexpr std::size_t most_found = 8;
  static thread_local std::vector<Found> memory;
  for (const Found& found : memory)
    if (found.wanted == wanted && found.gauge_and_absolute == gauge_and_absolute && found.text == text)
      return found.code;
  std::uint32_t code = 0;
  const std::vector<const Unit_CEntry*> named = units_named(text);
  for (const Unit_CEntry* entry : named)
    if (code == 0 && type_number(entry->code) == type_number(wanted)) code = entry->code;
  for (const Unit_CEntry* entry : named)
    if (code == 0 && gauge_and_absolute && is_gauge_and_absolute(entry->code, wanted)) code = entry->code;
  if (code != 0) {
    if (memory.size() == most_found) memory.erase(memory.begin());
    memory.push_back({std::string(text), wanted, code, gauge_and_absolute});
  }
  return code;
}

std::uint32_t unit_like(std::string_view text, std::uint32_t wanted, bool gauge_and_absolute,
                        const std::string& what) {
  if (const std::uint32_t code = known_unit(text, wanted, gauge_and_absolute)) return code;
  const std::vector<const Unit_CEntry*> named = units_named(text);
  if (named.empty()) throw UsageError(what + ": " + in_quotes(text) + " is no unit" + unit_suggestion(text));
  const std::uint32_t other = named.front()->code;
  const bool gauge_for_absolute = std::any_of(named.begin(), named.end(), [&](const Unit_CEntry* entry) {
    return is_gauge_and_absolute(entry->code, wanted);
  });
  std::string hint;
  const bool absolute = type_number(wanted) == type_number(quantity::absolutepressure);
  const bool gauge = type_number(wanted) == type_number(quantity::gaugepressure);
  if (gauge_for_absolute)
    hint = "; --atm 1.01325bar says by which pressure of the atmosphere they differ";
  else if ((absolute || gauge) && type_number(other) == type_number(quantity::pressure))
    for (const Unit_CEntry* entry : all_units())
      if (hint.empty() && type_number(entry->code) == type_number(wanted) && entry->factor == named.front()->factor)
        hint = "; say " + to_utf8(entry->text);
  throw UsageError(what + ": " + to_utf8(named.front()->text) + " is a unit of " + quantity_of(other) + ", but " +
                   symbol_of(wanted) + " is one of " + quantity_of(wanted) + hint);
}

}  // namespace norvane::cli
