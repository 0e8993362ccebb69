// The arguments of a random call as the values of a typed one, and what such a call answers.
#pragma once

#include <bit>
#include <cstdint>
#include <deque>
#include <vector>

#include "hosts/module/typed_call.h"
#include "tests/support/random_calls.h"

namespace norvane::test {

// What is no number for a parameter that takes one becomes a number that is hard to take.
class TypedArguments {
 public:
  TypedArguments(const host::Signature& signature, std::uint64_t number) {
    Arguments drawn;
    RandomCall(*signature.spec, number, drawn);
    drawn.values.resize(signature.spec->input_count, FUNCTION_ARG::Missing());
    for (const host::Parameter& input : signature.inputs) {
      const FUNCTION_ARG& arg = drawn.values[input.index];
      auto& list = lists.emplace_back();
      if (input.passing == host::Passing::range) {
        for (std::uint64_t i = 0; arg.kind == ARG_ARRAY && arg.array.elements != nullptr && i < arg.count(); ++i)
          list.push_back(number_of(arg.array.elements[i]));
        values.push_back({{.data = list.empty() ? nullptr : list.data()}, static_cast<std::uint32_t>(list.size())});
        numbers.push_back(0.0);
        continue;
      }
      double value = number_of(arg);
      if (input.passing == host::Passing::option)
        value = value > -3e9 && value < 5e9 ? static_cast<std::uint32_t>(static_cast<std::int64_t>(value)) : 77.0;
      numbers.push_back(value);
      if (input.passing == host::Passing::option)
        values.push_back({{.option = static_cast<std::uint32_t>(value)}, 0});
      else
        values.push_back({{.number = value}, 0});
    }
  }

  std::vector<norvane_value> values;
  std::vector<double> numbers;            // of the inputs that are one value
  std::deque<std::vector<double>> lists;  // of the inputs that are lists

 private:
  static double number_of(const FUNCTION_ARG& arg) {
    switch (arg.kind) {
      case ARG_NUMBER: return arg.number;
      case ARG_INTEGER: return arg.integer;
      case ARG_BOOLEAN: return arg.boolean;
      default: return bits(0x7FF8000000000001u);
    }
  }
};

// What a call through the context answers: each output as 64 bits, those of a double or of a 32-bit number.
struct TypedResult {
  host::TypedAnswer answer = host::TypedAnswer::unavailable;
  std::uint32_t status = 0;
  std::vector<std::uint64_t> outputs;
};

class TypedTestCaller final : public host::ValueCaller {
 public:
  using ValueCaller::ValueCaller;

 private:
  bool take_list(host::TypedCall& call, const host::Parameter& input, const norvane_value& value) override {
    return call.set_list(input, static_cast<const double*>(value.data), value.count);
  }
  bool take_text(host::TypedCall&, const host::Parameter&, const norvane_value&) override { return false; }
  bool give_text(host::TypedCall&, std::u16string_view, void*) override { return false; }
};

inline TypedResult call_through_context(const host::Signature& signature, const TypedArguments& arguments) {
  TypedResult result;
  result.outputs.assign(signature.outputs.size(), 0);
  std::vector<void*> places;
  for (std::uint64_t& output : result.outputs) places.push_back(&output);
  TypedTestCaller caller(arguments.values.data(), places.data());
  result.answer = host::TypedCall::make(signature, caller, result.status);
  return result;
}

}  // namespace norvane::test
