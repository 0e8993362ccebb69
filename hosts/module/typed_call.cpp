#include "hosts/module/typed_call.h"

#include <cstring>

#include "core/text.h"
#include "hosts/module/meaning.h"
#include "hosts/module/recording_context.h"

namespace norvane::host {
namespace {

// These callers have no cells; a context of a spreadsheet must not ask its host for any.
const Function_CCallerInfo no_cells{};

// A failed call of a function with fallback outputs reports success, but such a caller has a result
// of its own to say that nothing was calculated.
constexpr bool replaced_by_fallback(std::uint32_t flags) {
  return (flags & FLAG_OUTPUT_FALLBACK) == FLAG_OUTPUT_FALLBACK;
}

const FUNCTION_ARG* element_of(const FUNCTION_ARG& outputs, std::size_t i) noexcept {
  if (outputs.kind != ARG_ARRAY) return i == 0 ? &outputs : nullptr;
  return i < outputs.count() ? &outputs.array.elements[i] : nullptr;
}

// Arguments are numbered as everywhere, from 1 with the name first: "[4] composition".
std::u16string numbered(std::size_t index, std::u16string_view key) {
  return u"[" + to_utf16(std::to_string(index + 1)) + u"] " + std::u16string(key);
}

// Runs the call again where messages are taken down. Its caches change no result, so it says what the first run met.
std::u16string messages_of(ThreadState& state, const LastCall& last) {
  RecordingContext* recorder = state.recorder();
  if (recorder == nullptr) return u"not enough memory to tell";
  const FloatingPointGuard guard;
  recorder->Forget();
  recorder->Reset();
  const Function_CFunctionSpec& spec = *last.spec;
  FUNCTION_ARG output = FUNCTION_ARG::Empty();
  std::uint32_t flags = 0;
  const std::uint32_t error = recorder->Execute(spec, last.arguments, spec.input_count, output, flags);
  std::u16string text;
  for (const Message& message : recorder->messages()) (text.empty() ? text : text += u"; ") += message.text;
  if (!text.empty()) return text;
  if (error != ERROR_OK || replaced_by_fallback(flags))
    return u"an argument could not be used (a list that is too short, or a value that is no number)";
  std::int32_t status = 0;
  if (!recorder->ReadInteger(element_of(output, 0), status, 0) || status == 0) return {};
  text = u"status " + to_utf16(std::to_string(status));
  const std::u16string_view meaning = meaning_of(spec.outputs[0], status);
  if (!meaning.empty()) text.append(u" (").append(meaning).append(u")");
  return text;
}

}  // namespace

TypedCall::TypedCall(const Signature& signature) noexcept : held_(&no_cells), signature_(signature) {
  if (!held_) return;
  const std::size_t count = signature.spec->input_count;
  arguments_ = context().arena().AllocateArray<FUNCTION_ARG>(count);
  if (arguments_ == nullptr) return;
  for (std::size_t i = 0; i < count; ++i) arguments_[i] = FUNCTION_ARG::Missing();
}

TypedAnswer TypedCall::make(const Signature& signature, TypedCaller& caller, std::uint32_t& status) {
  TypedCall call(signature);
  if (!call.held_) return TypedAnswer::unavailable;
  LastCall& last = call.held_.state().last_call;
  last = {LastCall::End::no_memory, signature.spec, call.arguments_, 0};
  if (call.arguments_ == nullptr) return TypedAnswer::unavailable;
  for (std::size_t i = 0; i < signature.inputs.size(); ++i) {
    const Parameter& input = signature.inputs[i];
    if (caller.take(call, input, i)) continue;
    last.end = LastCall::End::bad_argument;
    last.index = input.index;
    return TypedAnswer::refused;
  }
  last.end = LastCall::End::ran;
  if (!call.run()) return TypedAnswer::refused;
  if (!call.fetch({Passing::option, 0}, status)) return TypedAnswer::undelivered;
  for (std::size_t i = 0; i < signature.outputs.size(); ++i)
    if (!caller.give(call, signature.outputs[i], i)) return TypedAnswer::undelivered;
  return TypedAnswer::delivered;
}

void TypedCall::set_option(const Parameter& input, std::uint32_t value) noexcept {
  const bool boolean = signature_.spec->inputs[input.index].type == data_type::boolean;
  argument(input) =
      boolean ? FUNCTION_ARG::Boolean(value != 0) : FUNCTION_ARG::Integer(static_cast<std::int32_t>(value));
}

bool TypedCall::set_list(const Parameter& input, const double* values, std::uint32_t count) noexcept {
  if (values == nullptr || count == 0) return true;  // left out
  if (count > longest_list) return false;
  auto* elements = context().arena().AllocateArray<FUNCTION_ARG>(count);
  if (elements == nullptr) return false;
  for (std::uint32_t i = 0; i < count; ++i) elements[i] = FUNCTION_ARG::Number(values[i]);
  argument(input) = FUNCTION_ARG::OfArray(1, count, elements);
  return true;
}

bool TypedCall::set_text(const Parameter& input, std::u16string_view text) noexcept {
  return context().SetText(argument(input), text);
}

bool TypedCall::run() noexcept {
  std::uint32_t flags = 0;
  const Function_CFunctionSpec& spec = *signature_.spec;
  const std::uint32_t error =
      context().Execute(spec, arguments_, spec.input_count, output_, flags, held_.state().slot(spec));
  return error == ERROR_OK && !replaced_by_fallback(flags);
}

bool TypedCall::fetch(const Parameter& output, double& value) noexcept {
  return context().ReadNumber(element_of(output_, output.index), value, 0.0);
}

bool TypedCall::fetch(const Parameter& output, std::uint32_t& value) noexcept {
  std::int32_t number = 0;
  if (!context().ReadInteger(element_of(output_, output.index), number, 0)) return false;
  value = static_cast<std::uint32_t>(number);
  return true;
}

bool TypedCall::fetch(const Parameter& output, std::u16string_view& text) noexcept {
  return context().ReadText(element_of(output_, output.index), text, u"");
}

bool ValueCaller::take(TypedCall& call, const Parameter& input, std::size_t place) {
  const norvane_value& value = in_[place];
  switch (input.passing) {
    case Passing::number: call.argument(input) = FUNCTION_ARG::Number(value.number); return true;
    case Passing::option: call.set_option(input, static_cast<std::uint32_t>(value.option)); return true;
    case Passing::range: return take_list(call, input, value);
    case Passing::text: return take_text(call, input, value);
  }
  return false;
}

bool ValueCaller::give(TypedCall& call, const Parameter& output, std::size_t place) {
  // Copied: what a host calls a 32-bit integer may be another type of this compiler's (unsigned long on Windows).
  const auto deliver = [&](auto value) {
    if (!call.fetch(output, value)) return false;
    std::memcpy(out_[place], &value, sizeof value);
    return true;
  };
  switch (output.passing) {
    case Passing::number: return deliver(double{});
    case Passing::option: return deliver(std::uint32_t{});
    case Passing::text: {
      std::u16string_view text;
      return call.fetch(output, text) && give_text(call, text, out_[place]);
    }
    case Passing::range: break;  // outputs are single values
  }
  return false;
}

void note_null_output(const Signature& signature, std::size_t place) noexcept {
  if (ThreadState* state = thread_state())
    state->last_call = {LastCall::End::null_output, signature.spec, nullptr, signature.outputs[place].index};
}

void note_no_memory() noexcept {
  if (ThreadState* state = thread_state()) state->last_call = {.end = LastCall::End::no_context};
}

std::u16string last_message() {
  ThreadState* state = thread_state();
  constexpr const char16_t* no_context = u"not enough memory for a calculation context of this thread";
  if (state == nullptr) return no_context;
  const LastCall& last = state->last_call;
  std::u16string text;
  switch (last.end) {
    case LastCall::End::none: return {};
    case LastCall::End::busy: return u"this thread is inside another call of the library";
    case LastCall::End::no_context: return no_context;
    case LastCall::End::no_memory: text = u"not enough memory for the arguments"; break;
    case LastCall::End::null_output:
      text = u"output " + to_utf16(std::to_string(last.index)) + u" (" +
             std::u16string(last.spec->outputs[last.index].key) + u") has no place to go to";
      break;
    case LastCall::End::bad_argument: {
      const Function_CInput& input = last.spec->inputs[last.index];
      text = numbered(last.index, input.key);
      text += passing_of(input) == Passing::range ? u" is not a list of at most 65536 numbers"
                                                  : u" is not a value that can be used";
      break;
    }
    case LastCall::End::no_batch: {
      if (last.index != LastCall::no_record) text = numbered(last.index, last.spec->inputs[last.index].key) + u" ";
      for (const char16_t unit : std::u16string_view(last.text))
        unit == u'%' ? text += to_utf16(std::to_string(last.number)) : text += unit;
      break;
    }
    case LastCall::End::ran: text = messages_of(*state, last); break;
  }
  return text.empty() || last.spec == nullptr ? text : std::u16string(last.spec->id) + u": " + text;
}

}  // namespace norvane::host
