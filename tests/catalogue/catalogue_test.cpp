// Holds the records against the catalogue's table and against their own rules.
#include "catalogue/catalogue.h"

#include <gtest/gtest.h>

#include <algorithm>

#include <cstdio>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "core/text.h"
#include "hosts/module/module.h"

namespace norvane {
namespace {

struct Row {
  std::string id, display, group, category, subcategory, keywords;
  std::uint32_t flags;
  std::size_t inputs, outputs;
};

std::vector<Row> table() {
  std::ifstream file(NORVANE_TEST_DATA "/catalogue.csv");
  std::vector<Row> rows;
  std::string line;
  std::getline(file, line);
  while (std::getline(file, line)) {
    std::vector<std::string> cells;
    std::stringstream stream(line);
    for (std::string cell; std::getline(stream, cell, ';');) cells.push_back(cell);
    rows.push_back({cells.at(0), cells.at(1), cells.at(2), cells.at(3), cells.at(4), cells.at(5),
                    static_cast<std::uint32_t>(std::stoul(cells.at(6))), std::stoul(cells.at(7)),
                    std::stoul(cells.at(8))});
  }
  return rows;
}

TEST(Catalogue, EveryFunctionEqualsItsRowOfTheTable) {
  const auto rows = table();
  const auto lines = catalogue::lines();
  ASSERT_EQ(rows.size(), 118u);
  ASSERT_EQ(lines.size(), 118u);
  std::string missing;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const Row& row = rows[i];
    SCOPED_TRACE(row.id);
    EXPECT_EQ(to_utf8(lines[i].id), row.id);
    EXPECT_EQ(lines[i].inputs, row.inputs);
    EXPECT_EQ(lines[i].outputs, row.outputs);
    const Function_CFunctionSpec* spec = catalogue::find(lines[i].id);
    if (spec == nullptr) {
      missing += (missing.empty() ? "" : ", ") + row.id;
      continue;
    }
    EXPECT_EQ(to_utf8(spec->id), row.id);
    EXPECT_EQ(to_utf8(spec->display_name), row.display);
    EXPECT_EQ(to_utf8(spec->group->name), row.group);
    EXPECT_EQ(to_utf8(spec->category), row.category);
    EXPECT_EQ(to_utf8(spec->subcategory), row.subcategory);
    EXPECT_EQ(to_utf8(spec->keywords), row.keywords);
    EXPECT_EQ(spec->flags, row.flags);
    EXPECT_EQ(spec->input_count, row.inputs);
    EXPECT_EQ(spec->output_count, row.outputs);
    const bool named = row.group != "Extended" || row.id == "ConvertUnit" || row.id == "FunctionTest" ||
                       row.id == "InterpolationCurve";
    EXPECT_EQ(spec->name_input, named ? 0 : -1);
  }
  std::printf("functions of the catalogue that are still missing: %s\n", missing.empty() ? "none" : missing.c_str());
}

TEST(Catalogue, EnumerationFollowsTheTable) {
  const auto& library = host::module()->library;
  std::size_t position = 0;
  for (const auto& node : library.Entries()) {
    EXPECT_EQ(node.value->position, position);
    EXPECT_EQ(node.value, catalogue::specifications()[position]);
    ++position;
  }
  EXPECT_EQ(position, catalogue::specifications().size());
  for (const Function_CFunctionSpec* spec : catalogue::specifications()) {
    std::u16string name = spec->worksheet_name();
    for (char16_t& unit : name) unit = fold_ascii_upper(unit);
    EXPECT_EQ(library.Find(name), spec);
    EXPECT_EQ(library.FindVisible(spec->worksheet_name()) != nullptr, !spec->has(FUNCTION_HIDDEN));
    EXPECT_EQ(library.Find(spec->id), nullptr);  // not without the prefix
  }
}

// Options are listed in a description after a semicolon: "; 1: Observed->standard; 2: Standard->observed".
std::size_t listed_options(std::u16string_view description) {
  std::size_t options = 0;
  for (std::size_t i = 0; i + 3 < description.size(); ++i) {
    if (description[i] != u';' || description[i + 1] != u' ') continue;
    std::size_t k = i + 2;
    while (k < description.size() && description[k] >= u'0' && description[k] <= u'9') ++k;
    options += k > i + 2 && k < description.size() && description[k] == u':';
  }
  return options;
}

TEST(Catalogue, RecordsKeepTheirOwnRules) {
  const auto& units = Unit_CTypeAndUnitContainer::Instance();
  for (const Function_CFunctionSpec* spec : catalogue::specifications()) {
    SCOPED_TRACE(to_utf8(spec->id));
    EXPECT_FALSE(spec->description.empty());
    EXPECT_NE(spec->implementation, nullptr);
    std::set<std::u16string_view> keys;
    for (const Function_CInput& input : spec->input_records()) {
      SCOPED_TRACE(to_utf8(input.key));
      EXPECT_TRUE(!input.key.empty() && keys.insert(input.key).second) << "key missing or repeated";
      std::u16string_view name;
      EXPECT_EQ(units.TextOfCode(input.type, name), UNIT_OK);
      if (input.has_minimum() && input.has_maximum()) {
        EXPECT_LE(input.minimum, input.maximum);
        const std::size_t options = listed_options(input.description);
        if (options > 1 && input.minimum == 1.0) {
          EXPECT_EQ(static_cast<double>(options), input.maximum);
        }
      }
      double value = 0.0;
      if (!input.default_value.empty() && input.default_value.ToDouble(value) == CORE_RESULT_OK) {
        EXPECT_TRUE(!input.has_minimum() || value >= input.minimum) << value;
        EXPECT_TRUE(!input.has_maximum() || value <= input.maximum) << value;
      }
    }
    EXPECT_EQ(spec->name_input, spec->input_count > 0 && spec->inputs[0].role == 1 ? 0 : -1);
    keys.clear();
    std::size_t status_outputs = 0;
    for (const Function_COutput& output : spec->output_records()) {
      SCOPED_TRACE(to_utf8(output.key));
      EXPECT_TRUE(!output.key.empty() && keys.insert(output.key).second) << "key missing or repeated";
      std::u16string_view name;
      EXPECT_EQ(units.TextOfCode(output.type, name), UNIT_OK);
      status_outputs += output.role == 1;
      for (char16_t unit : output.tag_name) EXPECT_EQ(unit, fold_ascii_upper(unit));
    }
    if (spec->group->name != u"Extended") {
      EXPECT_EQ(status_outputs, 1u);
      EXPECT_EQ(spec->outputs[0].role, 1u);
    }
    // Keywords come from the vocabulary of the calculation functions.
    const auto vocabulary = Function_CGroup::Of(GroupId::Math).keywords;
    for (std::size_t start = 0; start < spec->keywords.size();) {
      const std::size_t comma = std::min(spec->keywords.find(u',', start), spec->keywords.size());
      const auto keyword = spec->keywords.substr(start, comma - start);
      EXPECT_TRUE(keyword == u"oiml" || std::any_of(vocabulary.begin(), vocabulary.end(),
                                                    [&](const auto& known) { return known.key == keyword; }))
          << to_utf8(keyword);
      start = comma + 1;
    }
  }
}

}  // namespace
}  // namespace norvane
