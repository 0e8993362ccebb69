// What the numbers of every function come from, as a page for auditors.
#pragma once

#include <string>

namespace norvane::cli {

// Markdown. Throws when a calculation function has no source, so that none can be without an entry.
std::string traceability_page();

}  // namespace norvane::cli
