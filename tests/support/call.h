// Calls of functions through a context, as a host makes them.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "catalogue/catalogue.h"
#include "framework/context.h"
#include "hosts/module/module.h"
#include "tests/support/arguments.h"

namespace norvane::test {

inline constexpr double infinite = std::numeric_limits<double>::infinity();
inline constexpr double not_a_number = std::numeric_limits<double>::quiet_NaN();

// Collects messages, as "E text" and "W text".
class TestContext : public Function_CContext {
 public:
  explicit TestContext(const Function_CLibrary& library = host::module()->library)
      : Function_CContext(library, Unit_CTypeAndUnitContainer::Instance()) {
    EnableMessages(true);
  }
  const Function_CCallerInfo* FetchCallerInfo() noexcept override { return &caller; }
  void ReportMessage(std::uint32_t level, std::u16string_view text) noexcept override {
    messages.push_back((level == MESSAGE_ERROR ? u"E " : u"W ") + std::u16string(text));
  }

  // Runs with a fresh arena; the output stays valid until the next call.
  std::uint32_t Run(const Function_CFunctionSpec& spec, std::vector<FUNCTION_ARG> args) {
    Reset();
    messages.clear();
    arguments_of_call = std::move(args);
    output = FUNCTION_ARG::Missing();
    return Execute(spec, arguments_of_call.data(), arguments_of_call.size(), output, flags, slot);
  }

  Function_CCallerInfo caller{};
  std::vector<std::u16string> messages;
  std::vector<FUNCTION_ARG> arguments_of_call;
  FUNCTION_ARG output{};
  std::uint32_t flags = 0;
  std::uint64_t* slot = nullptr;
};

// A text that outlives the call, such as a literal.
inline FUNCTION_ARG text(const char16_t* value) {
  return FUNCTION_ARG::String(value, std::u16string_view(value).size());
}

// One function of the catalogue: inputs and outputs by key or by number; what is not set is omitted.
class Call {
 public:
  // What run() answers when the arguments were refused and the fallback outputs stand in.
  static constexpr int refused = -1;

  explicit Call(std::u16string_view id) : spec_(catalogue::find(id)) {
    if (spec_ == nullptr) throw std::runtime_error("the function is not in the catalogue");
    arguments_.values.assign(spec_->input_count, FUNCTION_ARG::Missing());
    context_.slot = &slot_;
  }

  template <class Input>
  Call& set(Input which, FUNCTION_ARG value) {
    arguments_.values[input(which)] = value;
    return *this;
  }
  template <class Input>
  Call& set(Input which, double value) {
    return set(which, FUNCTION_ARG::Number(value));
  }
  template <class Input, class List>
  Call& list(Input which, const List& amounts) {
    return set(which, arguments_.numbers({amounts.begin(), amounts.end()}));
  }
  // What arguments point to.
  Arguments& arguments() { return arguments_; }

  // The status output, 0 without one, or `refused`; the call itself must succeed.
  int run() {
    EXPECT_EQ(context_.Run(*spec_, arguments_.values), ERROR_OK);
    if ((context_.flags & FLAG_OUTPUT_FALLBACK) == FLAG_OUTPUT_FALLBACK) return refused;
    return spec_->outputs[0].role == 1 ? static_cast<int>(value(0)) : 0;
  }

  // The worksheet error that the fallback outputs stood in for, and the one that a cell shows in their place.
  std::uint32_t error() const { return context_.replaced_status(); }
  std::uint32_t shown_error() const { return context_.concealed_error(); }

  const FUNCTION_ARG& output(std::size_t index) const {
    return spec_->output_count > 1 ? context_.output.array.elements[index] : context_.output;
  }
  // An output; NaN when it was not written.
  double value(std::size_t index) const {
    const FUNCTION_ARG& out = output(index);
    if (out.kind == ARG_INTEGER) return out.integer;
    return out.kind == ARG_NUMBER ? out.number : not_a_number;
  }
  double operator[](std::u16string_view key) const {
    for (std::size_t i = 0; i < spec_->output_count; ++i)
      if (spec_->outputs[i].key == key) return value(i);
    throw std::runtime_error("no such output");
  }

  std::size_t input(std::size_t index) const { return index; }
  std::size_t input(int index) const { return static_cast<std::size_t>(index); }
  std::size_t input(std::u16string_view key) const {
    for (std::size_t i = 0; i < spec_->input_count; ++i)
      if (spec_->inputs[i].key == key) return i;
    throw std::runtime_error("no such input");
  }
  double default_of(std::u16string_view key) const { return spec_->inputs[input(key)].default_value.AsDouble(); }
  const Function_CFunctionSpec& spec() const { return *spec_; }
  TestContext& context() { return context_; }

 private:
  const Function_CFunctionSpec* spec_;
  TestContext context_;
  Arguments arguments_;
  std::uint64_t slot_ = 0;
};

}  // namespace norvane::test
