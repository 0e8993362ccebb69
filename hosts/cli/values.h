// One value as people type it: on a command line, in a cell of a CSV file, as a text in JSON.
#pragma once

#include <string>
#include <string_view>

#include "hosts/cli/reading.h"
#include "hosts/cli/session.h"
#include "hosts/cli/target.h"

namespace norvane::cli {

// "input "pressure" of AGA8_M", for messages.
std::string full_name(const Session& session, const Target& target);

// One value for this target, put into the session's call: a number is converted into the input's unit (from the
// target's when the text names none), an option may be given by its name, a text stays a text, a blank cell is blank.
// Throws UsageError naming the input.
FUNCTION_ARG read_cell(Session& session, const Target& target, std::string_view text, const Reading& reading);

// A number in the target's unit, as read_cell() reads one.
FUNCTION_ARG read_number_cell(Session& session, const Target& target, double value, const Reading& reading);

}  // namespace norvane::cli
