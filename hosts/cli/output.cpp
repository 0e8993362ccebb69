#include "hosts/cli/output.h"

#include "hosts/cli/errors.h"

namespace norvane::cli {

void tell(std::string_view text) noexcept {
  try {
    write_all(standard_error, text, "standard error");
  } catch (...) {
  }
}

}  // namespace norvane::cli
