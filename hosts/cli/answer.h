// What the answer of a call says, alike in every command.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "hosts/cli/session.h"

namespace norvane::cli {

enum class Verdict {
  good,
  extended,  // good, within the extended range of the standard
  outside,   // calculated outside the range of the standard
  failed     // no result: the call was refused, or its status is not 0
};
Verdict verdict_of(const Session& session);
// True when a good answer carries a warning that is no range status.
bool has_warning(const Session& session);

// The value to show of an output: of a call that was refused nothing but its status, or its error.
const FUNCTION_ARG& shown_output(const Session& session, std::size_t index);

// "arguments refused", "calculation failed", ... of the flags word.
std::vector<std::string_view> flag_names(std::uint32_t flags);

// "status 2 (calculation error)", or why there is not even a status.
std::string failure_text(const Session& session);

// The messages of a call, each with its level; of a call that failed every message but the remarks is an error.
struct ShownMessage {
  bool error;
  std::u16string_view text;
};
std::vector<ShownMessage> shown_messages(const Session& session);

}  // namespace norvane::cli
