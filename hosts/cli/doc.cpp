#include <algorithm>
#include <map>

#include "catalogue/catalogue.h"
#include "core/text.h"
#include "hosts/cli/commands.h"
#include "hosts/cli/composition_names.h"
#include "hosts/cli/document.h"
#include "hosts/cli/errors.h"
#include "hosts/cli/input_file.h"
#include "hosts/cli/json_text.h"
#include "hosts/cli/record_text.h"
#include "hosts/cli/traceability.h"
#include "hosts/module/meaning.h"
#include "units/unit_oddities.h"

namespace norvane::cli {
namespace {

// All digits of a factor.
std::string full_number(double value) {
  std::string text;
  append_number(text, value);
  return text;
}

std::string code(std::string_view text) { return "`" + std::string(text) + "`"; }

void row(std::string& out, const std::vector<std::string>& cells) {
  for (const std::string& cell : cells) out += "| " + cell + (cell.empty() ? "" : " ");
  out += "|\n";
}

void head(std::string& out, const std::vector<std::string>& titles) {
  row(out, titles);
  for (std::size_t i = 0; i < titles.size(); ++i) out += "|---";
  out += "|\n";
}

std::string name_and_text(std::u16string_view display, const std::string& text) {
  const std::string name = markdown_text(to_utf8(display));
  if (name.empty() || text.empty() || text == to_utf8(display)) return name.empty() ? markdown_text(text) : name;
  return name + ". " + markdown_text(text);
}

std::string options_text(const Description& description) {
  std::string text;
  for (const Option& option : description.options) {
    text += "<br>" + option.value + ": " + markdown_text(option.text);
    if (!option.key.empty()) text += " (" + code(option.key) + ")";
  }
  return text;
}

std::string inputs_table(const Unit_CTypeAndUnitContainer& units, const Function_CFunctionSpec& spec) {
  std::string out;
  head(out, {"#", "Key", "Unit", "Range", "Default", "Description"});
  for (std::size_t i = 0; i < spec.input_count; ++i) {
    const Function_CInput& input = spec.inputs[i];
    const Description description = description_of(input);
    std::string unit = markdown_text(type_text(units, input.type));
    if (input.is_array()) unit += unit.empty() ? "range" : " (range)";
    std::string fallback = markdown_text(variant_text(input.default_value));
    if (!input.optional()) fallback = "required";
    row(out, {std::to_string(i), code(to_utf8(input.key)), unit, markdown_text(range_text(input)), fallback,
              name_and_text(input.display_name, description.text) + options_text(description)});
  }
  return out;
}

std::string outputs_table(const Unit_CTypeAndUnitContainer& units, const Function_CFunctionSpec& spec) {
  std::string out;
  head(out, {"#", "Key", "Unit", "When the call fails", "Tag", "Description"});
  for (std::size_t i = 0; i < spec.output_count; ++i) {
    const Function_COutput& output = spec.outputs[i];
    const Description description = description_of(output);
    std::string unit = markdown_text(type_text(units, output.type));
    if (output.unit_input >= 0)
      unit = "as " + code(to_utf8(spec.inputs[static_cast<std::size_t>(output.unit_input)].key));
    std::string fallback = variant_text(output.fallback);
    if (spec.has(FUNCTION_FALLBACK) && fallback.empty()) fallback = "0";
    if (!spec.has(FUNCTION_FALLBACK)) fallback.clear();
    row(out, {std::to_string(i), code(to_utf8(output.key)), unit, markdown_text(fallback),
              markdown_text(to_utf8(output.tag_name)),
              name_and_text(output.display_name, description.text) + options_text(description)});
  }
  return out;
}

std::string values_table(const Function_CFunctionSpec& spec) {
  std::string out;
  for (const Function_COutput& output : spec.output_records()) {
    const std::vector<host::Meaning> meanings = host::meanings_of(output);
    if (meanings.empty() || !output.choices.empty()) continue;  // options stand in the description
    out += "\n## Values of " + code(to_utf8(output.key)) + "\n\n";
    head(out, {"Value", "Name", "Meaning"});
    for (const host::Meaning& meaning : meanings)
      row(out,
          {number_text(meaning.number), markdown_text(to_utf8(meaning.id)), markdown_text(to_utf8(meaning.text))});
  }
  return out;
}

std::string behaviour(const Function_CFunctionSpec& spec) {
  std::string out;
  if (spec.has(FUNCTION_FALLBACK))
    out += "- A call whose arguments cannot be used answers with the values of the column \"When the call fails\".\n";
  if (spec.has(FUNCTION_NO_RANGE_CHECK)) out += "- Ranges are not checked before the calculation.\n";
  if (spec.has(FUNCTION_VOLATILE)) out += "- Recalculated at every recalculation of a sheet.\n";
  if (spec.has(FUNCTION_RETENTIVE)) out += "- Keeps data between calls under its `Name`, which must be given.\n";
  if (spec.has(FUNCTION_VARIABLE_INPUTS)) out += "- The last input may be repeated.\n";
  if (spec.has(FUNCTION_HIDDEN)) out += "- Kept for existing sheets; not listed by the catalogue's functions.\n";
  return out;
}

// Notes keep their paragraphs.
std::string notes(const Function_CFunctionSpec& spec) {
  const std::string text = to_utf8(spec.notes);
  std::string out;
  for (std::size_t from = 0; from < text.size();) {
    std::size_t end = text.find('\n', from);
    if (end == std::string::npos) end = text.size();
    if (end > from) out += "\n" + markdown_text(std::string_view(text).substr(from, end - from)) + "\n";
    from = end + 1;
  }
  return out.empty() ? out : "\n## Notes\n" + out;
}

std::string page(const Unit_CTypeAndUnitContainer& units, const Function_CFunctionSpec& spec) {
  const std::string id = to_utf8(spec.id);
  std::string out = "# " + markdown_text(id);
  if (!spec.display_name.empty()) out += ": " + markdown_text(to_utf8(spec.display_name));
  out += "\n\n" + markdown_text(to_utf8(spec.description)) + "\n\n";
  out += "Worksheet function " + code(to_utf8(spec.worksheet_name())) + ". Category " +
         markdown_text(to_utf8(spec.category)) + ", " + markdown_text(to_utf8(spec.subcategory)) + ".";
  const std::vector<std::string> keywords = keywords_of(spec);
  for (std::size_t i = 0; i < keywords.size(); ++i)
    out.append(i == 0 ? " Keywords: " : ", ")
        .append(markdown_text(keywords[i]))
        .append(i + 1 == keywords.size() ? "." : "");
  out += "\n\n## Inputs\n\n" + inputs_table(units, spec) + "\n## Outputs\n\n" + outputs_table(units, spec);
  out += values_table(spec);
  if (composition_input(spec) < spec.input_count)
    out += "\n## Order of the composition\n\n" + markdown_text(component_order()) + ".\n";
  if (const std::string lines = behaviour(spec); !lines.empty()) out += "\n## Behaviour\n\n" + lines;
  return out + notes(spec);
}

std::string link(const Function_CFunctionSpec& spec) {
  const std::string id = to_utf8(spec.id);
  return "[" + markdown_text(id) + "](" + id + ".md)";
}

// Every quantity with its units, and a warning where a factor is not the physical one.
std::string units_page(const Unit_CTypeAndUnitContainer& units) {
  std::string out = "# Units\n\nWritten by `norvane doc` from the unit table; do not edit.\n\n";
  out +=
      "A value in the base unit, the first of each quantity, is the value times the factor plus the offset. A unit is\n"
      "named by its key in any case, or by its symbol where only one unit bears it.\n";
  std::vector<std::uint32_t> quantities, members;
  units.ListMembers(CodeKind::quantity, 0, quantities);
  for (const std::uint32_t quantity : quantities) {
    const Unit_CEntry* entry = nullptr;
    if (units.TypeDetails(quantity, entry) != UNIT_OK) continue;
    out += "\n## " + markdown_text(to_utf8(entry->text)) + "\n\n";
    head(out, {"Key", "Symbol", "Factor", "Offset", "Name"});
    std::string warnings;
    units.ListMembers(CodeKind::unit, quantity, members);
    for (const std::uint32_t member : members) {
      if (units.UnitDetails(member, entry) != UNIT_OK) continue;
      const std::u16string warning = unit_warning(member);
      row(out, {code(to_utf8(entry->key)), markdown_text(to_utf8(entry->text)),
                full_number(entry->factor) + (warning.empty() ? "" : " (!)"),
                entry->offset == 0.0 ? "" : full_number(entry->offset), markdown_text(to_utf8(entry->long_name))});
      if (!warning.empty()) warnings += "- **Warning:** " + markdown_text(to_utf8(warning)) + "\n";
    }
    if (!warnings.empty()) out += "\n" + warnings;
  }
  return out;
}

std::string index_page() {
  std::map<std::string, std::vector<const Function_CFunctionSpec*>> standards, keywords;
  for (const Function_CFunctionSpec* spec : catalogue::specifications()) {
    standards[to_utf8(spec->subcategory)].push_back(spec);
    for (const std::string& word : keywords_of(*spec)) keywords[word].push_back(spec);
  }
  std::string out = "# Functions\n\nWritten by `norvane doc` from the catalogue's records; do not edit.\n\n";
  out += "[By standard](#by-standard), [by keyword](#by-keyword), [units](units.md)\n\n## By standard\n";
  for (const auto& [standard, functions] : standards) {
    out += "\n### " + markdown_text(standard) + "\n\n";
    head(out, {"Function", "Name", "Description"});
    for (const Function_CFunctionSpec* spec : functions)
      row(out, {link(*spec), markdown_text(to_utf8(spec->display_name)), markdown_text(to_utf8(spec->description))});
  }
  out += "\n## By keyword\n";
  for (const auto& [word, functions] : keywords) {
    out += "\n### " + markdown_text(word) + "\n\n";
    for (const Function_CFunctionSpec* spec : functions) out += "- " + link(*spec) + "\n";
  }
  std::string missing;
  for (const catalogue::Line& line : catalogue::lines())
    if (line.record == nullptr) missing += "- " + markdown_text(to_utf8(line.id)) + "\n";
  if (!missing.empty()) out += "\n## Not part of this build\n\n" + missing;
  return out;
}

}  // namespace

ExitCode doc(const DocOptions& options, Output& out) {
  const Unit_CTypeAndUnitContainer& units = Unit_CTypeAndUnitContainer::Instance();
  if (options.folder.empty() && options.traceability.empty())
    throw UsageError("say --out FOLDER, --traceability FILE or both");
  if (!options.traceability.empty()) {
    write_file(options.traceability, traceability_page());
    out.write("written to " + options.traceability + "\n");
  }
  if (options.folder.empty()) return exit_good;
  make_folder(options.folder);
  for (const Function_CFunctionSpec* spec : catalogue::specifications())
    write_file(options.folder + "/" + to_utf8(spec->id) + ".md", page(units, *spec));
  write_file(options.folder + "/README.md", index_page());
  write_file(options.folder + "/units.md", units_page(units));
  out.write(std::to_string(catalogue::specifications().size()) + " pages, README.md and units.md written to " +
            options.folder + "\n");
  return exit_good;
}

}  // namespace norvane::cli
