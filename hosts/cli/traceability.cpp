#include "hosts/cli/traceability.h"

#include <algorithm>
#include <map>
#include <stdexcept>
#include <vector>

#include "catalogue/catalogue.h"
#include "catalogue/identity.h"
#include "core/coefficients.h"
#include "core/text.h"
#include "hosts/cli/check_values.h"
#include "hosts/cli/json_text.h"
#include "hosts/cli/record_text.h"
#include "hosts/cli/standards.h"
#include "units/unit_oddities.h"

namespace norvane::cli {
namespace {

using Functions = std::vector<const Function_CFunctionSpec*>;

// How many of the published values of a file are a function's.
using Counts = std::map<std::string, std::map<std::string, int>>;  // function, file

Counts check_values() {
  Counts counts;
  constexpr std::string_view key = "\"function\":";
  for (const CheckFile& file : built_in_check_values()) {
    for (std::size_t at = file.lines.find(key); at != file.lines.npos; at = file.lines.find(key, at)) {
      const std::size_t begin = file.lines.find('"', at + key.size()) + 1;
      const std::size_t end = file.lines.find('"', begin);
      ++counts[std::string(file.lines.substr(begin, end - begin))][std::string(file.name)];
      at = end;
    }
  }
  return counts;
}

std::vector<std::string> paragraphs_of(std::u16string_view notes) {
  std::vector<std::string> list;
  std::string text = to_utf8(notes);
  for (std::size_t from = 0; from < text.size();) {
    const std::size_t end = std::min(text.find('\n', from), text.size());
    if (end > from) list.push_back(text.substr(from, end - from));
    from = end + 1;
  }
  return list;
}

std::string names_of(const Functions& functions) {
  std::string text;
  for (const Function_CFunctionSpec* spec : functions) text += (text.empty() ? "`" : ", `") + to_utf8(spec->id) + "`";
  return text;
}

// What the records say about source (first paragraph), limits and deviations (the others), each once with the
// functions that say it.
std::string remarks(const Functions& functions) {
  std::vector<std::string> order;
  std::map<std::string, Functions> said;
  for (const Function_CFunctionSpec* spec : functions) {
    const std::vector<std::string> list = paragraphs_of(spec->notes);
    if (list.empty()) throw std::logic_error(to_utf8(spec->id) + " names no source in its record");
    for (std::size_t i = 0; i < list.size(); ++i) {
      const std::string line = (i == 0 ? "**Source.** " : "**Limits and deviations.** ") + list[i];
      if (said[line].empty()) order.push_back(line);
      said[line].push_back(spec);
    }
  }
  std::string text;
  for (const std::string& line : order)
    text += "\n- " + line + (said[line].size() == functions.size() ? "" : " (" + names_of(said[line]) + ")");
  return text + "\n";
}

std::string tables_of(const Function_CFunctionSpec& spec, const Counts& counts) {
  std::string text;
  for (const CoefficientSet* set : spec.coefficients)
    text += (text.empty() ? "" : ", ") + std::string(set->standard());
  if (!text.empty()) return text;
  const bool missing =
      counts.find(to_utf8(spec.id)) == counts.end() && spec.notes.find(u"not part of this build") != spec.notes.npos;
  return missing ? "not in this build" : "in the equations";
}

std::string values_of(const Function_CFunctionSpec& spec, const Counts& counts) {
  const auto found = counts.find(to_utf8(spec.id));
  if (found == counts.end()) return "none";
  std::string text;
  for (const auto& [file, count] : found->second)
    text += (text.empty() ? "" : ", ") + std::to_string(count) + " in " + file;
  return text;
}

}  // namespace

std::string traceability_page() {
  const Counts counts = check_values();
  std::string page =
      "# What the numbers come from\n\nWritten by `norvane doc --traceability docs/traceability.md` from the records, "
      "the coefficient tables and the check values; a test holds it up to date. How close the numbers are stands in "
      "[accuracy.md](accuracy.md), inputs, outputs and statuses of a function in the [reference](functions/README.md)."
      "\n\nThe check values are the lines of `tests/data`; each names its own source. Tables have a checksum (CRC-32) "
      "that is part of the library's identity; a standard whose tables differ from it refuses to calculate.\n";
  std::vector<std::string> standards = standard_names();
  std::erase(standards, std::string(general_functions));
  for (const std::string& standard : standards) {
    Functions functions = functions_of_standard(standard, true);
    std::erase_if(functions, [&](const Function_CFunctionSpec* spec) { return standard_of(*spec) != standard; });
    if (functions.empty()) continue;
    page += "\n## " + standard + "\n\n| function | coefficient tables | check values |\n|---|---|---|\n";
    for (const Function_CFunctionSpec* spec : functions)
      page += "| [`" + to_utf8(spec->id) + "`](functions/" + to_utf8(spec->id) + ".md) | " +
              tables_of(*spec, counts) + " | " + values_of(*spec, counts) + " |\n";
    page += remarks(functions);
  }

  page += "\n## Coefficient tables\n\n| tables | numbers' source | of | checksum |\n|---|---|---|---|\n";
  for (const CoefficientSet* set : catalogue::coefficient_sets()) {
    std::string tables;
    for (const CoefficientTable& table : set->tables())
      tables += (tables.empty() ? "`" : ", `") + std::string(table.name) + "`";
    page += "| " + std::string(set->standard()) + " | " + std::string(set->source()) + " | " + tables + " | " +
            catalogue::checksum_text(set->checksum()) + " |\n";
  }
  page +=
      "\n## Unit factors that are kept although they are off\n\nResults in service depend on them; whoever converts "
      "with them is warned.\n\n| unit | factor is off by the ratio |\n|---|---|\n";
  const Unit_CTypeAndUnitContainer& units = Unit_CTypeAndUnitContainer::Instance();
  for (const Unit_COddity& oddity : unit_oddities()) {
    const Unit_CEntry* unit = nullptr;
    if (units.UnitDetails(oddity.code, unit) != UNIT_OK) continue;
    std::string ratio;
    append_number(ratio, unit->factor / oddity.physical, 6);
    page += "| `" + to_utf8(unit->key) + "` | " + ratio + " |\n";
  }
  return page;
}

}  // namespace norvane::cli
