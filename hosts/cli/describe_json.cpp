#include "hosts/cli/describe_json.h"

#include "core/text.h"
#include "hosts/cli/record_text.h"

namespace norvane::cli {
namespace {

using nlohmann::ordered_json;

ordered_json text_or_null(std::string text) { return text.empty() ? ordered_json() : ordered_json(std::move(text)); }

// A whole number without a decimal point: 1994, not 1994.0.
ordered_json number_json(double value) {
  const bool whole = value > -1e15 && value < 1e15 && value == static_cast<double>(static_cast<std::int64_t>(value));
  return whole ? ordered_json(static_cast<std::int64_t>(value)) : ordered_json(value);
}

ordered_json variant_json(const Core_CVariant& value) {
  switch (value.tag()) {
    case Core_CVariant::EMPTY: return {};
    case Core_CVariant::BOOL: return value.AsBool();
    case Core_CVariant::STRING:
    case Core_CVariant::BORROWED_STRING: return to_utf8(value.AsText());
    default: break;
  }
  double number = 0.0;
  return value.ToDouble(number) == CORE_RESULT_OK ? number_json(number) : ordered_json();
}

}  // namespace

ordered_json record_json(const Unit_CTypeAndUnitContainer& units, const Function_CFunctionSpec& spec) {
  ordered_json inputs = ordered_json::array();
  for (const Function_CInput& input : spec.input_records())
    inputs.push_back({{"key", to_utf8(input.key)},
                      {"display", to_utf8(input.display_name)},
                      {"description", to_utf8(input.description)},
                      {"type", text_or_null(type_text(units, input.type))},
                      {"code", input.type},
                      {"optional", input.optional()},
                      {"default", variant_json(input.default_value)},
                      {"minimum", input.has_minimum() ? number_json(input.minimum) : ordered_json()},
                      {"maximum", input.has_maximum() ? number_json(input.maximum) : ordered_json()},
                      {"array", input.is_array()}});
  ordered_json outputs = ordered_json::array();
  for (const Function_COutput& output : spec.output_records()) {
    ordered_json values = ordered_json::array();
    for (const Function_CStatusValue& value : output.values())
      values.push_back({{"id", to_utf8(value.id)},
                        {"description", to_utf8(value.description)},
                        {"value", number_json(value.value)}});
    outputs.push_back({{"key", to_utf8(output.key)},
                       {"display", to_utf8(output.display_name)},
                       {"description", to_utf8(output.description)},
                       {"type", text_or_null(type_text(units, output.type))},
                       {"code", output.type},
                       {"fallback", variant_json(output.fallback)},
                       {"tag", text_or_null(to_utf8(output.tag_name))},
                       {"values", std::move(values)}});
  }
  return {{"id", to_utf8(spec.id)},
          {"worksheet", to_utf8(spec.worksheet_name())},
          {"display", to_utf8(spec.display_name)},
          {"description", to_utf8(spec.description)},
          {"group", to_utf8(spec.group->name)},
          {"category", to_utf8(spec.category)},
          {"subcategory", to_utf8(spec.subcategory)},
          {"keywords", keywords_of(spec)},
          {"flags", spec.flags},
          {"hidden", spec.has(FUNCTION_HIDDEN)},
          {"inputs", std::move(inputs)},
          {"outputs", std::move(outputs)}};
}

}  // namespace norvane::cli
