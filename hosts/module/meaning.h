// What the numbers of a status or of another coded output mean.
#pragma once

#include <string_view>
#include <vector>

#include "framework/function_spec.h"

namespace norvane::host {

// "argument error", "extended range"; empty for a number without a meaning. Static text.
std::u16string_view meaning_of(const Function_COutput& output, double number) noexcept;

struct Meaning {
  double number;
  std::u16string_view id;  // "OOR"; empty where the number has none of the function's own
  std::u16string_view text;
};

// Every number that the output can answer with, in ascending order; empty for an output that is no code. Of a range
// status these are all levels, also those for which the function has no words of its own.
std::vector<Meaning> meanings_of(const Function_COutput& output);

}  // namespace norvane::host
