// Values as people type them: on a command line, in a cell of a CSV file.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "framework/function_spec.h"
#include "hosts/cli/session.h"

namespace norvane::cli {

// A number that may be followed by a unit: "60", "870psia", "68 degF".
struct Quantity {
  double value = 0.0;
  std::string_view unit;  // empty when there is none
};
// False when the text is something else.
bool read_quantity(std::string_view text, Quantity& quantity);

// True when the input takes a number in a unit of the catalogue.
bool takes_unit(const Function_CInput& input);

// One value for this input, put into the session's call: a number is converted into the input's unit (from
// `unit` when the text names none and `unit` is not 0), an option may be given by its name, a text stays a
// text, a blank cell is blank. Throws UsageError naming the input.
FUNCTION_ARG read_cell(Session& session, const Function_CInput& input, std::string_view text, std::uint32_t unit = 0);

// An argument: one value, or for a range a list "[1,2,3]" or the cells of a file "@gas.csv" ("@-" is standard
// input). Throws UsageError naming the input.
FUNCTION_ARG read_argument(Session& session, const Function_CInput& input, std::string_view text);

// Splits "key=value". Throws UsageError when there is no '='.
void split_assignment(std::string_view assignment, std::string_view& key, std::string_view& value);

// Reads "key=value" arguments into the session's call. Throws UsageError; a key given twice is one.
void read_assignments(Session& session, const std::vector<std::string>& assignments);

}  // namespace norvane::cli
