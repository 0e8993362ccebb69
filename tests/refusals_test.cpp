// Arguments at and beyond what a calculation takes, as lines of data/refusals/*.jsonl: the status, which argument the
// messages blame, and that nothing else is delivered.
//
//   {"gases":{"lean":[0.9,...]}}                     compositions for the lines that follow
//   {"function":"AGA3_C","inputs":{"density":0},"status":1,"blames":"density","outputs":{"aga3 status":2}}
//
// The status is a number or "refused", where the fallback outputs stand in. "blames" is an input's key or a list of
// them, "says" a part of a message. With a status other than 0, outputs that are not named must not be written unless
// the line is "delivered". An input is a number, a text, a list, the name of a gas, or {"gas":{"3":0.5}}, a gas with
// some cells (from 0) replaced; the texts "nan" and "inf" are the numbers.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>

#include "core/text.h"
#include "tests/support/call.h"

namespace norvane::test {
namespace {

using nlohmann::json;

std::vector<std::string> files() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(NORVANE_TEST_DATA "/refusals"))
    names.push_back(entry.path().stem().string());
  std::sort(names.begin(), names.end());
  return names;
}

double number(const json& value) {
  return value.is_string() ? std::stod(value.get<std::string>()) : value.get<double>();
}

class Refusals : public testing::TestWithParam<std::string> {
 protected:
  std::vector<double> list(const json& value) const {
    if (value.is_string()) return gases_.at(value.get<std::string>());
    std::vector<double> amounts;
    if (value.is_array())
      for (const json& amount : value) amounts.push_back(number(amount));
    if (!value.is_object()) return amounts;
    for (const auto& [gas, changes] : value.items()) {
      amounts = gases_.at(gas);
      for (const auto& [place, amount] : changes.items()) amounts.at(std::stoul(place)) = number(amount);
    }
    return amounts;
  }

  void check(const json& line) {
    Call call(to_utf16(line.at("function").get<std::string>()));
    for (const auto& [key, value] : line.at("inputs").items()) {
      const std::u16string input = to_utf16(key);
      const bool gas =
          value.is_array() || value.is_object() || (value.is_string() && gases_.count(value.get<std::string>()) != 0);
      if (gas)
        call.list(input, list(value));
      else
        call.set(input, number(value));
    }
    const int status = call.run();
    const auto shown = [&] {
      std::string text = " answers " + bits_of(call.context().output);
      for (const auto& message : call.context().messages) text += "\n  " + to_utf8(message);
      return text;
    };
    EXPECT_EQ(status, line.at("status").is_string() ? Call::refused : line["status"].get<int>()) << shown();
    const json outputs = line.value("outputs", json::object());
    for (const auto& [key, want] : outputs.items())
      EXPECT_NEAR(call[to_utf16(key)], number(want), 1e-9 * std::fabs(number(want))) << key << shown();
    if (status > 0 && !line.value("delivered", false)) {
      for (const Function_COutput& output : call.spec().output_records())
        EXPECT_TRUE(output.role == 1 || outputs.contains(to_utf8(output.key)) || std::isnan(call[output.key]))
            << to_utf8(output.key) << " is written" << shown();
    }
    const auto told = [&](const std::string& words) {
      return std::any_of(call.context().messages.begin(), call.context().messages.end(),
                         [&](const auto& message) { return to_utf8(message).find(words) != std::string::npos; });
    };
    const json blamed = line.value("blames", json::array());
    for (const json& key : blamed.is_array() ? blamed : json::array({blamed}))
      EXPECT_TRUE(told("] " + key.get<std::string>() + " ")) << "does not blame " << key << shown();
    EXPECT_TRUE(!line.contains("says") || told(line["says"].get<std::string>())) << shown();
    EXPECT_TRUE(status == 0 || !call.context().messages.empty()) << "no message";
  }

  std::map<std::string, std::vector<double>> gases_;
};

INSTANTIATE_TEST_SUITE_P(Data, Refusals, testing::ValuesIn(files()), [](const auto& file) { return file.param; });

TEST_P(Refusals, AreAsTheLinesSay) {
  std::ifstream file(NORVANE_TEST_DATA "/refusals/" + GetParam() + ".jsonl");
  std::string text;
  int checked = 0;
  for (int number_of_line = 1; std::getline(file, text); ++number_of_line) {
    if (text.empty()) continue;
    SCOPED_TRACE(GetParam() + ".jsonl:" + std::to_string(number_of_line) + " " + text.substr(0, 200));
    const json line = json::parse(text, nullptr, false);
    ASSERT_TRUE(line.is_object()) << "the line is not JSON";
    const json gases = line.value("gases", json::object());
    for (const auto& [name, amounts] : gases.items()) gases_[name] = list(amounts);
    if (!line.contains("function")) continue;
    check(line);
    ++checked;
  }
  EXPECT_GT(checked, 0);
}

}  // namespace
}  // namespace norvane::test
