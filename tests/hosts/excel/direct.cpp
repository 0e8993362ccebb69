#include "tests/hosts/excel/direct.h"

#include <gtest/gtest.h>

#include "core/text.h"
#include "hosts/module/module.h"
#include "tests/support/cases.h"

namespace sheet {
namespace {

using namespace norvane;
using norvane::excel::XL_ERROR_VALUE;

constexpr int host_errors[] = {0, 7, 15, 23, 29, 36, 42};

FUNCTION_ARG argument(test::Arguments& pool, const Value& value) {
  switch (value.kind) {
    case Kind::number: return FUNCTION_ARG::Number(value.number);
    case Kind::integer: return FUNCTION_ARG::Integer(static_cast<std::int32_t>(value.number));
    case Kind::boolean: return FUNCTION_ARG::Boolean(value.number != 0.0);
    case Kind::blank: return FUNCTION_ARG::Empty();
    case Kind::text: return pool.text(value.text);
    case Kind::array: {
      std::vector<FUNCTION_ARG> cells;
      for (const Value& element : value.elements) cells.push_back(argument(pool, element));
      return pool.cells(std::move(cells), static_cast<std::uint32_t>(value.columns));
    }
    default: return FUNCTION_ARG::Missing();
  }
}

Value Shown(const FUNCTION_ARG& arg) {
  switch (arg.kind) {
    case ARG_NUMBER: return Number(arg.number);
    case ARG_INTEGER:
      if (arg.integer < 0 || arg.integer > 65535) return Number(arg.integer);
      return Integer(excel12 || arg.integer < 32768 ? arg.integer : arg.integer - 65536);
    case ARG_BOOLEAN: return Boolean(arg.boolean != 0);
    case ARG_STRING: {
      const std::u16string text(arg.text());
      if (excel12) return Text(text);
      const std::string bytes = Narrow(text, 254);
      return Text(Widen(bytes.data(), bytes.size()));
    }
    case ARG_ARRAY: {
      std::vector<Value> elements;
      for (std::uint64_t i = 0; i < arg.count(); ++i) elements.push_back(Shown(arg.array.elements[i]));
      return Array(static_cast<int>(arg.array.rows), static_cast<int>(arg.array.columns), std::move(elements));
    }
    case ARG_MISSING: return Missing();
    case ARG_ERROR: return Error(static_cast<int>(arg.error));
    default: return Blank();
  }
}

std::string& folder() {
  static std::string path;
  return path;
}

}  // namespace

struct Direct::State {
  host::Module_CFunctionContext context{host::module()->library, host::module()->units};
  std::vector<std::uint64_t> slots = std::vector<std::uint64_t>(catalogue::specifications().size());
};

Direct::Direct() : state_(std::make_unique<State>()) {}
Direct::~Direct() = default;

Value Direct::Call(const Function_CFunctionSpec& spec, const std::vector<Value>& args) {
  test::Arguments pool;
  std::vector<FUNCTION_ARG> values;
  for (const Value& arg : args) values.push_back(argument(pool, arg));
  state_->context.Reset();
  FUNCTION_ARG output = FUNCTION_ARG::Empty();
  std::uint32_t flags = 0;
  std::uint32_t status =
      state_->context.Execute(spec, values.data(), values.size(), output, flags, &state_->slots[spec.position]);
  if (status == ERROR_OK) status = state_->context.concealed_error();
  if (status == ERROR_OK) return Shown(output);
  return Error(status <= 7 ? host_errors[status - 1] : XL_ERROR_VALUE);
}

std::vector<Value> CheckCase::Arguments(const Function_CFunctionSpec& spec) const {
  std::vector<Value> args(spec.input_count, Missing());
  for (const auto& [key, value] : inputs) {
    std::size_t i = 0;
    while (i < spec.input_count && !equal_ignoring_case(spec.inputs[i].key, key)) ++i;
    EXPECT_LT(i, spec.input_count) << where << ": no input " << to_utf8(key);
    if (i < spec.input_count) args[i] = value;
  }
  return args;
}

void SetCheckFolder(const char* path) { folder() = path; }

std::vector<CheckCase> ReadCheckCases() {
  std::vector<CheckCase> cases;
  for (const auto& path : test::case_files({folder()})) {
    for (const test::CaseLine& line : test::lines_of(path)) {
      CheckCase& check = cases.emplace_back();
      check.where = line.where;
      check.function = to_utf16(line.json.at("function").get<std::string>());
      test::Arguments pool;
      for (const auto& [key, value] : line.json.at("inputs").items())
        check.inputs.emplace_back(to_utf16(key), Shown(test::argument_of(pool, value)));
    }
  }
  return cases;
}

}  // namespace sheet
