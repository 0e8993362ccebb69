#include <nlohmann/json.hpp>

#include "hosts/cli/commands.h"
#include "hosts/cli/table.h"
#include "math/common/components.h"

namespace norvane::cli {

ExitCode components(bool json, Output& out) {
  nlohmann::ordered_json list = nlohmann::ordered_json::array();
  Table table;
  table.add({"", "name", "formula", "also"});
  for (std::size_t i = 0; i < component::count; ++i) {
    const component::Component& entry = component::table[i];
    std::vector<std::string> synonyms;
    std::string also;
    for (const std::string_view synonym : entry.synonyms) {
      if (synonym.empty()) continue;
      synonyms.emplace_back(synonym);
      also.append(also.empty() ? "" : ", ").append(synonym);
    }
    list.push_back({{"index", i}, {"name", entry.name}, {"formula", entry.formula}, {"synonyms", synonyms}});
    table.add({std::to_string(i), std::string(entry.name), std::string(entry.formula), also});
  }
  out.write(json ? list.dump(2) + "\n" : table.text(0, page_width()));
  return exit_good;
}

}  // namespace norvane::cli
