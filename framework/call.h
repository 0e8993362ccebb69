// Call: the thin reader and writer that implementations use over the context.
//
//   Call call(context, args, count, output);
//   const double pressure = call.number(In::pressure);
//   std::array<double, 22> x = call.numbers<22>(In::composition);
//   if (call.failed()) return call.error();
//   ... compute ...
//   call.set(Out::status, status);
//   call.set(Out::z, z);
//   return call.done();
//
// Reading keeps on after a failure (values read then are 0) so that one test after the last read
// is enough; the first failure is the one reported.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "framework/context.h"

namespace norvane {

class Call {
 public:
  Call(Function_CContext& context, FUNCTION_ARG* args, std::size_t count, FUNCTION_ARG& output) noexcept
      : context_(context), args_(args), count_(count), output_(output) {}

  template <class Index>
  double number(Index index) noexcept {
    const FUNCTION_ARG* arg = argument(index);
    if (arg != nullptr && arg->kind == ARG_NUMBER) return arg->number;
    double value = 0.0;
    return note(context_.ReadNumber(arg, value)) ? value : 0.0;
  }
  template <class Index>
  std::int32_t integer(Index index) noexcept {
    std::int32_t value = 0;
    return note(context_.ReadInteger(argument(index), value)) ? value : 0;
  }
  template <class Index>
  bool boolean(Index index) noexcept {
    bool value = false;
    return note(context_.ReadBoolean(argument(index), value)) && value;
  }
  // Missing and empty give the empty text.
  template <class Index>
  std::u16string_view text(Index index) noexcept {
    std::u16string_view value;
    return note(context_.ReadText(argument(index), value, u"")) ? value : std::u16string_view{};
  }
  // An option: a whole number, truncated from what was given (a NaN or a value beyond 32 bits reads as 0,
  // which no list holds). The implementation says what a number outside its list means.
  template <class Index>
  int option(Index index) noexcept {
    const double value = number(index);
    return value > -2147483649.0 && value < 2147483648.0 ? static_cast<int>(value) : 0;
  }
  // The first N cells of a range, row by row; fewer cells, or a cell that is no number,
  // is a failure, reported under the argument's name.
  template <std::size_t N, class Index>
  std::array<double, N> numbers(Index index) noexcept {
    std::array<double, N> values{};
    numbers(static_cast<std::size_t>(index), values);
    return values;
  }
  bool numbers(std::size_t index, std::span<double> values) noexcept;

  bool failed() const noexcept { return error_ != ERROR_OK; }
  // Status to return after a failed read.
  std::uint32_t error() const noexcept { return error_; }
  // Ends the call with a status of the reader's own, for example an option outside its list.
  std::uint32_t refuse(std::size_t index, std::u16string_view message, std::uint32_t code = ERROR_VALUE) noexcept {
    context_.ReportError(index, message);
    return code;
  }

  // Outputs: one value, or a column of all outputs; what is not set stays ARG_EMPTY. A value that is not finite
  // is not written: the call then answers ERROR_NUM, which the context replaces by the fallback outputs.
  template <class Index>
  void set(Index index, double value) noexcept {
    if (!(value - value == 0.0)) {
      if (!failed()) error_ = ERROR_NUM;
      return;
    }
    slot(static_cast<std::size_t>(index)) = FUNCTION_ARG::Number(value);
  }
  template <class Index>
  void set_integer(Index index, std::int32_t value) noexcept {
    slot(static_cast<std::size_t>(index)) = FUNCTION_ARG::Integer(value);
  }
  template <class Index>
  void set_boolean(Index index, bool value) noexcept {
    slot(static_cast<std::size_t>(index)) = FUNCTION_ARG::Boolean(value);
  }
  template <class Index>
  void set_text(Index index, std::u16string_view value) noexcept {
    if (!context_.SetText(slot(static_cast<std::size_t>(index)), value)) error_ = ERROR_VALUE;
  }
  // Status to return after the last output.
  std::uint32_t done() const noexcept { return error_; }

  Function_CContext& context() const noexcept { return context_; }
  template <class Index>
  const FUNCTION_ARG* argument(Index index) const noexcept {
    const auto i = static_cast<std::size_t>(index);
    return i < count_ ? &args_[i] : nullptr;
  }

 private:
  bool note(bool good) noexcept {
    if (!good && !failed()) error_ = context_.conversion_error() != 0 ? context_.conversion_error() : ERROR_VALUE;
    return good;
  }
  void report_numbers(std::size_t index, std::size_t needed, std::size_t cell) noexcept;
  FUNCTION_ARG& slot(std::size_t index) noexcept {
    if (!output_written_) begin_outputs();
    return output_.kind == ARG_ARRAY ? output_.array.elements[index] : (index == 0 ? output_ : spare_);
  }
  void begin_outputs() noexcept;

  Function_CContext& context_;
  FUNCTION_ARG* args_;
  std::size_t count_;
  FUNCTION_ARG& output_;
  FUNCTION_ARG spare_{};  // takes what cannot be stored when memory is refused
  std::uint32_t error_ = ERROR_OK;
  bool output_written_ = false;
};

}  // namespace norvane
