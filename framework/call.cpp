#include "framework/call.h"

#include "core/text.h"

namespace norvane {

bool Call::numbers(std::size_t index, std::span<double> values) noexcept {
  FUNCTION_ARG::Array array{};
  const bool readable = note(context_.ReadArray(argument(index), array));
  if (!readable || std::uint64_t{array.columns} * array.rows < values.size()) {
    if (!failed()) error_ = ERROR_VALUE;
    report_numbers(index, values.size(), 0);
    return false;
  }
  const FUNCTION_ARG* element = array.elements;
  for (double& value : values) {
    if (element->kind == ARG_NUMBER) {
      value = element->number;
    } else if (!note(context_.ReadNumber(element, value))) {
      report_numbers(index, values.size(), static_cast<std::size_t>(element - array.elements) + 1);
      return false;
    }
    ++element;
  }
  return true;
}

// "needs an array of 22 numbers", or, when it is one cell (from 1) that is no number, "has no number in cell 3".
void Call::report_numbers(std::size_t index, std::size_t needed, std::size_t cell) noexcept {
  if (!context_.messages_enabled()) return;
  char16_t digits[max_number_text + 1];
  const std::size_t length = format_integer(static_cast<std::int32_t>(cell != 0 ? cell : needed), digits);
  char16_t text[64];
  std::size_t n = 0;
  for (std::u16string_view part :
       {std::u16string_view(cell != 0 ? u"has no number in cell " : u"needs an array of "),
        std::u16string_view(digits, length), std::u16string_view(cell != 0 ? u"" : u" numbers")})
    for (char16_t unit : part) text[n++] = unit;
  context_.ReportError(index, {text, n});
}

void Call::begin_outputs() noexcept {
  output_written_ = true;
  const std::size_t outputs = context_.specification()->output_count;
  if (outputs > 1) {
    // Without memory for the outputs the call fails; what is set goes to a spare place.
    if (!context_.SetArray(output_, 1, static_cast<std::uint32_t>(outputs)) && !failed()) error_ = ERROR_VALUE;
  } else {
    output_ = FUNCTION_ARG::Empty();
  }
}

}  // namespace norvane
