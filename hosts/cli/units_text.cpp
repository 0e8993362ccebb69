#include "hosts/cli/units_text.h"

#include <algorithm>
#include <array>
#include <unordered_map>
#include <utility>

#include "core/text.h"
#include "hosts/cli/errors.h"
#include "hosts/cli/names.h"
#include "units/unit_oddities.h"

namespace norvane::cli {
namespace {

using Names = std::unordered_map<std::string, std::vector<const Unit_CEntry*>>;

std::string lower(std::string_view text) {
  std::string result(text);
  for (char& c : result)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return result;
}

bool is_letter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

// A leading m or M before another letter is milli or mega; "mm" and "MM" are no such prefix.
bool has_prefix_m(std::string_view text) {
  return text.size() > 1 && (text[0] == 'm' || text[0] == 'M') && is_letter(text[1]) && text[1] != 'm' &&
         text[1] != 'M';
}

// Equal but for case, and not milli for mega.
bool same_unit(std::string_view given, std::string_view known) {
  return lower(given) == lower(known) && (!has_prefix_m(known) || given[0] == known[0]);
}

const Names& names() {
  static const Names index = [] {
    Names made;
    for (const Unit_CEntry* entry : all_units())
      for (const std::u16string_view text : {entry->key, entry->text}) {
        std::vector<const Unit_CEntry*>& list = made[lower(to_utf8(text))];
        if (list.empty() || list.back() != entry) list.push_back(entry);
      }
    return made;
  }();
  return index;
}

void replace_all(std::string& text, std::string_view from, std::string_view to) {
  for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size())
    text.replace(at, from.size(), to);
}

// The catalogue's way to write what people write in another: "kg/h" is "kg/hr", "bara" is "bar(a)".
std::string respelt(std::string_view given) {
  std::string text(given);
  constexpr std::pair<std::string_view, std::string_view> signs[] = {
      {"\u00B3", "3"}, {"\u00B2", "2"}, {"^", ""}, {"\u00B7", "."}, {"\u03BC", "\u00B5"}, {"\u00BA", "\u00B0"}};
  for (const auto& [from, to] : signs) replace_all(text, from, to);

  constexpr std::pair<std::string_view, std::string_view> whole[] = {
      {"c", "degC"},     {"f", "degF"},          {"deg c", "degC"},     {"deg f", "degF"}, {"celsius", "degC"},
      {"kelvin", "K"},   {"fahrenheit", "degF"}, {"rankine", "R"},      {"degr", "R"},     {"kwh", "kW.h"},
      {"wh", "W.h"},     {"t", "tonne"},         {"lb", "lbm"},         {"sec", "s"},      {"hr", "h"},
      {"hour", "h"},     {"day", "d"},           {"litre", "l"},        {"liter", "l"},    {"gal", "US_gal"},
      {"barrel", "bbl"}, {"mol%", "perc_mole"},  {"%mol", "perc_mole"}, {"%", "perc"},     {"g/cm3", "g/cc"},
      {"kg/l", "g/cc"},  {"pas", "Pa.s"},        {"pa s", "Pa.s"},      {"mpa.s", "cP"},   {"mpas", "cP"}};
  const std::string small = lower(text);
  for (const auto& [from, to] : whole)
    if (small == from && !(has_prefix_m(text) && text[0] == 'M')) return std::string(to);

  // Time: per hour, day, second; mass: tonnes and pounds.
  constexpr std::pair<std::string_view, std::string_view> ends[] = {
      {"/h", "/hr"}, {"/hour", "/hr"}, {"/day", "/d"}, {"/sec", "/s"}};
  for (const auto& [from, to] : ends)
    if (small.ends_with(from)) {
      text.replace(text.size() - from.size(), from.size(), to);
      break;
    }
  constexpr std::pair<std::string_view, std::string_view> starts[] = {
      {"t/", "tonne/"}, {"lb/", "lbm/"}, {"klb/", "klbm/"}};
  for (const auto& [from, to] : starts)
    if (small.starts_with(from)) text.replace(0, from.size(), to);

  // Pressure: "bara", "bar a", "bar abs", "bar(a)" and the same for gauge; psi has no brackets.
  std::string pressure = lower(text);
  std::erase_if(pressure, [](char c) { return c == ' ' || c == '(' || c == ')' || c == '_'; });
  for (const auto& [word, letter] :
       {std::pair<std::string_view, char>{"abs", 'a'}, {"absolute", 'a'}, {"gauge", 'g'}})
    if (pressure.ends_with(word)) pressure.replace(pressure.size() - word.size(), word.size(), 1, letter);
  constexpr std::array<std::string_view, 4> bracketed = {"Pa", "kPa", "bar", "mbar"};
  const char last = pressure.empty() ? '\0' : pressure.back();
  if (last == 'a' || last == 'g') {
    const std::string_view unit = std::string_view(pressure).substr(0, pressure.size() - 1);
    if (unit == "psi") return pressure;
    for (const std::string_view known : bracketed)
      if (unit == lower(known) && same_unit(text.substr(0, known.size()), known))
        return std::string(known) + "(" + last + ")";
  }
  return text;
}

void add_named(std::vector<const Unit_CEntry*>& result, std::string_view text) {
  const auto found = names().find(lower(text));
  if (found == names().end()) return;
  const auto add = [&](auto&& matches) {
    for (const Unit_CEntry* entry : found->second)
      if (std::find(result.begin(), result.end(), entry) == result.end() && matches(*entry)) result.push_back(entry);
  };
  add([&](const Unit_CEntry& entry) { return same_unit(text, to_utf8(entry.key)); });
  add([&](const Unit_CEntry& entry) { return to_utf8(entry.text) == text; });
  add([&](const Unit_CEntry& entry) { return same_unit(text, to_utf8(entry.text)); });
}

bool is_gauge_and_absolute(std::uint32_t a, std::uint32_t b) {
  const std::uint32_t gauge = type_number(quantity::gaugepressure);
  const std::uint32_t absolute = type_number(quantity::absolutepressure);
  return (type_number(a) == gauge && type_number(b) == absolute) ||
         (type_number(a) == absolute && type_number(b) == gauge);
}

}  // namespace

const std::vector<const Unit_CEntry*>& all_units() {
  static const std::vector<const Unit_CEntry*> list = [] {
    const Unit_CTypeAndUnitContainer& units = Unit_CTypeAndUnitContainer::Instance();
    std::vector<std::uint32_t> codes;
    units.ListMembers(CodeKind::unit, 0, codes);
    std::vector<const Unit_CEntry*> entries;
    for (const std::uint32_t code : codes) {
      const Unit_CEntry* entry = nullptr;
      if (units.UnitDetails(code, entry) == UNIT_OK) entries.push_back(entry);
    }
    return entries;
  }();
  return list;
}

std::vector<const Unit_CEntry*> units_named(std::string_view text) {
  std::vector<const Unit_CEntry*> result;
  // Longer than any unit.
  if (text.size() > 64) return result;
  add_named(result, text);
  if (const std::string other = respelt(text); other != text) add_named(result, other);
  return result;
}

std::string unit_suggestion(std::string_view text) {
  if (lower(text).starts_with("mpa")) return "; the catalogue has no megapascal: 1 MPa is 1000 kPa, 10 bar";
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
  const std::string key = lower(to_utf8(unit.key));
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
