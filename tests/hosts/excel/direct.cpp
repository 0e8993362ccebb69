#include "tests/hosts/excel/direct.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "core/text.h"
#include "hosts/module/module.h"

namespace sheet {
namespace {

using namespace norvane;
using norvane::excel::XL_ERROR_VALUE;

constexpr int host_errors[] = {0, 7, 15, 23, 29, 36, 42};

// Call values of a test, with the memory of their texts and elements.
class Builder {
 public:
  FUNCTION_ARG Make(const Value& value) {
    switch (value.kind) {
      case Kind::number: return FUNCTION_ARG::Number(value.number);
      case Kind::integer: return FUNCTION_ARG::Integer(static_cast<std::int32_t>(value.number));
      case Kind::boolean: return FUNCTION_ARG::Boolean(value.number != 0.0);
      case Kind::blank: return FUNCTION_ARG::Empty();
      case Kind::text:
        texts_.push_back(std::make_unique<std::u16string>(value.text));
        return FUNCTION_ARG::String(texts_.back()->c_str(), value.text.size());
      case Kind::array: {
        auto elements = std::make_unique<std::vector<FUNCTION_ARG>>();
        for (const Value& element : value.elements) elements->push_back(Make(element));
        arrays_.push_back(std::move(elements));
        return FUNCTION_ARG::OfArray(static_cast<std::uint32_t>(value.columns),
                                     static_cast<std::uint32_t>(value.rows), arrays_.back()->data());
      }
      default: return FUNCTION_ARG::Missing();
    }
  }

 private:
  std::vector<std::unique_ptr<std::u16string>> texts_;
  std::vector<std::unique_ptr<std::vector<FUNCTION_ARG>>> arrays_;
};

Value Shown(const FUNCTION_ARG& arg) {
  switch (arg.kind) {
    case ARG_NUMBER: return Number(arg.number);
    case ARG_INTEGER:
      if (arg.integer < 0 || arg.integer > 65535) return Number(arg.integer);
      return Integer(excel12 || arg.integer < 32768 ? arg.integer : arg.integer - 65536);
    case ARG_BOOLEAN: return Boolean(arg.boolean != 0);
    case ARG_STRING: {
      std::u16string text(arg.text());
      if (!excel12) {
        text.resize(std::min(text.size(), std::size_t{254}));
#if defined(_WIN32)
        for (char16_t& unit : text)
          if (unit > 0xFF) unit = u'?';
#else
        std::string bytes = to_utf8(text);
        std::size_t end = std::min(bytes.size(), std::size_t{254});
        while (end < bytes.size() && (bytes[end] & 0xC0) == 0x80) --end;
        bytes.resize(end);
        text = to_utf16(bytes);
#endif
      }
      return Text(std::move(text));
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

Value FromJson(const nlohmann::json& json) {
  if (json.is_boolean()) return Boolean(json.get<bool>());
  if (json.is_number()) return Number(json.get<double>());
  if (json.is_string()) return Text(to_utf16(json.get<std::string>()));
  if (!json.is_array()) return Missing();
  std::vector<Value> elements;
  int columns = 1;
  for (const nlohmann::json& row : json) {
    if (row.is_array()) {
      columns = static_cast<int>(row.size());
      for (const nlohmann::json& cell : row) elements.push_back(FromJson(cell));
    } else {
      elements.push_back(FromJson(row));
    }
  }
  return Array(static_cast<int>(json.size()), columns, std::move(elements));
}

}  // namespace

struct Direct::State {
  host::Module_CFunctionContext context{host::module()->library, host::module()->units};
  std::vector<std::uint64_t> slots = std::vector<std::uint64_t>(catalogue::specifications().size());
};

Direct::Direct() : state_(std::make_unique<State>()) {}
Direct::~Direct() = default;

Value Direct::Call(const Function_CFunctionSpec& spec, const std::vector<Value>& args) {
  Builder builder;
  std::vector<FUNCTION_ARG> values;
  for (const Value& arg : args) values.push_back(builder.Make(arg));
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
  for (const auto& entry : std::filesystem::directory_iterator(folder())) {
    if (entry.path().extension() != ".jsonl") continue;
    std::ifstream in(entry.path());
    std::string line;
    for (int number = 1; std::getline(in, line); ++number) {
      if (line.empty()) continue;
      const nlohmann::json json = nlohmann::json::parse(line);
      CheckCase check;
      check.where = entry.path().filename().string() + ":" + std::to_string(number);
      check.function = to_utf16(json.at("function").get<std::string>());
      for (const auto& [key, value] : json.at("inputs").items())
        check.inputs.emplace_back(to_utf16(key), FromJson(value));
      cases.push_back(std::move(check));
    }
  }
  return cases;
}

}  // namespace sheet
