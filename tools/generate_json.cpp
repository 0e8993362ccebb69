// The catalogue for programs that declare foreign functions at run time: exports, parameters and what the records say
// of them.
#include <nlohmann/json.hpp>

#include "hosts/module/meaning.h"
#include "math/common/components.h"
#include "tools/signatures.h"
#include "units/unit_catalogue.h"

namespace norvane::generate {
namespace {

using Json = nlohmann::ordered_json;

// The description without the options that stand at its end.
std::string description_of(std::u16string_view text, std::span<const record::Option> choices) {
  std::u16string listed;
  for (const record::Option& choice : choices)
    listed.append(u"; ").append(to_utf16(std::to_string(choice.number))).append(u": ").append(choice.label);
  if (!listed.empty() && text.ends_with(listed)) text.remove_suffix(listed.size());
  while (!text.empty() && (text.back() == u'\n' || text.back() == u' ')) text.remove_suffix(1);
  return narrow(text);
}

Json option_json(double number, std::u16string_view label) {
  return {{"number", static_cast<std::int64_t>(number)}, {"label", narrow(label)}};
}

// The numbers that an input can be, where they are listed.
Json options_of(const Function_CInput& input) {
  Json list = Json::array();
  for (const record::Option& choice : input.choices) list.push_back(option_json(choice.number, choice.label));
  std::vector<std::uint32_t> codes;
  const auto& units = Unit_CTypeAndUnitContainer::Instance();
  if (input.choices.empty() && kind_of_code(input.type) == CodeKind::enumeration &&
      units.ListMembers(CodeKind::enumeration_value, input.type, codes) == UNIT_OK)
    for (const std::uint32_t code : codes) {
      const Unit_CEntry* entry = nullptr;
      if (units.EnumerationValueDetails(code, entry) == UNIT_OK)
        list.push_back(option_json(entry->factor, entry->text));
    }
  return list;
}

Json meanings_json(const Function_COutput& output) {
  Json list = Json::array();
  for (const host::Meaning& meaning : host::meanings_of(output))
    list.push_back(option_json(meaning.number, meaning.text));
  return list;
}

// Names of the cells of a list: a gas has its components, with what else they are called.
Json cells_of_a_gas() {
  Json list = Json::array();
  for (const component::Component& entry : component::table) {
    Json names = {entry.name, entry.formula};
    for (const std::string_view synonym : entry.synonyms)
      if (!synonym.empty()) names.push_back(synonym);
    list.push_back(std::move(names));
  }
  return list;
}

template <class Record>
Json described(const Parameter& parameter, const Record& record) {
  Json json = {{"name", parameter.name},
               {"key", narrow(record.key)},
               {"type", host::passing_name(parameter.passing)},
               {"form", form_of(record)},
               {"argument", parameter.index + 1},
               {"display", narrow(record.display_name)},
               {"description", description_of(record.description, record.choices)}};
  const Unit_CEntry* unit = nullptr;
  if (kind_of_code(record.type) == CodeKind::unit &&
      Unit_CTypeAndUnitContainer::Instance().UnitDetails(record.type, unit) == UNIT_OK) {
    json["unit"] = narrow(unit->text);
    json["unit_key"] = narrow(unit->key);
  }
  return json;
}

void add_default(Json& input, const Core_CVariant& value) {
  double number = 0.0;
  if (value.tag() == Core_CVariant::STRING || value.tag() == Core_CVariant::BORROWED_STRING) {
    input["default"] = narrow(value.AsText());
  } else if (!value.empty() && value.ToDouble(number) == CORE_RESULT_OK) {
    input["default"] = number;
  }
}

Json input_json(const Parameter& parameter, const Function_CInput& input) {
  Json json = described(parameter, input);
  add_default(json, input.default_value);
  if (input.has_minimum()) json["minimum"] = input.minimum;
  if (input.has_maximum()) json["maximum"] = input.maximum;
  if (Json options = options_of(input); !options.empty()) json["options"] = std::move(options);
  if (parameter.passing == host::Passing::range) {
    json["may_be_left_out"] = input.may_be_left_out;
    if (input.composition) {
      json["cells"] = component::count;
      json["cell_names"] = cells_of_a_gas();
    } else {
      json["cells"] = input.place.count;
    }
  }
  return json;
}

Json output_json(const Parameter& parameter, const Function_COutput& output) {
  Json json = described(parameter, output);
  if (Json meanings = meanings_json(output); !meanings.empty()) json["meanings"] = std::move(meanings);
  return json;
}

}  // namespace

// One function a line.
void exports_json(std::ostream& out, Specs) {
  const char* separator = "[\n";
  for (const Method& method : methods()) {
    const Function_CFunctionSpec& spec = *method.spec;
    Json inputs = Json::array(), outputs = Json::array();
    for (const Parameter& parameter : method.inputs)
      inputs.push_back(input_json(parameter, spec.inputs[parameter.index]));
    for (const Parameter& parameter : method.outputs)
      outputs.push_back(output_json(parameter, spec.outputs[parameter.index]));
    const Json function = {{"function", narrow(spec.id)},
                           {"export", export_name(method)},
                           {"batch", export_name(method) + "_Batch"},
                           {"dispatch_id", method.id},
                           {"display", narrow(spec.display_name)},
                           {"description", narrow(spec.description)},
                           {"standard", narrow(spec.subcategory)},
                           {"group", narrow(spec.group->name)},
                           {"hidden", spec.has(FUNCTION_HIDDEN)},
                           {"notes", narrow(spec.notes)},
                           {"statuses", meanings_json(spec.outputs[0])},
                           {"inputs", inputs},
                           {"outputs", outputs}};
    out << separator << function.dump();
    separator = ",\n";
  }
  out << "\n]\n";
}

}  // namespace norvane::generate
