// Components of a natural gas by the names people type (the names themselves: math/common/components.h).
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "framework/function_spec.h"
#include "math/common/components.h"

namespace norvane::cli {

// The names by which a column may be called: the component's own, for example "methane".
std::vector<std::string> component_names();

// "0 methane, 1 nitrogen, ...": the order of a composition.
std::string component_order();

// Place of a component by name, formula or synonym ("i-butane", "isobutane", "iC4"), component::count when it is none.
std::size_t component_named(std::string_view name);

// The input that takes the 22 fractions, input_count when the function has none.
std::size_t composition_input(const Function_CFunctionSpec& spec);

}  // namespace norvane::cli
