// Calls as lines of data/calls/*.jsonl, above all with arguments at and beyond what a function takes: the status, which
// argument the messages blame, and that nothing else is delivered.
//
//   {"gases":{"lean":[0.9,...]}}                     compositions for the lines that follow
//   {"function":"AGA3_C","inputs":{"density":0},"status":1,"blames":"density","outputs":{"aga3 status":2}}
//
// The status is a number or "refused", where the fallback outputs stand in for the worksheet error "error". "blames" is an input's key or a list of
// them, "says" a part of a message. With a status other than 0, outputs that are not named must not be written unless
// the line is "delivered". An input is a number, a text ("nan" and "inf" are read as numbers), a boolean, null for a
// blank cell, {"error":"#N/A"}, a list (one column), a list of rows, the name of a gas, or {"gas":{"3":0.5}}, a gas
// with some cells (from 0) replaced.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "core/text.h"
#include "tests/support/call.h"

namespace norvane::test {
namespace {

using nlohmann::json;

std::vector<std::string> files() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(NORVANE_TEST_DATA "/calls"))
    names.push_back(entry.path().stem().string());
  std::sort(names.begin(), names.end());
  return names;
}

json shown(const FUNCTION_ARG& value) {
  json cells = json::array();
  switch (value.kind) {
    case ARG_NUMBER: return value.number;
    case ARG_INTEGER: return value.integer;
    case ARG_BOOLEAN: return value.boolean != 0;
    case ARG_STRING: return to_utf8(value.text());
    case ARG_ARRAY:
      for (std::uint64_t i = 0; i < value.count(); ++i) cells.push_back(shown(value.array.elements[i]));
      return cells;
    default: return {};
  }
}

class Calls : public testing::TestWithParam<std::string> {
 protected:
  FUNCTION_ARG argument(Arguments& pool, json value) const {
    if (value.is_string() && gases_.contains(value)) value = gases_[value.get<std::string>()];
    if (value.is_null()) return FUNCTION_ARG::Empty();
    if (value.is_boolean()) return FUNCTION_ARG::Boolean(value.get<bool>());
    if (value.is_number()) return FUNCTION_ARG::Number(value.get<double>());
    if (value.is_string()) return pool.text(to_utf16(value.get<std::string>()));
    if (value.contains("error")) {
      for (std::uint32_t code = 1; code < 13; ++code)
        if (to_utf8(error_text(code)) == value["error"]) return FUNCTION_ARG::Error(code);
      throw std::runtime_error("no such error");
    }
    if (value.is_object()) {
      const json changes = value.begin().value();
      value = gases_.at(value.begin().key());
      for (const auto& [place, amount] : changes.items()) value.at(std::stoul(place)) = amount;
    }
    std::vector<FUNCTION_ARG> cells;
    std::uint32_t columns = 1;
    for (const json& row : value) {
      if (row.is_array()) columns = static_cast<std::uint32_t>(row.size());
      for (const json& cell : row.is_array() ? row : json::array({row})) cells.push_back(argument(pool, cell));
    }
    return pool.cells(cells, columns);
  }

  void check(const json& line) {
    Call call(to_utf16(line.at("function").get<std::string>()));
    for (const auto& [key, value] : line.at("inputs").items())
      call.set(to_utf16(key), argument(call.arguments(), value));
    const int status = call.run();
    const auto answer = [&] {
      std::string text = " answers " + bits_of(call.context().output);
      for (const auto& message : call.context().messages) text += "\n  " + to_utf8(message);
      return text;
    };
    EXPECT_EQ(status, line.at("status").is_string() ? Call::refused : line["status"].get<int>()) << answer();
    const json outputs = line.value("outputs", json::object());
    for (std::size_t i = 0; i < call.spec().output_count; ++i) {
      const Function_COutput& output = call.spec().outputs[i];
      const std::string key = to_utf8(output.key);
      const json got = shown(call.output(i)), want = outputs.contains(key) ? outputs[key] : got;
      if (got.is_number() && want.is_number()) {
        EXPECT_NEAR(got.get<double>(), want.get<double>(), 1e-9 * std::fabs(want.get<double>())) << key << answer();
      } else {
        EXPECT_EQ(got, want) << key << answer();
      }
      EXPECT_TRUE(status <= 0 || output.role == 1 || outputs.contains(key) || got.is_null() ||
                  line.value("delivered", false))
          << key << " is written" << answer();
    }
    for (const auto& [key, want] : outputs.items()) EXPECT_NO_THROW(call[to_utf16(key)]) << key;
    const auto told = [&](const std::string& words) {
      return std::any_of(call.context().messages.begin(), call.context().messages.end(),
                         [&](const auto& message) { return to_utf8(message).find(words) != std::string::npos; });
    };
    const json blamed = line.value("blames", json::array());
    for (const json& key : blamed.is_array() ? blamed : json::array({blamed}))
      EXPECT_TRUE(told("] " + key.get<std::string>() + " ")) << "does not blame " << key << answer();
    EXPECT_TRUE(!line.contains("says") || told(line["says"].get<std::string>())) << answer();
    EXPECT_TRUE(status <= 0 || !call.context().messages.empty()) << "no message";
    if (line.contains("error")) {
      EXPECT_EQ(to_utf8(error_text(call.error())), line["error"].get<std::string>()) << answer();
    }
  }

  json gases_ = json::object();
};

INSTANTIATE_TEST_SUITE_P(Data, Calls, testing::ValuesIn(files()), [](const auto& file) { return file.param; });

TEST_P(Calls, AreAsTheLinesSay) {
  std::ifstream file(NORVANE_TEST_DATA "/calls/" + GetParam() + ".jsonl");
  std::string text;
  int checked = 0;
  for (int number_of_line = 1; std::getline(file, text); ++number_of_line) {
    if (text.empty()) continue;
    SCOPED_TRACE(GetParam() + ".jsonl:" + std::to_string(number_of_line) + " " + text.substr(0, 200));
    const json line = json::parse(text, nullptr, false);
    ASSERT_TRUE(line.is_object()) << "the line is not JSON";
    gases_.update(line.value("gases", json::object()));
    if (!line.contains("function")) continue;
    check(line);
    ++checked;
  }
  EXPECT_GT(checked, 0);
}

}  // namespace
}  // namespace norvane::test
