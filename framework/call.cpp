#include "framework/call.h"

namespace norvane {

void Call::read_numbers(const FUNCTION_ARG* arg, std::span<double> values) noexcept {
  FUNCTION_ARG::Array array{};
  if (!note(context_.ReadArray(arg, array))) return;
  if (std::uint64_t{array.columns} * array.rows < values.size()) {
    if (!failed()) error_ = ERROR_VALUE;
    return;
  }
  const FUNCTION_ARG* element = array.elements;
  for (double& value : values) {
    if (element->kind == ARG_NUMBER) {
      value = element->number;
    } else if (!note(context_.ReadNumber(element, value))) {
      return;
    }
    ++element;
  }
}

void Call::begin_outputs() noexcept {
  output_written_ = true;
  const std::size_t outputs = context_.specification()->output_count;
  if (outputs > 1) {
    // Without memory for the outputs the call fails; what is set goes to a spare place.
    if (!context_.SetArray(output_, 1, static_cast<std::uint32_t>(outputs)) && !failed())
      error_ = ERROR_VALUE;
  } else {
    output_ = FUNCTION_ARG::Empty();
  }
}

}  // namespace norvane
