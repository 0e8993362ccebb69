// What a result can be traced to: version, commit, checksum of the calculations, compiler, platform.
#pragma once

#include <string>

#include <nlohmann/json_fwd.hpp>

namespace norvane::cli {

struct Identity {
  std::string version, commit;
  std::string calculations;  // SHA-256 of all sources that have a say in a number
  std::string compiler, platform;
};
const Identity& identity();

// Short lines for --version.
std::string version_text();
// The same as JSON, with the time of now.
nlohmann::ordered_json identity_json();
// "norvane 0.1.0, commit 1f2e3d, calculations 0123456789abcdef, Linux x86-64, 2024-03-01 12:00 UTC".
std::string identity_line();

class Document;
// The section "Identity" of a page.
void add_identity(Document& page);

// "2024-03-01 12:00 UTC".
std::string time_now();

}  // namespace norvane::cli
