#include <algorithm>

#include "catalogue/catalogue.h"
#include "core/text.h"
#include "hosts/cli/commands.h"
#include "hosts/cli/describe_json.h"
#include "hosts/cli/names.h"
#include "hosts/cli/record_text.h"
#include "hosts/cli/standards.h"
#include "hosts/cli/table.h"

namespace norvane::cli {
namespace {

void add_once(std::vector<std::string>& names, std::string name) {
  if (!name.empty() && std::find(names.begin(), names.end(), name) == names.end()) names.push_back(std::move(name));
}

bool has_name(const std::vector<std::string>& names, const std::string& given) {
  return std::any_of(names.begin(), names.end(), [&](const std::string& name) { return equal_names(name, given); });
}

// A filter that no function of the catalogue answers to is a slip of the pen.
void check_filter(const char* what, const std::string& given, const std::vector<std::string>& known) {
  if (given.empty() || has_name(known, given)) return;
  std::string text = std::string("no function has the ") + what + " " + in_quotes(given) + did_you_mean(given, known);
  if (nearest(given, known).empty()) {
    text += "; there are ";
    for (std::size_t i = 0; i < known.size(); ++i) text.append(i == 0 ? "" : ", ").append(known[i]);
  }
  throw UsageError(text);
}

// A word anywhere in what the record says about the function.
bool speaks_of(const Function_CFunctionSpec& spec, const std::string& word) {
  const std::string wanted = normalised(word);
  for (const std::u16string_view text :
       {spec.id, spec.display_name, spec.description, spec.subcategory, spec.keywords})
    if (normalised(to_utf8(text)).find(wanted) != std::string::npos) return true;
  return normalised(standard_of(spec)).find(wanted) != std::string::npos;
}

std::vector<std::string> categories_of(const Function_CFunctionSpec& spec) {
  std::vector<std::string> names;
  add_once(names, to_utf8(spec.category));
  add_once(names, to_utf8(spec.subcategory));
  add_once(names, to_utf8(spec.group->name));
  return names;
}

}  // namespace

ExitCode list(const ListOptions& options, Output& out) {
  std::vector<std::string> categories, keywords;
  for (const Function_CFunctionSpec* spec : catalogue::specifications()) {
    for (std::string& name : categories_of(*spec)) add_once(categories, std::move(name));
    for (std::string& word : keywords_of(*spec)) add_once(keywords, std::move(word));
  }
  check_filter("category", options.category, categories);
  check_filter("keyword", options.keyword, keywords);
  const std::vector<const Function_CFunctionSpec*> of_standard = functions_of_standard(options.standard, true);
  if (!options.standard.empty() && of_standard.empty()) check_filter("standard", options.standard, standard_names());

  const Unit_CTypeAndUnitContainer& units = Unit_CTypeAndUnitContainer::Instance();
  nlohmann::ordered_json json = nlohmann::ordered_json::array();
  std::vector<std::pair<std::string, Table>> tables;
  for (const Function_CFunctionSpec* spec : catalogue::specifications()) {
    if (!options.all && !spec->visible()) continue;
    if (!options.category.empty() && !has_name(categories_of(*spec), options.category)) continue;
    if (!options.keyword.empty() && !has_name(keywords_of(*spec), options.keyword)) continue;
    if (!of_standard.empty() && std::find(of_standard.begin(), of_standard.end(), spec) == of_standard.end())
      continue;
    if (!options.word.empty() && !speaks_of(*spec, options.word)) continue;
    json.push_back(record_json(units, *spec));
    const std::string group = options.by_standard ? standard_of(*spec) : "";
    auto found = std::find_if(tables.begin(), tables.end(), [&](const auto& entry) { return entry.first == group; });
    if (found == tables.end()) found = tables.insert(tables.end(), {group, Table()});
    std::vector<std::string> row = {to_utf8(spec->id)};
    if (!options.by_standard) row.push_back(to_utf8(spec->subcategory));
    row.push_back(to_utf8(spec->display_name.empty() ? spec->description : spec->display_name));
    found->second.add(std::move(row));
  }
  if (!options.word.empty() && json.empty()) throw UsageError("no function speaks of " + in_quotes(options.word));
  std::string text;
  for (const auto& [group, table] : tables)
    text += (group.empty() ? "" : (text.empty() ? "" : "\n") + group + "\n") +
            table.text(group.empty() ? 0 : 2, page_width());
  out.write(options.json ? json.dump(2) + "\n" : text);
  return exit_good;
}

}  // namespace norvane::cli
