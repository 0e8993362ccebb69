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

// Registers the functions of one group in the catalogue's order. Specifications are static objects, made on
// first use.
void register_extended(Function_CLibrary& library);
void register_math(Function_CLibrary& library);
void register_gerg_math(Function_CLibrary& library);

// The specifications of all functions of this build, in the catalogue's order; specification i has position
// i.
std::span<const Function_CFunctionSpec* const> specifications();

// By identifier without prefix ("AGA8_M"), any case; null when this build has no such function.
const Function_CFunctionSpec* find(std::u16string_view id);

}  // namespace norvane::catalogue
