// One call of a function by a caller that knows types: numbers, options, lists and texts in, outputs by index.
//
// The steps are the same for every such caller (TypedCall::make); how its lists and texts look, and where its outputs
// go, is the caller's own (TypedCaller).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "hosts/module/module.h"
#include "hosts/module/signature.h"
#include "hosts/module/typed_value.h"

namespace norvane::host {

enum class TypedAnswer : std::uint8_t {
  delivered,    // status and all outputs
  undelivered,  // the function ran and the status is there, but an output could not be delivered
  refused,      // an argument is none, or failed its checks: nothing was calculated
  unavailable   // no context: memory is refused, or the thread is inside another call
};

class TypedCall;

// One side of one call. Both routines run while the thread's context is in use: they must not run code of a client.
class TypedCaller {
 public:
  // Sets the argument of an input, which is left out when nothing is set. False when what was given is no argument.
  virtual bool take(TypedCall& call, const Parameter& input, std::size_t place) = 0;
  // Delivers an output of the call.
  virtual bool give(TypedCall& call, const Parameter& output, std::size_t place) = 0;

 protected:
  ~TypedCaller() = default;
};

class TypedCall {
 public:
  // A longer list is a mistake: no standard has that many components.
  static constexpr std::uint32_t longest_list = 65536;

  // Takes the arguments, runs the function and gives the status, then the outputs. The status is written
  // when the function ran.
  static TypedAnswer make(const Signature& signature, TypedCaller& caller, std::uint32_t& status);

  TypedCall(const TypedCall&) = delete;
  TypedCall& operator=(const TypedCall&) = delete;

  // For a caller that takes.
  Function_CContext& context() noexcept { return held_.context(); }
  FUNCTION_ARG& argument(const Parameter& input) noexcept { return arguments_[input.index]; }
  void set_option(const Parameter& input, std::uint32_t value) noexcept;
  // A null or empty list is left out; false for one beyond longest_list.
  bool set_list(const Parameter& input, const double* values, std::uint32_t count) noexcept;
  bool set_text(const Parameter& input, std::u16string_view text) noexcept;

  // For a caller that gives: an output that the function did not write reads as 0 or the empty text. A text lives
  // until the thread's next call.
  bool fetch(const Parameter& output, double& value) noexcept;
  bool fetch(const Parameter& output, std::uint32_t& value) noexcept;
  bool fetch(const Parameter& output, std::u16string_view& text) noexcept;

 private:
  explicit TypedCall(const Signature& signature) noexcept;
  bool run() noexcept;

  FloatingPointGuard guard_;
  HeldContext held_;
  const Signature& signature_;
  FUNCTION_ARG* arguments_ = nullptr;
  FUNCTION_ARG output_ = FUNCTION_ARG::Empty();
};

// A caller whose arguments are values of C and whose outputs are pointers. Lists and texts are its host's.
class ValueCaller : public TypedCaller {
 public:
  // As many values and pointers as the signature has parameters; no pointer is null.
  ValueCaller(const norvane_value* in, void* const* out) : in_(in), out_(out) {}
  bool take(TypedCall& call, const Parameter& input, std::size_t place) final;
  bool give(TypedCall& call, const Parameter& output, std::size_t place) final;

 protected:
  virtual bool take_list(TypedCall& call, const Parameter& input, const norvane_value& value) = 0;
  virtual bool take_text(TypedCall& call, const Parameter& input, const norvane_value& value) = 0;
  virtual bool give_text(TypedCall& call, std::u16string_view text, void* target) = 0;

 private:
  const norvane_value* in_;
  void* const* out_;
};

// Notes for last_message() that an output has no place to go to.
void note_null_output(const Signature& signature, std::size_t place) noexcept;

// Notes for last_message() that there was no memory even to begin a call.
void note_no_memory() noexcept;

// What there is to say about the calling thread's last typed call: why it was refused, what stands behind a status
// other than 0, remarks on a good result; empty when there is nothing. Calls do not pay for this: it is found out now.
std::u16string last_message();

}  // namespace norvane::host
