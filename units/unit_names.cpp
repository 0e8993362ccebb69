#include "units/unit_names.h"

#include <algorithm>
#include <array>
#include <string>
#include <unordered_map>
#include <utility>

#include "core/text.h"

namespace norvane {
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

bool is_gauge_and_absolute(std::uint32_t a, std::uint32_t b) noexcept {
  const std::uint32_t gauge = type_number(quantity::gaugepressure);
  const std::uint32_t absolute = type_number(quantity::absolutepressure);
  return (type_number(a) == gauge && type_number(b) == absolute) ||
         (type_number(a) == absolute && type_number(b) == gauge);
}

double fraction_scale(std::string_view text) {
  std::string name = lower(text);
  for (char& c : name)
    if (c == ' ' || c == '-') c = '_';
  for (const std::string_view known : {"%", "mol%", "mole%", "%mol", "%mole", "mol_%", "mole_%", "%_mol", "%_mole",
                                       "mol_percent", "mole_percent", "percent", "%(mol)", "%_(mol)"})
    if (name == known) return 0.01;
  for (const std::string_view known : {"mol/mol", "mole/mole", "fraction", "mole_fraction", "mol_fraction", "_", "1"})
    if (name == known) return 1.0;
  for (const std::string_view known : {"ppm", "ppm_mol", "molppm", "mol_ppm", "ppm(mol)"})
    if (name == known) return 1e-6;
  return 0.0;
}

}  // namespace norvane
