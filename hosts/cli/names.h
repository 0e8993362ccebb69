// Finding functions and inputs by the names people type, and the nearest names when there is none.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "framework/function_spec.h"

namespace norvane::cli {

// Lower case, with blanks and '-' as '_': the form in which two spellings of one key are equal.
std::string normalised(std::string_view text);
bool equal_names(std::string_view a, std::string_view b);

// True when a slip or two of the pen make one of the other.
bool is_misspelt(std::string_view given, std::string_view known);

// At most three of the known names, nearest first; empty when none is near.
std::vector<std::string> nearest(std::string_view given, std::span<const std::string> known);
// "; did you mean a, b or c?", or nothing.
std::string did_you_mean(std::string_view given, std::span<const std::string> known);

// The text in quotation marks for a message: cut to a readable length, control characters and broken UTF-8 replaced.
std::string in_quotes(std::string_view text);
// The same without quotation marks, cut to the length given.
std::string printable(std::string_view text, std::size_t limit);

// By identifier or worksheet name, any case; null when there is none.
const Function_CFunctionSpec* known_function(std::string_view id);
// The same; throws UsageError with the nearest names.
const Function_CFunctionSpec& find_function(std::string_view id);

}  // namespace norvane::cli
