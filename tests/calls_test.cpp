// Calls and their answers, as lines of data/*.jsonl (published check values), data/refereed/*.jsonl (evaluated with more
// digits, so that every coefficient has a say) and data/calls/*.jsonl (arguments at and beyond what a function takes).
//
//   {"function":"AGA8_M","inputs":{"pressure":60,...},"outputs":{"status":0,"z":0.84,...},"rtol":1e-6,"source":"..."}
//   {"gases":{"lean":[0.9,...]}}                      compositions for the lines that follow
//   {"function":"AGA3_C","inputs":{"density":0},"status":1,"blames":"density","outputs":{"aga3 status":2}}
//
// An input is a number, a text ("nan" and "inf" are read as numbers), a boolean, null for a blank cell,
// {"error":"#N/A"}, a list (one column), a list of rows, the name of a gas, or {"gas":{"3":0.5}}, a gas with some cells
// (from 0) replaced. An expected null is an output that must not be written; with a status other than 0 that holds for
// every output without a value here, unless the line is "delivered". Tolerances are relative ("rtol", 1e-9 when there
// is none) or absolute ("atol"), of single outputs in "rtols" and "atols". The status is a number or "refused", where
// the fallback outputs stand in for the worksheet error "error". "blames" is the key of an input that a message must
// name, or a list of them, "says" a part of a message, "messages" a list of all of them.
#include <gtest/gtest.h>

#include <algorithm>

#include "hosts/cli/json_call.h"
#include "tests/support/call.h"
#include "tests/support/cases.h"

namespace norvane::test {
namespace {

using nlohmann::json;

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

class Calls : public testing::TestWithParam<std::filesystem::path> {
 protected:
  static double tolerance(const json& line, const char* one, const char* many, const std::string& key, double usual) {
    return line.contains(many) && line[many].contains(key) ? line[many][key].get<double>() : line.value(one, usual);
  }

  // The command line answers in the same numbers, from a session that remembers the lines before.
  void check_command_line(const std::string& line) {
    std::string text;
    session_.answer(line, text);
    const json answer = json::parse(text);
    EXPECT_EQ(answer.value("outputs", json()), answers_) << text;
  }

  void check(const json& line) {
    answers_ = json::object();
    Call call(to_utf16(line.at("function").get<std::string>()));
    for (const auto& [key, value] : line.at("inputs").items())
      call.set(to_utf16(key), argument_of(call.arguments(), value, gases_));
    const int status = call.run();
    const auto answer = [&] {
      std::string text = " answers " + bits_of(call.context().output);
      for (const auto& message : call.context().messages) text += "\n  " + to_utf8(message);
      return text;
    };
    const json outputs = line.value("outputs", json::object());
    // Published values know the status output only, whatever stands in it.
    const bool fell_back = status == Call::refused;
    const json want_status = line.value("status", outputs.value("status", json(0)));
    EXPECT_EQ(!fell_back                ? json(status)
              : line.contains("status") ? json("refused")
                                        : shown(call.output(0)),
              want_status)
        << answer();
    for (std::size_t i = 0; i < call.spec().output_count; ++i) {
      const Function_COutput& output = call.spec().outputs[i];
      const std::string key = to_utf8(output.key);
      const json got = fell_back && output.role == 0 ? json() : shown(call.output(i));
      const json want = outputs.contains(key) ? outputs[key] : got;
      if (got.is_number() && (want.is_number() || want.is_boolean())) {
        const double value = want.is_number() ? want.get<double>() : want.get<bool>();
        const double relative = tolerance(line, "rtol", "rtols", key, line.contains("atol") ? 0.0 : 1e-9);
        EXPECT_NEAR(got.get<double>(), value,
                    tolerance(line, "atol", "atols", key, 0.0) + relative * std::fabs(value))
            << key << answer();
      } else {
        EXPECT_EQ(got, want) << key << answer();
      }
      EXPECT_TRUE(status <= 0 || output.role == 1 || outputs.contains(key) || got.is_null() ||
                  line.value("delivered", false))
          << key << " is written" << answer();
      answers_[key] = got;
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
    EXPECT_TRUE(status == 0 || !call.context().messages.empty()) << "no message";
    if (line.contains("messages")) {
      json texts = json::array();
      for (const auto& message : call.context().messages) texts.push_back(to_utf8(message.substr(2)));
      EXPECT_EQ(texts, line["messages"]);
    }
    if (line.contains("error")) {
      EXPECT_EQ(to_utf8(error_text(call.error())), line["error"].get<std::string>()) << answer();
    }
    // A cell shows the error where the fallback outputs would conceal it.
    EXPECT_EQ(call.shown_error(), call.spec().outputs_tell_failure() ? 0 : call.error()) << answer();
  }

  json gases_ = json::object(), answers_;
  cli::JsonCalls session_;
};

INSTANTIATE_TEST_SUITE_P(
    Data, Calls,
    testing::ValuesIn(case_files({NORVANE_TEST_DATA, NORVANE_TEST_DATA "/refereed", NORVANE_TEST_DATA "/calls"})),
    [](const auto& file) { return file.param.stem().string() + "_" + file.param.parent_path().stem().string(); });

TEST_P(Calls, AreAsTheLinesSay) {
  const bool published = GetParam().parent_path().stem() != "calls";
  int checked = 0;
  for (const CaseLine& line : lines_of(GetParam())) {
    SCOPED_TRACE(line.where + " " + line.text.substr(0, 200));
    ASSERT_TRUE(line.json.is_object()) << "the line is not JSON";
    gases_.update(line.json.value("gases", json::object()));
    if (!line.json.contains("function")) continue;
    check(line.json);
    if (published) check_command_line(line.text);
    ++checked;
  }
  EXPECT_GT(checked, 0);
}

}  // namespace
}  // namespace norvane::test
