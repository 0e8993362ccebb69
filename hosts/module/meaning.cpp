#include "hosts/module/meaning.h"

#include <algorithm>

#include "units/unit_catalogue.h"

namespace norvane::host {
namespace {

constexpr bool is_status(const Function_COutput& output) { return output.role == 1; }

const Function_CStatusValue* own_value(const Function_COutput& output, double number) noexcept {
  for (const Function_CStatusValue& value : output.values())
    if (value.value == number) return &value;
  return nullptr;
}

}  // namespace

std::u16string_view meaning_of(const Function_COutput& output, double number) noexcept {
  if (const Function_CStatusValue* value = own_value(output, number)) return value->description;
  for (const record::Option& option : output.choices)
    if (option.number == number) return option.label;
  const auto& units = Unit_CTypeAndUnitContainer::Instance();
  std::uint32_t code = 0;
  const Unit_CEntry* entry = nullptr;
  if (kind_of_code(output.type) == CodeKind::enumeration &&
      units.EnumerationValueByNumber(output.type, number, code) == UNIT_OK &&
      units.EnumerationValueDetails(code, entry) == UNIT_OK)
    return entry->text;
  return is_status(output) && number == 0.0 ? u"success" : u"";
}

std::vector<Meaning> meanings_of(const Function_COutput& output) {
  std::vector<double> numbers;
  for (const Function_CStatusValue& value : output.values()) numbers.push_back(value.value);
  for (const record::Option& option : output.choices) numbers.push_back(option.number);
  if (is_status(output)) {
    numbers.push_back(0.0);
  } else if (kind_of_code(output.type) == CodeKind::enumeration) {
    const auto& units = Unit_CTypeAndUnitContainer::Instance();
    std::vector<std::uint32_t> codes;
    units.ListMembers(CodeKind::enumeration_value, output.type, codes);
    for (const std::uint32_t code : codes) {
      const Unit_CEntry* entry = nullptr;
      if (units.EnumerationValueDetails(code, entry) == UNIT_OK) numbers.push_back(entry->factor);
    }
  }
  std::sort(numbers.begin(), numbers.end());
  numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
  std::vector<Meaning> meanings;
  for (const double number : numbers) {
    const Function_CStatusValue* own = own_value(output, number);
    meanings.push_back({number, own != nullptr ? own->id : std::u16string_view{}, meaning_of(output, number)});
  }
  return meanings;
}

}  // namespace norvane::host
