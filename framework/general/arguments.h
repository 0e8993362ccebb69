// The arguments of a call by position, for implementations that need the raw values.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>

#include "framework/context.h"

namespace norvane::functions {

struct Arguments {
  const FUNCTION_ARG* values;
  std::size_t count;

  // Null beyond the arguments given; the context's readers take that for a missing one.
  const FUNCTION_ARG* operator[](std::size_t i) const noexcept { return i < count ? values + i : nullptr; }
};

// A whole number, truncated from what was given, also from a text with a fraction ("10.0"). False for what is no
// number or beyond 32 bits.
inline bool read_whole(Function_CContext& context, const FUNCTION_ARG* arg, std::int32_t& value) noexcept {
  double number = 0.0;
  if (!context.ReadNumber(arg, number) || !(std::fabs(number) < 2147483648.0)) return false;
  value = static_cast<std::int32_t>(number);
  return true;
}

// An argument that must be a range, with the complaint about one that is not.
inline bool read_range(Function_CContext& context, Arguments arg, std::size_t index,
                       FUNCTION_ARG::Array& range) noexcept {
  if (context.ReadArray(arg[index], range)) return true;
  context.ReportError(index, u"is not a range of cells");
  return false;
}

}  // namespace norvane::functions
