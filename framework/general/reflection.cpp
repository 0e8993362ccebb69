// The catalogue describes itself: FunctionList, FunctionProperty, FunctionInputProperty, FunctionOutputProperty.
#include <algorithm>
#include <cstdint>
#include <cstring>

#include "core/text.h"
#include "framework/context.h"
#include "framework/general/arguments.h"
#include "framework/records.h"

namespace norvane::functions {
namespace {

// What a property function is asked: a property of a function, or of one of its inputs or outputs.
struct Question {
  const Function_CFunctionSpec* spec = nullptr;
  std::uint32_t index = 0;
  std::int32_t property = 0;
};

// The scalar that stands for an argument: the first cell of a range.
const FUNCTION_ARG& scalar(const FUNCTION_ARG& arg) noexcept {
  return arg.kind == ARG_ARRAY && arg.count() != 0 && arg.array.elements != nullptr ? arg.array.elements[0] : arg;
}

// Reads every argument before it judges any: (function, property), or (function, index, property) for one of so
// many inputs or outputs as the count says. The status of the call.
std::uint32_t read_question(Function_CContext& context, Arguments arg, Question& question,
                            std::size_t Function_CFunctionSpec::*indexed = nullptr,
                            std::u16string_view beyond = {}) noexcept {
  const std::size_t last = indexed != nullptr ? 2 : 1;
  std::u16string_view name;
  double index = 0.0;
  if (!context.ReadText(arg[0], name) || (indexed != nullptr && !context.ReadNumber(arg[1], index)) ||
      !read_whole(context, arg[last], question.property))
    return ERROR_VALUE;
  // A number reads as a text too, but is no name.
  const std::uint32_t kind = scalar(*arg[0]).kind;
  if (kind != ARG_STRING && kind != ARG_EMPTY) {
    context.ReportError(0, u"is not a valid text");
    return ERROR_VALUE;
  }
  if (indexed != nullptr && !context.ReadUnsigned(arg[1], question.index)) {
    context.ReportError(1, u"should be between 0 and 4294967295");
    return ERROR_NUM;
  }
  question.spec = context.library().FindVisible(name);
  if (question.spec == nullptr) {
    context.ReportError(0, u"is not a function");
    return ERROR_NA;
  }
  if (indexed != nullptr && question.index >= question.spec->*indexed) {
    context.ReportError(1, beyond);
    return ERROR_NA;
  }
  return ERROR_OK;
}

std::uint32_t set_text(Function_CContext& context, FUNCTION_ARG& output, std::u16string_view text) noexcept {
  return context.SetText(output, text.data() != nullptr ? text : u"") ? ERROR_OK : ERROR_VALUE;
}

std::uint32_t set_boolean(FUNCTION_ARG& output, bool value) noexcept {
  output = FUNCTION_ARG::Boolean(value);
  return ERROR_OK;
}

std::uint32_t set_integer(FUNCTION_ARG& output, std::size_t value) noexcept {
  output = FUNCTION_ARG::Integer(static_cast<std::int32_t>(value));
  return ERROR_OK;
}

std::uint32_t set_type(Function_CContext& context, FUNCTION_ARG& output, std::uint32_t code) noexcept {
  std::u16string_view text;
  if (context.units().TextOfCode(code, text) != UNIT_OK) return ERROR_NA;
  return set_text(context, output, text);
}

std::uint32_t set_class(FUNCTION_ARG& output, std::uint32_t code) noexcept {
  return set_integer(output, Unit_CTypeAndUnitContainer::KindOfCode(code));
}

std::uint32_t set_variant(Function_CContext& context, FUNCTION_ARG& output, const Core_CVariant& value) noexcept {
  return context.FromVariant(output, value) ? ERROR_OK : ERROR_VALUE;
}

std::uint32_t set_bound(FUNCTION_ARG& output, bool present, double bound) noexcept {
  output = present ? FUNCTION_ARG::Number(bound) : FUNCTION_ARG::Empty();
  return ERROR_OK;
}

std::uint32_t function_property(Function_CContext& context, FUNCTION_ARG* args, std::size_t count,
                                FUNCTION_ARG& output) {
  Question question;
  const std::uint32_t status = read_question(context, {args, count}, question);
  if (status != ERROR_OK) return status;
  const Function_CFunctionSpec* const spec = question.spec;
  switch (question.property) {
    case 1: return set_text(context, output, spec->category);
    case 2: return set_text(context, output, spec->subcategory);
    case 3: return set_text(context, output, spec->description);
    case 4: return set_text(context, output, spec->group->prefix);
    case 5: return set_boolean(output, spec->has(FUNCTION_VOLATILE));
    case 6: return set_boolean(output, spec->has(FUNCTION_RETENTIVE));
    case 7: return set_integer(output, spec->input_count);
    case 8: return set_integer(output, spec->output_count);
    case 9: output = FUNCTION_ARG::Integer(spec->name_input); return ERROR_OK;
    default: return ERROR_VALUE;
  }
}

std::uint32_t input_property(Function_CContext& context, FUNCTION_ARG* args, std::size_t count,
                             FUNCTION_ARG& output) {
  Question question;
  const std::uint32_t status = read_question(context, {args, count}, question, &Function_CFunctionSpec::input_count,
                                             u"is not an input of the function");
  if (status != ERROR_OK) return status;
  const auto [spec, index, property] = question;
  const Function_CInput& input = spec->inputs[index];
  switch (property) {
    case 1: return set_text(context, output, input.key);
    case 2: return set_text(context, output, input.description);
    case 3: return set_type(context, output, input.type);
    case 4: return set_class(output, input.type);
    case 5: return set_boolean(output, input.optional());
    case 6: return set_variant(context, output, input.default_value);
    case 7: return set_bound(output, input.has_minimum(), input.minimum);
    case 8: return set_bound(output, input.has_maximum(), input.maximum);
    case 9: return set_boolean(output, input.is_array());
    // Asks for an index that was refused above, so that "Scalar" is FALSE for every input. Intended.
    case 10: return set_boolean(output, spec->has(FUNCTION_VARIABLE_INPUTS) && index == spec->input_count + 1);
    default: return ERROR_VALUE;
  }
}

std::uint32_t output_property(Function_CContext& context, FUNCTION_ARG* args, std::size_t count,
                              FUNCTION_ARG& output) {
  Question question;
  const std::uint32_t status = read_question(context, {args, count}, question, &Function_CFunctionSpec::output_count,
                                             u"is not an output of the function");
  if (status != ERROR_OK) return status;
  const auto [spec, index, property] = question;
  const Function_COutput& record = spec->outputs[index];
  switch (property) {
    case 1: return set_text(context, output, record.key);
    case 2: return set_text(context, output, record.description);
    case 3: return set_type(context, output, record.type);
    case 4: return set_class(output, record.type);
    case 5: return set_variant(context, output, record.fallback);
    // As with the inputs: FALSE for every output. Intended.
    case 6: return set_boolean(output, spec->has(FUNCTION_LIST_OUTPUT) && index == spec->output_count + 1);
    default: return ERROR_VALUE;
  }
}

// prefix + identifier in the arena of the call.
bool set_worksheet_name(Function_CContext& context, FUNCTION_ARG& output,
                        const Function_CFunctionSpec& spec) noexcept {
  const std::u16string_view prefix = spec.group->prefix;
  const std::size_t length = prefix.size() + spec.id.size();
  auto* text = context.arena().AllocateArray<char16_t>(length + 1);
  if (text == nullptr) return false;
  std::copy(prefix.begin(), prefix.end(), text);
  std::copy(spec.id.begin(), spec.id.end(), text + prefix.size());
  text[length] = u'\0';
  output = FUNCTION_ARG::String(text, length);
  return true;
}

std::uint32_t report_none_found(Function_CContext& context, FUNCTION_ARG& output,
                                std::u16string_view category) noexcept {
  if (category.empty()) return set_text(context, output, u"<< no functions found>>");
  constexpr std::u16string_view before = u"<< no functions found with category '";
  constexpr std::u16string_view after = u"'>>";
  char16_t text[255];  // a longer text is cut
  std::size_t length = 0;
  for (std::u16string_view part : {before, category, after}) {
    const std::size_t n = std::min(part.size(), std::size(text) - length);
    std::copy_n(part.begin(), n, text + length);
    length += n;
  }
  return set_text(context, output, {text, length});
}

std::uint32_t function_list(Function_CContext& context, FUNCTION_ARG* args, std::size_t count, FUNCTION_ARG& output) {
  std::u16string_view category;
  if (!context.ReadText(Arguments{args, count}[0], category, u"")) return ERROR_VALUE;
  const Function_CLibrary::Map& entries = context.library().Entries();
  auto* found = context.arena().AllocateArray<const Function_CFunctionSpec*>(entries.Count());
  if (found == nullptr) return ERROR_VALUE;
  std::uint32_t n = 0;
  for (const auto& entry : entries) {
    const Function_CFunctionSpec* spec = entry.value;
    if (spec->visible() && (category.empty() || equal_ignoring_case(spec->category, category))) found[n++] = spec;
  }
  if (n == 0) return report_none_found(context, output, category);
  std::sort(found, found + n, [](const Function_CFunctionSpec* a, const Function_CFunctionSpec* b) {
    return compare_ignoring_case(a->id, b->id) < 0;
  });
  if (!context.SetArray(output, 1, n)) return ERROR_VALUE;
  for (std::uint32_t i = 0; i < n; ++i)
    if (!set_worksheet_name(context, output.array.elements[i], *found[i])) return ERROR_VALUE;
  return ERROR_OK;
}

constexpr record::Input list_inputs[] = {
    record::input(u"category", u"Category",
                  u"Category of functions to list, when ommited all supported functions are returned",
                  data_type::text)
        .otherwise(std::u16string_view(u"")),
};
constexpr record::Output list_outputs[] = {
    record::output(u"list", u"List", u"One dimensional array containing the function-names", data_type::any, u""),
};

constexpr record::Input function_input =
    record::input(u"function", u"Function", u"Name of the function, with its prefix", data_type::text).required();

constexpr record::Option function_properties[] = {
    {1, u"Category"},        {2, u"Sub-category"}, {3, u"Description"},  {4, u"Prefix"},     {5, u"Volatile-state"},
    {6, u"Retentive-state"}, {7, u"Input-count"},  {8, u"Output-count"}, {9, u"Name-input"},
};
constexpr record::Option input_properties[] = {
    {1, u"Name"},    {2, u"Description"}, {3, u"Type"},    {4, u"Class"}, {5, u"Optional"},
    {6, u"Default"}, {7, u"Minimum"},     {8, u"Maximum"}, {9, u"Array"}, {10, u"Scalar"},
};
constexpr record::Option output_properties[] = {
    {1, u"Name"}, {2, u"Description"}, {3, u"Type"}, {4, u"Class"}, {5, u"Fallback"}, {6, u"Scalar"},
};

constexpr record::Input property_inputs[] = {
    function_input,
    record::input(u"property", u"Property", u"Property of the function", data_type::integer)
        .required()
        .options(function_properties),
};
constexpr record::Input input_property_inputs[] = {
    function_input,
    record::input(u"input", u"Input", u"Number of the input, counted from 0", data_type::integer)
        .required()
        .at_least(0),
    record::input(u"property", u"Property", u"Property of the input", data_type::integer)
        .required()
        .options(input_properties),
};
constexpr record::Input output_property_inputs[] = {
    function_input,
    record::input(u"output", u"Output", u"Number of the output, counted from 0", data_type::integer)
        .required()
        .at_least(0),
    record::input(u"property", u"Property", u"Property of the output", data_type::integer)
        .required()
        .options(output_properties),
};
constexpr record::Output property_outputs[] = {
    record::output(u"value", u"Value", u"Value of the property", data_type::any, u""),
};

}  // namespace

extern const record::Function FunctionList;
const record::Function FunctionList = {
    .group = GroupId::Extended,
    .id = u"FunctionList",
    .description = u"Lists the supported functions",
    .category = u"General",
    .subcategory = u"Extended",
    .flags = FUNCTION_FALLBACK | FUNCTION_LIST_OUTPUT | FUNCTION_NO_RANGE_CHECK,
    .inputs = list_inputs,
    .outputs = list_outputs,
    .implementation = function_list,
    .notes = u"The category is \"General\" or \"Math\", in any case. The list is sorted by name.\n",
};

extern const record::Function FunctionProperty;
const record::Function FunctionProperty = {
    .group = GroupId::Extended,
    .id = u"FunctionProperty",
    .description = u"Returns a property of a function",
    .category = u"General",
    .subcategory = u"Extended",
    .inputs = property_inputs,
    .outputs = property_outputs,
    .implementation = function_property,
    .notes = u"The name input is counted from 0; -1 when the function has none.\n",
};

extern const record::Function FunctionInputProperty;
const record::Function FunctionInputProperty = {
    .group = GroupId::Extended,
    .id = u"FunctionInputProperty",
    .description = u"Returns a property of an input of a function",
    .category = u"General",
    .subcategory = u"Extended",
    .inputs = input_property_inputs,
    .outputs = property_outputs,
    .implementation = input_property,
    .notes =
        u"The class tells what the type is: 0 a plain data type, 1 a unit, 4 an enumeration. "
        u"A bound that the input does not have is empty. \"Scalar\" is FALSE for every input.\n",
};

extern const record::Function FunctionOutputProperty;
const record::Function FunctionOutputProperty = {
    .group = GroupId::Extended,
    .id = u"FunctionOutputProperty",
    .description = u"Returns a property of an output of a function",
    .category = u"General",
    .subcategory = u"Extended",
    .inputs = output_property_inputs,
    .outputs = property_outputs,
    .implementation = output_property,
    .notes =
        u"The class tells what the type is: 0 a plain data type, 1 a unit, 4 an enumeration. "
        u"The fallback is written to the output when a call fails; an empty one stands for 0. "
        u"\"Scalar\" is FALSE for every output.\n",
};

}  // namespace norvane::functions
