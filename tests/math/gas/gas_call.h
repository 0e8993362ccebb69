// One call of a gas function through the context, as a host makes it.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>
#include <span>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

#include "catalogue/catalogue.h"
#include "tests/framework/test_context.h"

namespace norvane::test {

class GasCall {
 public:
  explicit GasCall(std::u16string_view id) : spec_(catalogue::find(id)) {
    if (spec_ == nullptr) throw std::runtime_error("the function is not in the catalogue");
    args_.assign(spec_->input_count, FUNCTION_ARG::Missing());
    context_.EnableMessages(true);
  }
  GasCall& set(std::size_t index, FUNCTION_ARG arg) {
    args_[index] = arg;
    return *this;
  }
  GasCall& set(std::size_t index, double value) { return set(index, FUNCTION_ARG::Number(value)); }
  GasCall& cells(std::size_t index, std::span<const double> values) {
    auto& cells = cells_.emplace_back();
    for (double value : values) cells.push_back(FUNCTION_ARG::Number(value));
    return set(index, FUNCTION_ARG::OfArray(1, static_cast<std::uint32_t>(values.size()), cells.data()));
  }
  // Runs and gives the status output; the call itself must succeed.
  double run() {
    EXPECT_EQ(context_.Run(*spec_, args_), ERROR_OK);
    return value(0);
  }
  // An output; NaN when it was not written.
  double value(std::size_t index) const {
    const FUNCTION_ARG& out = context_.output.array.elements[index];
    if (out.kind == ARG_INTEGER) return out.integer;
    return out.kind == ARG_NUMBER ? out.number : std::nan("");
  }
  bool status_alone() const {
    for (std::size_t i = 1; i < spec_->output_count; ++i)
      if (context_.output.array.elements[i].kind != ARG_EMPTY) return false;
    return true;
  }
  bool fell_back() const { return (context_.flags & FLAG_OUTPUT_FALLBACK) == FLAG_OUTPUT_FALLBACK; }
  TestContext& context() { return context_; }

 private:
  const Function_CFunctionSpec* spec_;
  TestContext context_;
  std::vector<FUNCTION_ARG> args_;
  std::vector<std::vector<FUNCTION_ARG>> cells_;
};

}  // namespace norvane::test
