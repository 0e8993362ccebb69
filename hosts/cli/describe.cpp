#include <set>

#include "core/text.h"
#include "hosts/cli/commands.h"
#include "hosts/cli/composition_names.h"
#include "hosts/cli/describe_json.h"
#include "hosts/cli/names.h"
#include "hosts/cli/record_text.h"
#include "hosts/cli/standards.h"
#include "hosts/cli/table.h"
#include "hosts/module/meaning.h"
#include "units/unit_oddities.h"

namespace norvane::cli {
namespace {

std::string sentence(const std::u16string_view display, const std::string& description) {
  const std::string name = to_utf8(display);
  if (description.empty() || description == name) return name;
  return name.empty() ? description : name + ": " + description;
}

void add_options(Table& table, const Description& description, std::size_t columns) {
  for (const Option& option : description.options) {
    std::vector<std::string> row(columns);
    row.back() = option.value + " = " + option.text;
    if (!option.key.empty() && !equal_names(option.key, option.text)) row.back() += " (" + option.key + ")";
    table.add(std::move(row));
  }
}

// One line a unit of the function that does not convert as it should.
std::string warnings_of(const Function_CFunctionSpec& spec) {
  std::set<std::uint32_t> codes;
  for (const Function_CInput& input : spec.input_records()) codes.insert(input.type);
  for (const Function_COutput& output : spec.output_records()) codes.insert(output.type);
  std::string text;
  for (const std::uint32_t code : codes)
    if (const std::u16string warning = unit_warning(code); !warning.empty())
      text += "\nWarning: values in other units are converted, and " + to_utf8(warning) + "\n";
  return text;
}

std::string text_of(const Unit_CTypeAndUnitContainer& units, const Function_CFunctionSpec& spec) {
  std::string text = to_utf8(spec.id);
  if (!spec.display_name.empty()) text += "  " + to_utf8(spec.display_name);
  text += "\n" + to_utf8(spec.description) + "\n";
  text += "Worksheet function " + to_utf8(spec.worksheet_name()) + "; category " + to_utf8(spec.category) + ", " +
          to_utf8(spec.subcategory);
  const std::vector<std::string> keywords = keywords_of(spec);
  for (std::size_t i = 0; i < keywords.size(); ++i) text.append(i == 0 ? "; keywords " : ", ").append(keywords[i]);
  text = wrapped(text, page_width());
  text += "\n\nInputs\n";

  Table inputs;
  inputs.add({"key", "unit", "range", "default", ""});
  for (const Function_CInput& input : spec.input_records()) {
    const Description description = description_of(input);
    std::string unit = type_text(units, input.type);
    if (input.is_array()) unit = unit.empty() ? "range" : unit + " (range)";
    std::string fallback = variant_text(input.default_value);
    if (fallback.empty()) fallback = input.optional() ? "-" : "required";
    inputs.add({to_utf8(input.key), unit.empty() ? "-" : unit, range_text(input).empty() ? "-" : range_text(input),
                fallback, sentence(input.display_name, description.text)});
    add_options(inputs, description, 5);
  }
  text += inputs.text(2, page_width()) + "\nOutputs\n";

  Table outputs;
  outputs.add({"key", "unit", ""});
  for (const Function_COutput& output : spec.output_records()) {
    const Description description = description_of(output);
    std::string unit = type_text(units, output.type);
    if (output.unit_input >= 0) unit = "as " + to_utf8(spec.inputs[static_cast<std::size_t>(output.unit_input)].key);
    outputs.add({to_utf8(output.key), unit.empty() ? "-" : unit, sentence(output.display_name, description.text)});
    add_options(outputs, description, 3);
    if (!output.choices.empty()) continue;  // they stand in the description
    for (const host::Meaning& meaning : host::meanings_of(output))
      outputs.add({"", "",
                   number_text(meaning.number) + " = " + to_utf8(meaning.text) +
                       (meaning.id.empty() ? "" : " (" + to_utf8(meaning.id) + ")")});
  }
  text += outputs.text(2, page_width()) + warnings_of(spec);
  if (composition_input(spec) < spec.input_count)
    text += "\n" + wrapped("Composition: " + component_order(), page_width()) + "\n";
  if (!spec.notes.empty())
    text += "\n" + wrapped(to_utf8(spec.notes), page_width()) + (spec.notes.ends_with(u'\n') ? "" : "\n");
  return text;
}

}  // namespace

ExitCode describe(const DescribeOptions& options, Output& out) {
  const Unit_CTypeAndUnitContainer& units = Unit_CTypeAndUnitContainer::Instance();
  const Function_CFunctionSpec* spec = known_function(options.id);
  if (spec == nullptr) {
    // A standard: what it offers.
    const std::vector<const Function_CFunctionSpec*> functions = functions_of_standard(options.id, true);
    if (functions.empty()) find_function(options.id);  // which says what was meant
    Table table;
    for (const Function_CFunctionSpec* function : functions)
      table.add({to_utf8(function->id), to_utf8(function->description)});
    out.write(table.text(0, page_width()));
    return exit_good;
  }
  if (options.keys) {
    for (const Function_CInput& input : spec->input_records()) out.write(to_utf8(input.key) + "\n");
    return exit_good;
  }
  out.write(options.json ? record_json(units, *spec).dump(2) + "\n" : text_of(units, *spec));
  return exit_good;
}

}  // namespace norvane::cli
