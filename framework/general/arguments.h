// The arguments of a call by position, for implementations that need the raw values.
#pragma once

#include <cstddef>

#include "framework/function_arg.h"

namespace norvane::functions {

struct Arguments {
  const FUNCTION_ARG* values;
  std::size_t count;

  // Null beyond the arguments given; the context's readers take that for a missing one.
  const FUNCTION_ARG* operator[](std::size_t i) const noexcept { return i < count ? values + i : nullptr; }
};

}  // namespace norvane::functions
