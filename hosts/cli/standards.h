// The standards behind the functions, by the names people use for them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "framework/function_spec.h"

namespace norvane::cli {

inline constexpr std::string_view general_functions = "General";

// "AGA-8", "ISO-5167", "API 11.1 (2004)": what several functions share; "General" for those of no standard.
std::string standard_of(const Function_CFunctionSpec& spec);

// Functions of a standard, in the catalogue's order: all whose standard begins with the text, whatever its case and its
// blanks and hyphens ("iso5167", "API 11.1"). Hidden ones only when asked for.
std::vector<const Function_CFunctionSpec*> functions_of_standard(std::string_view name, bool hidden = false);

// The names of all standards, in the order of the catalogue.
std::vector<std::string> standard_names();

}  // namespace norvane::cli
