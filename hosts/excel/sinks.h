// Where the add-in's own messages go. A test puts in its own, so that it sees them and no box waits for a user.
#pragma once

#include <string_view>

namespace norvane::excel {

struct Sinks {
  // A fault in the catalogue that a developer must see: a modal box.
  void (*developer_message)(std::u16string_view title, std::u16string_view text) noexcept;
  // One line for the debugger.
  void (*debug)(std::u16string_view line) noexcept;
  // The about box, on the host's request only.
  void (*about)() noexcept;
};

const Sinks& sinks() noexcept;
// Not while calls run.
void set_sinks(const Sinks& sinks) noexcept;

}  // namespace norvane::excel
