#include "hosts/module/direct_call.h"

#include <bit>
#include <cstring>

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

// Whether these are the inputs that were taken last. Compares words, which needs no guard of the floating-point state.
bool unchanged(const CallPlan& plan, const FunctionState& state, const norvane_value* in) noexcept {
  const std::uint64_t* word = state.words;
  const norvane_value* value = in;
  for (const PlannedInput& input : plan.inputs)
    if (const std::uint64_t given = value++->option, last = *word++; input.from != From::list && given != last)
      return false;
  for (const PlannedInput& input : plan.inputs) {
    const norvane_value& list = *in++;
    if (input.from != From::list) continue;
    if (left_out(list) || list.count < input.cells || list.count > TypedCall::longest_list ||
        std::memcmp(state.arguments + input.offset, list.data, input.cells * sizeof(double)) != 0)
      return false;
  }
  return true;
}

enum class Taken : std::uint8_t { unchanged, changed, refused };

// The list into the structure, where the last one stands.
Taken take_list(const PlannedInput& input, const norvane_value& list, const record::Binding& binding,
                FunctionState& state) noexcept {
  const bool given = !left_out(list);
  if (given ? list.count < input.cells || list.count > TypedCall::longest_list : !input.may_be_left_out)
    return Taken::refused;
  const void* const cells =
      given ? list.data : static_cast<const std::byte*>(binding.arguments.prototype) + input.offset;
  const std::size_t size = input.cells * sizeof(double);
  std::byte* const place = state.arguments + input.offset;
  if (state.taken && std::memcmp(place, cells, size) == 0) return Taken::unchanged;
  std::memcpy(place, cells, size);
  return given && input.judged() && input.judge(state.arguments) != Verdict::fits ? Taken::refused : Taken::changed;
}

// One number into the structure, unless it is the last call's, which went there.
Taken take_value(const PlannedInput& input, const norvane_value& given, FunctionState& state,
                 std::uint64_t& word) noexcept {
  if (state.taken && given.option == word) return Taken::unchanged;
  word = given.option;
  double value = given.number;
  if (input.plain()) {
    if (value < input.low || value > input.high) return Taken::refused;
    if (input.to != nullptr) value = input.to(value);
    std::memcpy(state.arguments + input.offset, &value, sizeof value);
    return Taken::changed;
  }
  if (input.from == From::option) value = static_cast<std::int32_t>(static_cast<std::uint32_t>(given.option));
  if (input.from == From::truth) value = given.option != 0 ? 1.0 : 0.0;
  return input.accept(value, state.arguments) == Verdict::fits ? Taken::changed : Taken::refused;
}

Taken take(const CallPlan& plan, const record::Binding& binding, FunctionState& state,
           const norvane_value* in) noexcept {
  bool changed = false;
  std::uint64_t* word = state.words;
  for (const PlannedInput& input : plan.inputs) {
    const Taken taken =
        input.from == From::list ? take_list(input, *in, binding, state) : take_value(input, *in, state, *word);
    if (taken == Taken::refused) {
      state.taken = false;
      return taken;
    }
    changed = changed || taken == Taken::changed;
    ++word;
    ++in;
  }
  state.taken = true;
  return changed ? Taken::changed : Taken::unchanged;
}

// The results as the words that leave. False for one that the context has something to say about.
bool keep(const CallPlan& plan, FunctionState& state) noexcept {
  std::uint64_t* word = state.outputs;
  for (const PlannedOutput& output : plan.outputs) {
    const double value = output.value(state.results);
    if (!output.plausible(value)) return false;
    *word++ = output.wide ? std::bit_cast<std::uint64_t>(value)
                          : static_cast<std::uint32_t>(static_cast<std::int32_t>(value));
  }
  return true;
}

void give(const CallPlan& plan, const FunctionState& state, void* const* out) noexcept {
  const std::uint64_t* word = state.outputs;
  for (const PlannedOutput& output : plan.outputs) {
    if (output.wide)
      std::memcpy(*out, word, sizeof(double));
    else
      std::memcpy(*out, word, sizeof(std::uint32_t));
    ++word;
    ++out;
  }
}

bool calculate(const Signature& signature, FunctionState& state) noexcept {
  const record::Binding& binding = *signature.spec->binding;
  std::memcpy(state.results, binding.results.prototype, binding.results.size);
  const Outcome outcome = binding.calculate(state.arguments, state.results, state.memory);
  return outcome.good() && *outcome.text == u'\0' && keep(signature.plan, state);
}

}  // namespace

bool direct_call(const Signature& signature, const norvane_value* in, void* const* out) noexcept {
  const CallPlan& plan = signature.plan;
  // Before the memory of the last call: what altered tables gave is refused from the moment that it is known.
  if (!plan.complete || altered_tables(*signature.spec) != nullptr) return false;
  ThreadState* const thread = thread_state();
  if (thread == nullptr) return false;
  FunctionState* state = thread->known_state(signature.spec->position);
  if (state == nullptr || state->signature != &signature) state = thread->function_state(signature);
  if (state == nullptr || !thread->enter()) return false;
  bool good = true;
  for (std::size_t k = 0, count = plan.outputs.size(); k < count; ++k) good = good && out[k] != nullptr;
  if (good && !(state->answered && unchanged(plan, *state, in))) {
    const FloatingPointGuard guard;
    const Taken taken = take(plan, *signature.spec->binding, *state, in);
    if (taken != Taken::unchanged || !state->answered) {
      state->answered = taken != Taken::refused && calculate(signature, *state);
      good = state->answered;
    }
  }
  if (good) {
    give(plan, *state, out);
    thread->last_call.end = LastCall::End::none;
  }
  thread->leave();
  return good;
}

}  // namespace norvane::host
