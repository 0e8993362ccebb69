// Typed signatures: how the inputs and outputs of a function cross a boundary that knows types (direct exports,
// automation methods). One classification, used by whatever is generated from the catalogue and by what runs it.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "framework/function_spec.h"
#include "hosts/module/call_plan.h"

namespace norvane::host {

enum class Passing : std::uint8_t {
  number,  // 64-bit float: quantities, factors, dates
  option,  // 32-bit unsigned integer: whole numbers, enumerations, booleans, numbers that list their meanings
  range,   // list of 64-bit floats: inputs that take a range of cells
  text     // texts and addresses
};

Passing passing_of(const Function_CInput& input) noexcept;
Passing passing_of(const Function_COutput& output) noexcept;

// "number", "option", "range", "text".
const char* passing_name(Passing passing) noexcept;

struct Parameter {
  Passing passing;
  std::size_t index;  // of its record in the specification
};

struct Signature {
  const Function_CFunctionSpec* spec;
  std::uint32_t id;                // place in interface_order(), from 1
  std::vector<Parameter> inputs;   // in the order of the records, without the `Name` input
  std::vector<Parameter> outputs;  // outputs 1 to n; output 0 is the status, the result of the call
  CallPlan plan;
};

// The calculation functions in the order of the typed interfaces. Append only: a place here is a function's
// dispatch id, which clients compile into their programs.
std::span<const std::u16string_view> interface_order() noexcept;

// By dispatch id; null when this build has no such function or memory is refused.
const Signature* find_signature(std::uint32_t id) noexcept;
// By function identifier, any case.
const Signature* find_signature(std::u16string_view id) noexcept;

// The signature of any specification, for tests; id 0.
Signature make_signature(const Function_CFunctionSpec& spec);

}  // namespace norvane::host
