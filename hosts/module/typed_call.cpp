#include "hosts/module/typed_call.h"

namespace norvane::host {
namespace {

// These callers have no cells; a context of a spreadsheet must not ask its host for any.
const Function_CCallerInfo no_cells{};

// Takes down what the checks of a call say.
class MessageContext final : public Module_CFunctionContext {
 public:
  using Module_CFunctionContext::Module_CFunctionContext;
  void ReportMessage(std::uint32_t, std::u16string_view text) noexcept override {
    try {
      if (!messages.empty()) messages += u"; ";
      messages += text;
    } catch (...) {  // what was taken down so far has to do
    }
  }
  std::u16string messages;
};

// A failed call of a function with fallback outputs reports success, but such a caller has a result
// of its own to say that nothing was calculated.
constexpr bool replaced_by_fallback(std::uint32_t flags) {
  return (flags & FLAG_OUTPUT_FALLBACK) == FLAG_OUTPUT_FALLBACK;
}

}  // namespace

bool TypedCall::begin(const Signature& signature) noexcept {
  signature_ = &signature;
  state_ = thread_state();
  if (state_ == nullptr) return false;
  context_ = &state_->context();
  context_->Reset(&no_cells);
  const std::size_t count = signature.spec->input_count;
  arguments_ = context_->arena().AllocateArray<FUNCTION_ARG>(count);
  if (arguments_ == nullptr && count != 0) return false;
  for (std::size_t i = 0; i < count; ++i) arguments_[i] = FUNCTION_ARG::Missing();
  return true;
}

void TypedCall::set_option(const Parameter& input, std::uint32_t value) noexcept {
  const bool boolean = signature_->spec->inputs[input.index].type == data_type::boolean;
  argument(input) =
      boolean ? FUNCTION_ARG::Boolean(value != 0) : FUNCTION_ARG::Integer(static_cast<std::int32_t>(value));
}

bool TypedCall::set_list(const Parameter& input, const double* values, std::uint32_t count) noexcept {
  if (values == nullptr || count == 0 || count > longest_list) return false;
  auto* elements = context_->arena().AllocateArray<FUNCTION_ARG>(count);
  if (elements == nullptr) return false;
  for (std::uint32_t i = 0; i < count; ++i) elements[i] = FUNCTION_ARG::Number(values[i]);
  argument(input) = FUNCTION_ARG::OfArray(1, count, elements);
  return true;
}

bool TypedCall::set_text(const Parameter& input, std::u16string_view text) noexcept {
  return context_->SetText(argument(input), text);
}

bool TypedCall::run() noexcept {
  std::uint32_t flags = 0;
  const Function_CFunctionSpec& spec = *signature_->spec;
  const std::uint32_t error =
      context_->Execute(spec, arguments_, spec.input_count, output_, flags, state_->slot(spec));
  return error == ERROR_OK && !replaced_by_fallback(flags);
}

const FUNCTION_ARG* TypedCall::element(std::size_t output) const noexcept {
  if (output_.kind != ARG_ARRAY) return output == 0 ? &output_ : nullptr;
  return output < output_.count() ? &output_.array.elements[output] : nullptr;
}

bool TypedCall::fetch(std::size_t output, double& value) noexcept {
  return context_->ReadNumber(element(output), value, 0.0);
}

bool TypedCall::fetch(std::size_t output, std::uint32_t& value) noexcept {
  std::int32_t number = 0;
  if (!context_->ReadInteger(element(output), number, 0)) return false;
  value = static_cast<std::uint32_t>(number);
  return true;
}

bool TypedCall::fetch(std::size_t output, std::u16string_view& text) noexcept {
  return context_->ReadText(element(output), text, u"");
}

std::u16string TypedCall::failure() const {
  const Function_CFunctionSpec& spec = *signature_->spec;
  std::u16string text(spec.id);
  text += u": ";
  // Run again where messages are taken down: calls that succeed need not pay for them.
  MessageContext context(module()->library, module()->units);
  context.EnableMessages(true);
  FUNCTION_ARG output = FUNCTION_ARG::Empty();
  std::uint32_t flags = 0;
  context.Execute(spec, arguments_, spec.input_count, output, flags);
  return text += context.messages.empty() ? std::u16string(
                                                u"an argument could not be used (a list that is too short, "
                                                u"or a value that is no number)")
                                          : context.messages;
}

}  // namespace norvane::host
