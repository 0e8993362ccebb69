// The published check values of tests/data, built into the program.
#pragma once

#include <span>
#include <string_view>

namespace norvane::cli {

struct CheckFile {
  std::string_view name;   // "aga8.jsonl"
  std::string_view lines;  // one case a line, see check.h
};

std::span<const CheckFile> built_in_check_values();

}  // namespace norvane::cli
