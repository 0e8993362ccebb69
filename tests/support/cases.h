// Calls as lines of JSON: the files of data/ and their values. What a line may hold stands in calls_test.cpp.
#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "core/text.h"
#include "tests/support/arguments.h"

namespace norvane::test {

inline std::vector<std::filesystem::path> case_files(const std::vector<std::string>& folders) {
  std::vector<std::filesystem::path> paths;
  for (const std::string& folder : folders)
    for (const auto& entry : std::filesystem::directory_iterator(folder))
      if (entry.path().extension() == ".jsonl") paths.push_back(entry.path());
  std::sort(paths.begin(), paths.end());
  return paths;
}

struct CaseLine {
  std::string where;  // file and line
  std::string text;
  nlohmann::json json;  // discarded when the text is no JSON
};

inline std::vector<CaseLine> lines_of(const std::filesystem::path& path) {
  std::vector<CaseLine> lines;
  std::ifstream file(path);
  std::string text;
  for (int number = 1; std::getline(file, text); ++number)
    if (text.find_first_not_of(" \t\r") != std::string::npos)
      lines.push_back({path.filename().string() + ":" + std::to_string(number), text,
                       nlohmann::json::parse(text, nullptr, false)});
  return lines;
}

// The argument that a value of a line stands for; compositions by name from `gases`.
inline FUNCTION_ARG argument_of(Arguments& pool, nlohmann::json value, const nlohmann::json& gases = {}) {
  using nlohmann::json;
  if (value.is_string() && gases.contains(value)) value = gases[value.get<std::string>()];
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
    value = gases.at(value.begin().key());
    for (const auto& [place, amount] : changes.items()) value.at(std::stoul(place)) = amount;
  }
  std::vector<FUNCTION_ARG> cells;
  std::uint32_t columns = 1;
  for (const json& row : value) {
    if (row.is_array()) columns = static_cast<std::uint32_t>(row.size());
    for (const json& cell : row.is_array() ? row : json::array({row}))
      cells.push_back(argument_of(pool, cell, gases));
  }
  return pool.cells(cells, columns);
}

}  // namespace norvane::test
