// The steps of a call, its messages and its hooks. Values are converted and read in context_values.cpp.
#include "framework/context.h"

#include <cmath>
#include <cstring>
#include <new>

#include "core/text.h"
#include "core/text_buffer.h"

namespace norvane {
namespace {

constexpr std::size_t message_size = 512;
constexpr std::size_t longest_value_shown = 200;

using MessageText = TextBuffer<message_size - 1>;

bool is_absent(const FUNCTION_ARG& arg) noexcept { return arg.kind == ARG_MISSING || arg.kind == ARG_EMPTY; }

bool is_dotted_address(std::u16string_view text) noexcept {
  int groups = 0;
  std::size_t i = 0;
  while (true) {
    std::uint32_t value = 0;
    const std::size_t start = i;
    for (; i < text.size() && text[i] >= u'0' && text[i] <= u'9'; ++i) {
      value = value * 10 + (text[i] - u'0');
      if (value > 255) return false;
    }
    if (i == start) return false;
    ++groups;
    if (i == text.size()) return groups == 4;
    if (groups == 4 || text[i] != u'.') return false;
    ++i;
  }
}

constexpr bool is_digit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }
constexpr bool is_letter(char16_t unit) { return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z'); }

// The first rule that a name breaks, or no text.
std::u16string_view broken_name_rule(std::u16string_view name) noexcept {
  if (name.empty()) return u"cannot be empty";
  if (is_digit(name[0])) return u"is invalid, the name cannot be a number or begin with a decimal (0-9) character";
  for (char16_t unit : name) {
    // Lower-case letters are accepted although the message does not list them; this is intended.
    if (!is_letter(unit) && !is_digit(unit) && unit != u'_' && unit != u'.')
      return u"is invalid, only the following characters are allowed: 'A-Z', '0-9', '_' and '.'";
  }
  const char16_t first = fold_ascii_upper(name[0]);
  if ((first == u'C' || first == u'R') && name.size() > 1 && is_digit(name[1]))
    return u"is invalid, the name cannot start with a 'C' or 'R' followed directly by a number '0-9'";
  if (name.size() > 32) return u"is invalid, the name cannot be longer than 32 characters";
  return {};
}

}  // namespace

Function_CContext::Function_CContext(const Function_CLibrary& library, const Unit_CTypeAndUnitContainer& units)
    : library_(&library), units_(&units) {
  data_manager_.AddFactory(Function_CMutexFactory::Process());
}

Function_CContext::~Function_CContext() {
  for (HookNode* list : {pre_hooks_, post_hooks_}) {
    while (list != nullptr) {
      HookNode* next = list->next;
      delete list;
      list = next;
    }
  }
}

// ---- The call ----------------------------------------------------------------------------------------------------

std::uint32_t Function_CContext::Execute(const Function_CFunctionSpec& spec, FUNCTION_ARG* args, std::size_t count,
                                         FUNCTION_ARG& output, std::uint32_t& flags,
                                         std::uint64_t* data_slot) noexcept {
  specification_ = &spec;
  arguments_ = args;
  argument_count_ = count;
  output_ = &output;
  data_slot_ = data_slot;
  flags = 0;
  replaced_status_ = ERROR_OK;
  std::uint32_t status = ERROR_OK;

  const bool variable = spec.has(FUNCTION_VARIABLE_INPUTS);
  if (variable ? count < spec.input_count : count != spec.input_count) {
    if (messages_enabled_) {
      MessageText text;
      text << u"Invalid number of arguments (" << count << u") specified, expected "
           << (variable ? u"at least (" : u"(") << spec.input_count << u")";
      ReportError(text.view());
    }
    if (!variable) return ERROR_ARGCOUNT;
  }

  ValidateArguments(status, spec, args, count, output, flags);

  for (const HookNode* hook = pre_hooks_; hook != nullptr; hook = hook->next) {
    status = hook->routine(*this, spec, args, count, output, flags, hook->parameter);
    if (status != ERROR_OK) return status;
  }
  if (pre_hooks_ != nullptr || status == ERROR_OK) {
    status = spec.implementation(*this, args, count, output);
    if (status != ERROR_OK) flags |= FLAG_IMPLEMENTATION_FAILED;
  }

  CompleteOutputs(status, spec, args, count, output, flags);

  for (const HookNode* hook = post_hooks_; hook != nullptr; hook = hook->next)
    if (hook->routine(*this, spec, args, count, output, flags, hook->parameter) != ERROR_OK) break;
  return status;
}

void Function_CContext::ValidateArguments(std::uint32_t& status, const Function_CFunctionSpec& spec,
                                          FUNCTION_ARG* args, std::size_t count, FUNCTION_ARG&,
                                          std::uint32_t& flags) noexcept {
  if (spec.has(FUNCTION_NO_VALIDATION)) return;
  const std::size_t n =
      spec.has(FUNCTION_VARIABLE_INPUTS) ? count : (count < spec.input_count ? count : spec.input_count);
  SubstituteDefaults(spec, args, n);
  if (messages_enabled_) {
    CheckName(spec, args, count);
    CheckTypes(spec, args, n);
  }
  if (spec.has(FUNCTION_NO_RANGE_CHECK)) return;
  for (std::size_t i = 0; i < n; ++i) {
    const Function_CInput* input = spec.input_of(i);
    if (input != nullptr && input->checked) CheckRange(i, *input, args[i], status, flags);
  }
}

void Function_CContext::SubstituteDefaults(const Function_CFunctionSpec& spec, FUNCTION_ARG* args,
                                           std::size_t n) noexcept {
  for (std::size_t i = 0; i < n; ++i) {
    if (!is_absent(args[i])) continue;
    const Function_CInput* input = spec.input_of(i);
    if (input == nullptr) continue;
    if (!input->optional()) {
      if (messages_enabled_) ReportError(i, u"is not optional");
    } else if (input->ready_default.kind != ARG_MISSING) {
      args[i] = input->ready_default;
    } else if (!input->default_value.empty()) {
      FromVariant(args[i], input->default_value);
    }
  }
}

void Function_CContext::CheckName(const Function_CFunctionSpec& spec, const FUNCTION_ARG* args,
                                  std::size_t count) noexcept {
  if (spec.name_input < 0 || static_cast<std::size_t>(spec.name_input) >= count) return;
  const auto index = static_cast<std::size_t>(spec.name_input);
  std::u16string_view name;
  if (!GetText(args[index], name, true)) {
    ReportError(index, u"is invalid (not a string)");
  } else if (!name.empty()) {
    const std::u16string_view complaint = broken_name_rule(name);
    if (!complaint.empty()) ReportError(index, complaint);
  } else if (spec.has(FUNCTION_RETENTIVE)) {
    ReportError(index, u"cannot be optional or empty");
  }
}

void Function_CContext::CheckTypes(const Function_CFunctionSpec& spec, const FUNCTION_ARG* args,
                                   std::size_t n) noexcept {
  for (std::size_t i = 0; i < n; ++i) {
    const Function_CInput* input = spec.input_of(i);
    if (input == nullptr || is_absent(args[i])) continue;
    double number = 0.0;
    bool truth = false;
    std::uint32_t code = 0;
    std::u16string_view text;
    std::u16string_view complaint;
    switch (input->type) {
      case data_type::any: break;
      case data_type::text:
        if (!ReadText(&args[i], text)) complaint = u"is not a valid text";
        break;
      case data_type::date:
        if (!ReadNumber(&args[i], number))
          complaint = u"is not a valid date/time (not a number)";
        else if (number < 0.0)
          complaint = u"is not a valid date/time (negative number)";
        break;
      case data_type::boolean:
        if (!ReadBoolean(&args[i], truth)) complaint = u"is not a valid boolean (0/1, true/false)";
        break;
      case data_type::integer:
        if (!ReadNumber(&args[i], number))
          complaint = u"is not a valid number";
        else if (number != std::trunc(number))
          complaint = u"is not a valid whole number";
        break;
      case data_type::unit:
        if (!IsUnit(args[i])) complaint = u"is not a valid unit";
        break;
      case data_type::enumeration:
        if (!ReadIdentifier(&args[i], code) ||
            (code != 0 && (kind_of_code(code) != CodeKind::enumeration || !units_->IsKnown(code))))
          complaint = u"is not a valid enum";
        break;
      case data_type::ipaddr:
        if (!ReadText(&args[i], text) || !is_dotted_address(text)) complaint = u"is not a valid ip-address";
        break;
      default:
        if (!ReadNumber(&args[i], number)) complaint = u"is not a valid number";
        break;
    }
    if (!complaint.empty()) ReportError(i, complaint);
  }
}

// By number (also as a text or in a cell), key or symbol; an empty text or cell passes.
bool Function_CContext::IsUnit(const FUNCTION_ARG& arg) noexcept {
  std::int32_t number = 0;
  std::uint32_t code = 0;
  std::u16string_view text;
  if (ReadInteger(&arg, number))
    code = static_cast<std::uint32_t>(number);
  else if (!ReadText(&arg, text) || !units_->CodeOfText(text, code))
    return units_->IsSymbol(text);
  return code == 0 || (kind_of_code(code) == CodeKind::unit && units_->IsKnown(code));
}

void Function_CContext::CheckRange(std::size_t index, const Function_CInput& input, const FUNCTION_ARG& arg,
                                   std::uint32_t& status, std::uint32_t& flags) noexcept {
  const auto fail = [&status, &flags] {
    status = ERROR_VALUE;
    flags |= FLAG_INPUT_INVALID;
  };
  double value = 0.0;
  if (arg.kind == ARG_NUMBER) {
    value = arg.number;
  } else if (!ReadNumber(&arg, value)) {
    fail();
    MessageText text;
    if (input.place.kind == record::Field::Kind::numbers)
      text << u"needs an array of " << input.place.count << u" numbers";
    else
      text << u"is not a valid number";
    ReportError(index, text.view());
    return;
  }
  if (input.enumerated) {
    std::uint32_t member = 0;
    const bool known = input.members_known ? value >= 0.0 && value < 64.0 && value == std::trunc(value) &&
                                                 (input.members >> static_cast<unsigned>(value) & 1) != 0
                                           : units_->EnumerationValueByNumber(input.type, value, member) == UNIT_OK;
    if (!known) {
      fail();
      if (messages_enabled_) {
        std::u16string_view name;
        units_->TextOfCode(input.type, name);
        MessageText text;
        text << u"is not a valid " << name;
        ReportError(index, text.view());
      }
    }
  }
  if (input.has_minimum() && value < input.minimum) {
    fail();
    if (messages_enabled_) {
      MessageText text;
      text << u"should be higher or equal than: " << input.minimum;
      ReportWarning(index, text.view());
    }
  }
  if (input.has_maximum() && value > input.maximum) {
    fail();
    if (messages_enabled_) {
      MessageText text;
      text << u"should be lower or equal than: " << input.maximum;
      ReportWarning(index, text.view());
    }
  }
}

void Function_CContext::CompleteOutputs(std::uint32_t& status, const Function_CFunctionSpec& spec, FUNCTION_ARG*,
                                        std::size_t, FUNCTION_ARG& output, std::uint32_t& flags) noexcept {
  if (status == ERROR_OK && output.kind == ARG_NUMBER && !std::isfinite(output.number)) {
    status = ERROR_NUM;
    flags |= FLAG_OUTPUT_NOT_FINITE;
  }
  if (status != ERROR_OK && spec.has(FUNCTION_FALLBACK) && WriteFallbackOutputs(spec, output)) {
    flags |= FLAG_OUTPUT_FALLBACK;
    replaced_status_ = status;
    status = ERROR_OK;
  }
  if (status == ERROR_OK && output.kind == ARG_ARRAY && output.array.columns == 1 && output.array.rows >= 2) {
    const Function_CCallerInfo* caller = caller_info();
    if (caller != nullptr && caller->columns > 1) {
      const std::uint32_t rows = output.array.rows;
      output.array.rows = output.array.columns;
      output.array.columns = rows;
      flags |= FLAG_OUTPUT_TRANSPOSED;
    }
  }
}

bool Function_CContext::WriteFallbackOutputs(const Function_CFunctionSpec& spec, FUNCTION_ARG& output) noexcept {
  const auto fill = [this](FUNCTION_ARG& value, const Core_CVariant& fallback) {
    if (fallback.empty())
      value = FUNCTION_ARG::Number(0.0);
    else if (fallback.tag() == Core_CVariant::INT32)
      value = FUNCTION_ARG::Integer(fallback.AsInt32());
    else
      FromVariant(value, fallback);
  };
  if (spec.output_count == 1) {
    fill(output, spec.outputs[0].fallback);
    return true;
  }
  if (!SetArray(output, 1, static_cast<std::uint32_t>(spec.output_count))) return false;
  for (std::size_t i = 0; i < spec.output_count; ++i) fill(output.array.elements[i], spec.outputs[i].fallback);
  return true;
}

// ---- Messages and hooks ------------------------------------------------------------------------------------------

void Function_CContext::ReportMessage(std::uint32_t, std::u16string_view) noexcept {}

void Function_CContext::ReportArgument(std::uint32_t level, std::size_t index, std::u16string_view message) noexcept {
  if (!messages_enabled_) return;
  // Reading the value for the message must not disturb the code of the failure that is being reported.
  const std::uint32_t kept = conversion_error_;
  const Function_CInput* input = specification_ != nullptr ? specification_->input_of(index) : nullptr;
  std::u16string_view value;
  if (index < argument_count_) {
    const FUNCTION_ARG& arg = arguments_[index];
    if (!GetString(arg, value)) value = arg.kind == ARG_ERROR ? error_text(arg.error) : std::u16string_view{};
  }
  MessageText text;
  text << u"[" << index + 1 << u"] " << (input != nullptr ? input->key : std::u16string_view{}) << u" ";
  if (level == MESSAGE_ERROR && value.size() >= longest_value_shown)
    text << u"(...) ";
  else if (!value.empty())
    text << u"(" << value << u") ";
  text << message;
  ReportMessage(level, text.view());
  conversion_error_ = kept;
}

std::uint32_t Function_CContext::ReportError(std::size_t index, std::u16string_view message) noexcept {
  ReportArgument(MESSAGE_ERROR, index, message);
  return ERROR_ERROR;
}

std::uint32_t Function_CContext::ReportWarning(std::size_t index, std::u16string_view message) noexcept {
  ReportArgument(MESSAGE_WARNING, index, message);
  return ERROR_WARNING;
}

std::uint32_t Function_CContext::ReportError(std::u16string_view message) noexcept {
  if (messages_enabled_) ReportMessage(MESSAGE_ERROR, message);
  return ERROR_ERROR;
}

std::uint32_t Function_CContext::ReportWarning(std::u16string_view message) noexcept {
  if (messages_enabled_) ReportMessage(MESSAGE_WARNING, message);
  return ERROR_WARNING;
}

bool Function_CContext::AddHook(HookNode*& list, Hook routine, void* parameter) noexcept {
  auto* node = new (std::nothrow) HookNode{routine, parameter, nullptr};
  if (node == nullptr) return false;
  HookNode** end = &list;
  while (*end != nullptr) end = &(*end)->next;
  *end = node;
  return true;
}

bool Function_CContext::AddPreCallHook(Hook routine, void* parameter) noexcept {
  return AddHook(pre_hooks_, routine, parameter);
}

bool Function_CContext::AddPostCallHook(Hook routine, void* parameter) noexcept {
  return AddHook(post_hooks_, routine, parameter);
}

}  // namespace norvane
