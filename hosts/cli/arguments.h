// Arguments as people type them: "key=value", and for a range a list or a file.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "hosts/cli/reading.h"
#include "hosts/cli/session.h"
#include "hosts/cli/target.h"

namespace norvane::cli {

// An argument: one value, or for a range a list "[1,2,3]" or the cells of a file "@gas.csv" ("@-" is standard
// input). Throws UsageError naming the input.
FUNCTION_ARG read_argument(Session& session, const Target& target, std::string_view text, const Reading& reading);

// Splits "key=value". Throws UsageError when there is no '='.
void split_assignment(std::string_view assignment, std::string_view& key, std::string_view& value);

// Reads "key=value" arguments into the session's call. Throws UsageError; a key given twice is one.
void read_assignments(Session& session, const std::vector<std::string>& assignments, const Reading& reading);

}  // namespace norvane::cli
