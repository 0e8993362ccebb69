#include "hosts/cli/record_text.h"

#include <span>

#include "core/text.h"
#include "hosts/cli/json_text.h"

namespace norvane::cli {
namespace {

std::string trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \n");
  if (first == std::string_view::npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(" \n") - first + 1));
}

Description description_of(std::u16string_view text, std::span<const record::Option> choices, std::uint32_t type) {
  Description result;
  for (const record::Option& choice : choices)
    result.options.push_back({std::to_string(choice.number), to_utf8(choice.label), {}});
  // The text has the record's options at its end.
  result.text = trimmed(to_utf8(text));
  std::string listed;
  for (const Option& option : result.options) listed += "; " + option.value + ": " + option.text;
  if (!listed.empty() && result.text.ends_with(listed)) result.text.resize(result.text.size() - listed.size());

  const Unit_CTypeAndUnitContainer& units = Unit_CTypeAndUnitContainer::Instance();
  std::vector<std::uint32_t> codes;
  if (choices.empty() && kind_of_code(type) == CodeKind::enumeration &&
      units.ListMembers(CodeKind::enumeration_value, type, codes) == UNIT_OK) {
    for (const std::uint32_t code : codes) {
      const Unit_CEntry* entry = nullptr;
      if (units.EnumerationValueDetails(code, entry) != UNIT_OK) continue;
      result.options.push_back({number_text(entry->factor), to_utf8(entry->text), to_utf8(entry->key)});
    }
  }
  return result;
}

}  // namespace

Description description_of(const Function_CInput& input) {
  return description_of(input.description, input.choices, input.type);
}

Description description_of(const Function_COutput& output) {
  return description_of(output.description, output.choices, output.role == 1 ? data_type::any : output.type);
}

std::vector<Option> options_of(const Function_CInput& input) { return description_of(input).options; }

std::string label_of(const Function_CInput& input, const Core_CVariant& value) {
  const std::string number = variant_text(value);
  for (const Option& option : options_of(input))
    if (option.value == number) return option.text;
  return {};
}

std::string type_text(const Unit_CTypeAndUnitContainer& units, std::uint32_t type) {
  std::u16string_view text;
  return units.TextOfCode(type, text) == UNIT_OK ? to_utf8(text) : std::string();
}

std::string unit_text(const Unit_CTypeAndUnitContainer& units, std::uint32_t type) {
  return kind_of_code(type) == CodeKind::unit ? type_text(units, type) : std::string();
}

std::string number_text(double value) {
  std::string text;
  append_number(text, value);
  return text;
}

std::string variant_text(const Core_CVariant& value) {
  switch (value.tag()) {
    case Core_CVariant::EMPTY: return {};
    case Core_CVariant::BOOL: return value.AsBool() ? "TRUE" : "FALSE";
    case Core_CVariant::STRING:
    case Core_CVariant::BORROWED_STRING: return '"' + to_utf8(value.AsText()) + '"';
    default: break;
  }
  double number = 0.0;
  return value.ToDouble(number) == CORE_RESULT_OK ? number_text(number) : std::string();
}

std::string range_text(const Function_CInput& input) {
  if (input.has_minimum() && input.has_maximum())
    return number_text(input.minimum) + " to " + number_text(input.maximum);
  if (input.has_minimum()) return ">= " + number_text(input.minimum);
  return input.has_maximum() ? "<= " + number_text(input.maximum) : std::string();
}

std::vector<std::string> keywords_of(const Function_CFunctionSpec& spec) {
  std::vector<std::string> list;
  const std::string text = to_utf8(spec.keywords);
  for (std::size_t from = 0; from < text.size();) {
    std::size_t end = text.find(',', from);
    if (end == std::string::npos) end = text.size();
    if (std::string word = trimmed(std::string_view(text).substr(from, end - from)); !word.empty())
      list.push_back(std::move(word));
    from = end + 1;
  }
  return list;
}

std::string title_of(const Function_CFunctionSpec& spec) {
  return to_utf8(spec.display_name.empty() ? spec.id : spec.display_name);
}

}  // namespace norvane::cli
