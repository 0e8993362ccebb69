// Names of the 22 components of a natural gas, in the order in which the gas functions take their fractions.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "framework/function_spec.h"

namespace norvane::cli {

inline constexpr std::size_t component_count = 22;

// The names by which a column may be called: the component's own, for example "methane".
std::vector<std::string> component_names();

// Place of a component by name ("i-butane", "isobutane", "iC4"), component_count when it is none.
std::size_t component_named(std::string_view name);

// The input that takes the 22 fractions, input_count when the function has none.
std::size_t composition_input(const Function_CFunctionSpec& spec);

}  // namespace norvane::cli
