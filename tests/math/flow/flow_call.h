// One call of a flow element through the context, as a host makes it; inputs and outputs by key.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "catalogue/catalogue.h"
#include "tests/framework/test_context.h"

namespace norvane::test {

class FlowCall {
 public:
  explicit FlowCall(std::u16string_view id) : spec_(catalogue::find(id)) {
    if (spec_ == nullptr) throw std::runtime_error("the function is not in the catalogue");
    args_.assign(spec_->input_count, FUNCTION_ARG::Missing());
    context_.EnableMessages(true);
  }
  FlowCall& set(std::u16string_view key, double value) { return set(input(key), value); }
  FlowCall& set(std::size_t index, double value) {
    args_[index] = FUNCTION_ARG::Number(value);
    return *this;
  }
  FlowCall& reset(std::size_t index) {
    args_[index] = FUNCTION_ARG::Missing();
    return *this;
  }
  // Runs and gives the status output; the call itself must succeed.
  int run() {
    EXPECT_EQ(context_.Run(*spec_, args_), ERROR_OK);
    return static_cast<int>(value(0));
  }
  // An output; NaN when it was not written.
  double value(std::size_t index) const {
    const FUNCTION_ARG& out = context_.output.array.elements[index];
    if (out.kind == ARG_INTEGER) return out.integer;
    return out.kind == ARG_NUMBER ? out.number : std::nan("");
  }
  double operator[](std::u16string_view key) const {
    for (std::size_t i = 0; i < spec_->output_count; ++i)
      if (spec_->outputs[i].key == key) return value(i);
    throw std::runtime_error("no such output");
  }
  std::size_t written() const {
    std::size_t n = 0;
    for (std::size_t i = 0; i < spec_->output_count; ++i) n += context_.output.array.elements[i].kind != ARG_EMPTY;
    return n;
  }
  bool fell_back() const { return (context_.flags & FLAG_OUTPUT_FALLBACK) == FLAG_OUTPUT_FALLBACK; }
  const Function_CFunctionSpec& spec() const { return *spec_; }
  // True when a message of the last call names the input.
  bool blames(std::u16string_view key) const {
    for (const std::u16string& message : context_.messages)
      if (message.find(std::u16string(u"] ") + std::u16string(key) + u" ") != std::u16string::npos) return true;
    return false;
  }
  std::size_t input(std::u16string_view key) const {
    for (std::size_t i = 0; i < spec_->input_count; ++i)
      if (spec_->inputs[i].key == key) return i;
    throw std::runtime_error("no such input");
  }

 private:
  const Function_CFunctionSpec* spec_;
  TestContext context_;
  std::vector<FUNCTION_ARG> args_;
};

}  // namespace norvane::test
