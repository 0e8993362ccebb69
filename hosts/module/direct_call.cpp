#include "hosts/module/direct_call.h"

#include <cstring>

#include "core/coefficients.h"
#include "framework/binding.h"
#include "framework/records.h"
#include "hosts/module/function_state.h"
#include "hosts/module/module.h"
#include "hosts/module/typed_call.h"

namespace norvane::host {
namespace {

using Kind = record::Field::Kind;
using From = PlannedInput::From;

bool left_out(const norvane_value& list) noexcept { return list.data == nullptr || list.count == 0; }

inline bool same_list(const FunctionState::Place& list, const FunctionState& state,
                      const norvane_value& given) noexcept {
  return given.data != nullptr && given.count >= list.cells && given.count <= TypedCall::longest_list &&
         std::memcmp(state.arguments + list.offset, given.data, list.cells * sizeof(double)) == 0;
}

// Whether these are the inputs that were taken last. Compares words, which needs no guard of the floating-point state.
inline bool unchanged(const FunctionState& state, const norvane_value* in) noexcept {
  for (const FunctionState::Place& number : state.numbers)
    if (in[number.input].option != state.words[number.input]) return false;
  for (const FunctionState::Place& list : state.lists)
    if (!same_list(list, state, in[list.input])) return false;
  return true;
}

// The list into the structure, where the last one stands.
bool take_list(const PlannedInput& input, const norvane_value& list, const record::Binding& binding,
               FunctionState& state) noexcept {
  const bool given = !left_out(list);
  if (given ? list.count < input.cells || list.count > TypedCall::longest_list : !input.may_be_left_out) return false;
  const void* const cells =
      given ? list.data : static_cast<const std::byte*>(binding.arguments.prototype) + input.offset;
  std::memcpy(state.arguments + input.offset, cells, input.cells * sizeof(double));
  return !given || !input.judged() || input.judge(state.arguments) == Verdict::fits;
}

// One number into the structure.
bool take_value(const PlannedInput& input, const norvane_value& given, FunctionState& state) noexcept {
  double value = given.number;
  if (input.plain()) {
    if (value < input.low || value > input.high) return false;
    if (input.to != nullptr) value = input.to(value);
    std::memcpy(state.arguments + input.offset, &value, sizeof value);
    return true;
  }
  if (input.from == From::option) value = static_cast<std::int32_t>(static_cast<std::uint32_t>(given.option));
  if (input.from == From::truth) value = given.option != 0 ? 1.0 : 0.0;
  return input.accept(value, state.arguments) == Verdict::fits;
}

bool take_list_unless_it_stands(const PlannedInput& input, const FunctionState::Place& list,
                                const norvane_value& given, const record::Binding& binding, FunctionState& state,
                                bool known) noexcept {
  // One that was left out stands there unjudged.
  if (known && !input.judged() && same_list(list, state, given)) return true;
  return take_list(input, given, binding, state);
}

// What has changed, or everything where nothing is known.
bool take(const CallPlan& plan, const record::Binding& binding, FunctionState& state,
          const norvane_value* in) noexcept {
  const std::uint64_t unknown = state.taken ? 0 : 1;
  state.taken = false;
  std::uint64_t* const words = state.words;
  const PlannedInput* const inputs = plan.inputs.data();
  for (const FunctionState::Place& number : state.numbers) {
    const std::size_t i = number.input;
    if (((in[i].option ^ words[i]) | unknown) == 0) [[likely]]
      continue;
    words[i] = in[i].option;
    if (!take_value(inputs[i], in[i], state)) return false;
  }
  for (const FunctionState::Place& list : state.lists)
    if (!take_list_unless_it_stands(inputs[list.input], list, in[list.input], binding, state, unknown == 0))
      return false;
  state.taken = true;
  return true;
}

// The results as the words that leave. False for one that the context has something to say about.
bool keep(const CallPlan& plan, FunctionState& state) noexcept {
  std::uint64_t* word = state.outputs;
  const std::byte* const results = state.results;
  for (const PlannedOutput& output : plan.outputs) {
    double value;
    if (output.kind == Kind::number && output.from == nullptr) [[likely]]
      value = output.load<double>(results);
    else
      value = output.value(results);
    if (!output.plausible(value)) return false;
    if (output.wide) [[likely]]
      std::memcpy(word, &value, sizeof value);
    else
      *word = static_cast<std::uint32_t>(static_cast<std::int32_t>(value));
    ++word;
  }
  return true;
}

void give(const FunctionState& state, void* const* out) noexcept {
  const std::uint64_t* const words = state.outputs;
  for (const std::uint16_t i : state.wide) std::memcpy(out[i], words + i, sizeof(double));
  for (const std::uint16_t i : state.narrow) std::memcpy(out[i], words + i, sizeof(std::uint32_t));
}

bool complete(void* const* out, std::size_t count) noexcept {
  for (void* const* const end = out + count; out != end; ++out)
    if (*out == nullptr) return false;
  return true;
}

bool calculate(const Signature& signature, FunctionState& state) noexcept {
  const record::Binding& binding = *signature.spec->binding;
  std::memcpy(state.results, binding.results.prototype, binding.results.size);
  const Outcome outcome = binding.calculate(state.arguments, state.results, state.memory);
  return outcome.good() && *outcome.text == u'\0' && keep(signature.plan, state);
}

bool intact(const Function_CFunctionSpec& spec) noexcept {
  for (const CoefficientSet* set : spec.coefficients)
    if (!set->intact()) return false;
  return true;
}

}  // namespace

bool direct_call(const Signature& signature, const norvane_value* in, void* const* out) noexcept {
  ThreadState* const thread = thread_state();
  if (thread == nullptr) return false;
  FunctionState* state = thread->known_state(signature.spec->position);
  if (state == nullptr || state->signature != &signature) [[unlikely]] {
    state = thread->function_state(signature);
    if (state == nullptr) return false;
  }
  const CallPlan& plan = signature.plan;
  // Before the memory of the last call: what altered tables gave is refused from the moment that it is known.
  if (!plan.complete || !intact(*signature.spec) || !thread->enter()) return false;
  bool good = complete(out, state->wide.size() + state->narrow.size());
  if (good && !(state->answered && unchanged(*state, in))) {
    const FloatingPointGuard guard;
    state->answered = take(plan, *signature.spec->binding, *state, in) && calculate(signature, *state);
    good = state->answered;
  }
  if (good) {
    give(*state, out);
    thread->last_call.end = LastCall::End::none;
  }
  thread->leave();
  return good;
}

}  // namespace norvane::host
