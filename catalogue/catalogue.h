// The three registration routines in the fixed order, and the specifications they register.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

#include "framework/function_spec.h"

namespace norvane::catalogue {

// A line of the catalogue, whether its standard is part of this build or not.
struct Line {
  GroupId group;
  std::u16string_view id;
  std::size_t inputs;
  std::size_t outputs;
  const record::Function* record;  // null: not part of this build
};

// All 118 lines, in the catalogue's order.
std::span<const Line> lines() noexcept;

// How many functions this build has.
std::size_t count() noexcept;

// Registers the functions of one group in the catalogue's order. Specifications are static objects, each made when it
// is first asked for.
void register_extended(Function_CLibrary& library);
void register_math(Function_CLibrary& library);
void register_gerg_math(Function_CLibrary& library);

// The specifications of all functions of this build, in the catalogue's order; specification i has position
// i.
std::span<const Function_CFunctionSpec* const> specifications();
// Null when there is none at this position, or no memory for it.
const Function_CFunctionSpec* specification(std::size_t position) noexcept;

// By identifier without prefix ("AGA8_M"), any case; null when this build has no such function.
const Function_CFunctionSpec* find(std::u16string_view id);

}  // namespace norvane::catalogue
