#include "hosts/cli/identity.h"

#include <ctime>
#include <nlohmann/json.hpp>

#include "catalogue/identity.h"
#include "hosts/cli/document.h"

namespace norvane::cli {
namespace {

#if defined(__clang__)
constexpr const char* compiler = "Clang " __clang_version__;
#elif defined(__GNUC__)
constexpr const char* compiler = "GCC " __VERSION__;
#else
constexpr const char* compiler = "unknown";
#endif

#if defined(_WIN32)
#define NORVANE_SYSTEM "Windows"
#elif defined(__linux__)
#define NORVANE_SYSTEM "Linux"
#elif defined(__APPLE__)
#define NORVANE_SYSTEM "macOS"
#else
#define NORVANE_SYSTEM "unknown"
#endif

#if defined(__x86_64__)
constexpr const char* platform = NORVANE_SYSTEM " x86-64";
#elif defined(__aarch64__)
constexpr const char* platform = NORVANE_SYSTEM " arm64";
#else
constexpr const char* platform = NORVANE_SYSTEM;
#endif

}  // namespace

Identity identity() {
  const catalogue::Identity id = catalogue::identity();
  return {std::string(id.version),
          std::string(id.commit),
          catalogue::checksum_text(id.checksum),
          catalogue::checksum_text(id.built),
          compiler,
          platform};
}

std::string mismatch_text() {
  const Identity id = identity();
  if (id.intact()) return {};
  return "the checksum of the calculations is " + id.checksum + ", built was " + id.built +
         ": tables or records have been altered";
}

std::string version_text() {
  const Identity id = identity();
  return "norvane " + id.version + "\ncommit " + id.commit + "\nchecksum " + id.checksum +
         (id.intact() ? "" : " DOES NOT MATCH " + id.built) + "\ncompiler " + id.compiler + "\nplatform " +
         id.platform + "\n";
}

nlohmann::ordered_json identity_json() {
  const Identity id = identity();
  return {{"version", id.version},   {"commit", id.commit},     {"checksum", id.checksum}, {"intact", id.intact()},
          {"compiler", id.compiler}, {"platform", id.platform}, {"time", time_now()}};
}

std::string identity_line() {
  const Identity id = identity();
  return "norvane " + id.version + ", commit " + id.commit + ", checksum " + id.checksum + ", " + id.platform + ", " +
         time_now();
}

void add_identity(Document& page) {
  const Identity id = identity();
  page.heading("Identity");
  page.table({"", ""}, {{"Program", "norvane " + id.version + ", commit " + id.commit},
                        {"Checksum of tables, records and equations",
                         id.checksum + (id.intact() ? "" : " DOES NOT MATCH " + id.built)},
                        {"Built for", id.platform + ", " + id.compiler},
                        {"Calculated", time_now()}});
}

std::string time_now() {
  const std::time_t now = std::time(nullptr);
  std::tm utc{};
#ifdef _WIN32
  gmtime_s(&utc, &now);
#else
  gmtime_r(&now, &utc);
#endif
  char text[32];
  return {text, std::strftime(text, sizeof text, "%Y-%m-%d %H:%M UTC", &utc)};
}

}  // namespace norvane::cli
