// What a result can be traced to: version, commit, checksum of the calculating part, compiler, platform.
#pragma once

#include <string>

#include <nlohmann/json_fwd.hpp>

namespace norvane::cli {

struct Identity {
  std::string version, commit;
  std::string checksum,
      built;  // of the calculating part: what is in memory, and what was built (catalogue/identity.h)
  std::string compiler, platform;
  bool intact() const noexcept { return checksum == built; }
};
Identity identity();
// What is wrong when they differ; else empty.
std::string mismatch_text();

// Short lines for --version.
std::string version_text();
// The same as JSON, with the time of now.
nlohmann::ordered_json identity_json();
// "norvane 0.1.0, commit 1f2e3d, checksum 0123ABCD, Linux x86-64, 2024-03-01 12:00 UTC".
std::string identity_line();

class Document;
// The section "Identity" of a page.
void add_identity(Document& page);

// "2024-03-01 12:00 UTC".
std::string time_now();

}  // namespace norvane::cli
