#include <nlohmann/json.hpp>

#include "core/text.h"
#include "hosts/cli/commands.h"
#include "hosts/cli/names.h"
#include "hosts/cli/record_text.h"
#include "hosts/cli/table.h"
#include "hosts/cli/units_text.h"

namespace norvane::cli {
namespace {

bool contains(std::u16string_view text, const std::string& word) {
  return !word.empty() && normalised(to_utf8(text)).find(normalised(word)) != std::string::npos;
}

// Units of a quantity that is called so, or that are called so themselves; by any part of a name when nothing is.
std::vector<const Unit_CEntry*> matching(const std::string& word) {
  std::vector<const Unit_CEntry*> found;
  for (const Unit_CEntry* entry : all_units())
    if (word.empty() || equal_names(quantity_of(entry->code), word)) found.push_back(entry);
  if (found.empty()) found = units_named(word);
  if (found.empty())
    for (const Unit_CEntry* entry : all_units())
      if (contains(to_utf16(quantity_of(entry->code)), word) || contains(entry->key, word) ||
          contains(entry->text, word) || contains(entry->long_name, word))
        found.push_back(entry);
  return found;
}

const Unit_CEntry& base_of(const Unit_CEntry& unit) {
  const Unit_CEntry* base = nullptr;
  const std::uint32_t code = make_code(CodeKind::unit, type_number(unit.code), 1);
  return Unit_CTypeAndUnitContainer::Instance().UnitDetails(code, base) == UNIT_OK ? *base : unit;
}

}  // namespace

ExitCode units(const UnitsOptions& options, Output& out) {
  const std::vector<const Unit_CEntry*> found = matching(options.word);
  if (found.empty())
    throw UsageError("no unit and no quantity is called " + in_quotes(options.word) + unit_suggestion(options.word));
  nlohmann::ordered_json list = nlohmann::ordered_json::array();
  std::string text, quantity;
  Table table;
  const auto finish = [&] {
    if (!table.empty()) text += table.text(2, page_width());
    table = Table();
  };
  for (const Unit_CEntry* unit : found) {
    const std::string name = quantity_of(unit->code), note = unit_note(*unit);
    list.push_back({{"key", to_utf8(unit->key)},
                    {"symbol", to_utf8(unit->text)},
                    {"name", to_utf8(unit->long_name)},
                    {"quantity", name},
                    {"factor", unit->factor},
                    {"offset", unit->offset},
                    {"note", note.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(note)}});
    if (name != quantity) {
      finish();
      text += (text.empty() ? "" : "\n") + name + " [" + to_utf8(base_of(*unit).text) + "]\n";
      quantity = name;
    }
    std::string factor = number_text(unit->factor);
    if (unit->offset != 0.0) factor += " + " + number_text(unit->offset);
    table.add({to_utf8(unit->key), to_utf8(unit->text), factor,
               to_utf8(unit->long_name) + (note.empty() ? "" : "; " + note)});
  }
  finish();
  out.write(options.json ? list.dump(2) + "\n" : text);
  return exit_good;
}

}  // namespace norvane::cli
