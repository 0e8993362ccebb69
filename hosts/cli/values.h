// Values as people type them: on a command line, in a cell of a CSV file, as a text in JSON.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "hosts/cli/reading.h"
#include "hosts/cli/session.h"
#include "hosts/cli/target.h"

namespace norvane::cli {

// Without blanks and tabs at both ends.
std::string_view trimmed(std::string_view text);

// A whole text that is a number. With a decimal comma a point is no part of a number, so that "1.234" of a file
// with thousands separators is never taken for 1.234.
bool read_number(std::string_view text, char decimal, double& value);

// A number that may be followed by a unit: "60", "870psia", "68 degF".
struct Quantity {
  double value = 0.0;
  std::string_view unit;  // empty when there is none
};
// False when the text is something else.
bool read_quantity(std::string_view text, char decimal, Quantity& quantity);

// True when the input takes a number in a unit of the catalogue.
bool takes_unit(const Function_CInput& input);

// One value for this target, put into the session's call: a number is converted into the input's unit (from the
// target's when the text names none), an option may be given by its name, a text stays a text, a blank cell is blank.
// Throws UsageError naming the input.
FUNCTION_ARG read_cell(Session& session, const Target& target, std::string_view text, const Reading& reading);

// A number in the target's unit, as read_cell() reads one.
FUNCTION_ARG read_number_cell(Session& session, const Target& target, double value, const Reading& reading);

// An argument: one value, or for a range a list "[1,2,3]" or the cells of a file "@gas.csv" ("@-" is standard
// input). Throws UsageError naming the input.
FUNCTION_ARG read_argument(Session& session, const Target& target, std::string_view text, const Reading& reading);

// Splits "key=value". Throws UsageError when there is no '='.
void split_assignment(std::string_view assignment, std::string_view& key, std::string_view& value);

// Reads "key=value" arguments into the session's call. Throws UsageError; a key given twice is one.
void read_assignments(Session& session, const std::vector<std::string>& assignments, const Reading& reading);

}  // namespace norvane::cli
