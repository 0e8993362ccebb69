#include "hosts/cli/output.h"

#include "hosts/cli/errors.h"
#include "hosts/cli/table.h"

namespace norvane::cli {

void tell(std::string_view text) noexcept {
  try {
    // A line that is drawn over another one keeps its length.
    const bool drawn = text.starts_with('\r');
    write_all(standard_error, drawn ? std::string(text) : wrapped(text, terminal_width(standard_error)),
              "standard error");
  } catch (...) {
  }
}

std::size_t page_width() { return terminal_width(standard_output); }

}  // namespace norvane::cli
