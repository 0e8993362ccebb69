// One call of a function by a caller that knows types: numbers, options, lists and texts in, outputs by index.
//
//   TypedCall call;
//   if (!call.begin(signature)) ...          // no context
//   call.set_number(parameter, 1.01325); ...  // what is not set is left at its default
//   if (!call.run()) ...                      // refused: nothing was calculated
//   call.fetch(0, status); call.fetch(1, z); ...
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "hosts/module/module.h"
#include "hosts/module/signature.h"

namespace norvane::host {

// What a host hands over, in the form that its parameter's Passing says.
struct TypedValue {
  const void* data;      // range: 64-bit floats; text: the host's own kind of text
  double number;         // number
  std::uint32_t option;  // option; the count of a range
};

class TypedCall {
 public:
  // A longer list is a mistake: no standard has that many components.
  static constexpr std::uint32_t longest_list = 65536;

  // False when the thread has no context.
  bool begin(const Signature& signature) noexcept;

  Function_CContext& context() noexcept { return *context_; }
  FUNCTION_ARG& argument(const Parameter& input) noexcept { return arguments_[input.index]; }
  void set_number(const Parameter& input, double value) noexcept { argument(input) = FUNCTION_ARG::Number(value); }
  void set_option(const Parameter& input, std::uint32_t value) noexcept;
  // False, and the argument left as it is, for a null or empty list, one beyond longest_list or no memory.
  bool set_list(const Parameter& input, const double* values, std::uint32_t count) noexcept;
  bool set_text(const Parameter& input, std::u16string_view text) noexcept;

  // False when an argument failed its checks or could not be read: no output is there then.
  bool run() noexcept;

  // Outputs of a call that ran; one that was not written reads as 0 or the empty text.
  // A text lives until the thread's next call.
  bool fetch(std::size_t output, double& value) noexcept;
  bool fetch(std::size_t output, std::uint32_t& value) noexcept;
  bool fetch(std::size_t output, std::u16string_view& text) noexcept;

  // Why run() failed, as the context tells it: the arguments with their numbers, keys and values.
  std::u16string failure() const;

 private:
  const FUNCTION_ARG* element(std::size_t output) const noexcept;

  FloatingPointGuard guard_;
  const Signature* signature_ = nullptr;
  ThreadState* state_ = nullptr;
  Function_CContext* context_ = nullptr;
  FUNCTION_ARG* arguments_ = nullptr;
  FUNCTION_ARG output_ = FUNCTION_ARG::Empty();
};

}  // namespace norvane::host
