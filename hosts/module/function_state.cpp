#include "hosts/module/function_state.h"

#include <cstring>
#include <new>

namespace norvane::host {

FunctionState::FunctionState(const Signature& of) : signature(&of) {
  if (of.spec->binding == nullptr) return;
  const record::Binding& binding = *of.spec->binding;
  const CallPlan& plan = of.plan;
  if (binding.remember != nullptr) {
    data = binding.remember();
    if (data == nullptr) throw std::bad_alloc();
    memory = binding.memory_of(*data);
  }
  constexpr std::size_t unit = alignof(std::max_align_t);
  const auto padded = [](std::size_t size) { return (size + unit - 1) / unit * unit; };
  const std::size_t structures = padded(binding.arguments.size) + padded(binding.results.size);
  const std::size_t word_count = plan.inputs.size() + plan.outputs.size();
  block_ = std::make_unique<std::byte[]>(structures + word_count * sizeof *words);
  arguments = block_.get();
  results = arguments + padded(binding.arguments.size);
  words = new (block_.get() + structures) std::uint64_t[word_count]();
  outputs = words + plan.inputs.size();
  for (std::size_t i = 0; i < plan.inputs.size(); ++i) {
    const PlannedInput& input = plan.inputs[i];
    (input.from == PlannedInput::From::list ? lists : numbers)
        .push_back({static_cast<std::uint16_t>(i), input.cells, input.offset});
  }
  for (std::size_t k = 0; k < plan.outputs.size(); ++k)
    (plan.outputs[k].wide ? wide : narrow).push_back(static_cast<std::uint16_t>(k));
  std::memcpy(arguments, binding.arguments.prototype, binding.arguments.size);
}

}  // namespace norvane::host
