#include "hosts/cli/record_text.h"

#include <charconv>

#include "core/text.h"
#include "hosts/cli/json_text.h"

namespace norvane::cli {
namespace {

std::string trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \n");
  if (first == std::string_view::npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(" \n") - first + 1));
}

// "1: Corner Tappings" as an option; false for other text.
bool parse_option(std::string_view text, Option& option) {
  const std::size_t colon = text.find(':');
  if (colon == std::string_view::npos || colon == 0) return false;
  double value = 0.0;
  const std::from_chars_result result = std::from_chars(text.data(), text.data() + colon, value);
  if (result.ec != std::errc() || result.ptr != text.data() + colon) return false;
  option = {std::string(text.substr(0, colon)), trimmed(text.substr(colon + 1)), {}};
  return !option.text.empty();
}

}  // namespace

Description description_of(const Unit_CTypeAndUnitContainer& units, std::string_view description,
                           std::uint32_t type) {
  Description result;
  for (std::size_t from = 0; from <= description.size();) {
    std::size_t end = description.find(';', from);
    if (end == std::string_view::npos) end = description.size();
    const std::string part = trimmed(description.substr(from, end - from));
    Option option;
    if (from > 0 && parse_option(part, option)) {
      result.options.push_back(option);
    } else if (!part.empty()) {
      result.text.append(result.text.empty() ? "" : "; ").append(part);
    }
    from = end + 1;
  }
  std::vector<std::uint32_t> codes;
  if (kind_of_code(type) == CodeKind::enumeration && result.options.empty() &&
      units.ListMembers(CodeKind::enumeration_value, type, codes) == UNIT_OK) {
    for (const std::uint32_t code : codes) {
      const Unit_CEntry* entry = nullptr;
      if (units.EnumerationValueDetails(code, entry) != UNIT_OK) continue;
      result.options.push_back({number_text(entry->factor), to_utf8(entry->text), to_utf8(entry->key)});
    }
  }
  return result;
}

std::vector<Option> options_of(const Function_CInput& input) {
  return description_of(Unit_CTypeAndUnitContainer::Instance(), to_utf8(input.description), input.type).options;
}

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
