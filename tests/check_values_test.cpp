// Runs the published check values of data/*.jsonl through the whole call path, in the JSON form of the command line.
//
// A case is a line {"function","inputs","outputs","source"} with a relative ("rtol") or absolute ("atol") tolerance,
// 1e-9 relative when it has neither, and tolerances of single outputs in "rtols" and "atols". An expected null means
// that the output must not be written. One test is one function in one file.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "hosts/cli/json_call.h"

namespace norvane {
namespace {

using nlohmann::json;

struct Case {
  std::size_t line;
  std::string text;
};

struct Group {
  std::string file;
  std::string function;
  std::vector<Case> cases;
};

void PrintTo(const Group& group, std::ostream* out) { *out << group.function << " of " << group.file; }

// A line that is no case is kept under the name "unreadable", where it fails.
std::vector<Group> read_groups() {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(NORVANE_TEST_DATA))
    if (entry.path().extension() == ".jsonl") files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  std::vector<Group> groups;
  for (const auto& file : files) {
    std::map<std::string, Group> by_function;
    std::ifstream in(file);
    std::string text;
    for (std::size_t line = 1; std::getline(in, text); ++line) {
      if (text.find_first_not_of(" \t\r") == std::string::npos) continue;
      const json parsed = json::parse(text, nullptr, false);
      const bool readable = parsed.is_object() && parsed.contains("function") && parsed["function"].is_string() &&
                            parsed.contains("outputs") && !parsed["outputs"].empty();
      const std::string function = readable ? parsed["function"].get<std::string>() : "unreadable";
      Group& group = by_function[function];
      group.file = file.filename().string();
      group.function = function;
      group.cases.push_back({line, text});
    }
    for (auto& entry : by_function) groups.push_back(std::move(entry.second));
  }
  return groups;
}

double tolerance(const json& check, const char* one, const char* many, const std::string& key, double fallback) {
  if (check.contains(many) && check[many].contains(key)) return check[many][key].get<double>();
  return check.value(one, fallback);
}

double number(const json& value) { return value.is_boolean() ? value.get<bool>() : value.get<double>(); }
bool is_number(const json& value) { return value.is_number() || value.is_boolean(); }

void expect_output(const json& check, const std::string& key, const json& outputs, const json& want) {
  const json got = outputs.contains(key) ? outputs[key] : json();
  if (!is_number(want) || !is_number(got)) {
    EXPECT_EQ(got, want) << "output " << key;
    return;
  }
  const double relative = tolerance(check, "rtol", "rtols", key, check.contains("atol") ? 0.0 : 1e-9);
  const double absolute = tolerance(check, "atol", "atols", key, 0.0);
  EXPECT_LE(std::fabs(number(got) - number(want)), absolute + relative * std::fabs(number(want)))
      << "output " << key << " is " << got << ", published is " << want;
}

class CheckValues : public testing::TestWithParam<Group> {};

TEST_P(CheckValues, Hold) {
  // One session, as a caller has it: later cases meet the caches that earlier ones filled.
  cli::JsonCalls calls;
  for (const Case& entry : GetParam().cases) {
    SCOPED_TRACE(GetParam().file + ":" + std::to_string(entry.line));
    const json check = json::parse(entry.text, nullptr, false);
    ASSERT_TRUE(check.is_object()) << "the line is not JSON";
    SCOPED_TRACE(check.value("source", "no source"));
    std::string text;
    ASSERT_NE(calls.answer(entry.text, text), cli::JsonCalls::Answer::unreadable) << text;
    const json answer = json::parse(text);
    ASSERT_EQ(answer["status"], 0) << text;
    for (const auto& [key, want] : check["outputs"].items()) expect_output(check, key, answer["outputs"], want);
  }
}

std::string name_of(const testing::TestParamInfo<Group>& info) {
  std::string name = info.param.function + "_" + info.param.file.substr(0, info.param.file.find('.'));
  for (char& c : name)
    if (std::isalnum(static_cast<unsigned char>(c)) == 0) c = '_';
  return name;
}

INSTANTIATE_TEST_SUITE_P(Published, CheckValues, testing::ValuesIn(read_groups()), name_of);

TEST(CheckValueFiles, Exist) { EXPECT_FALSE(read_groups().empty()); }

}  // namespace
}  // namespace norvane
