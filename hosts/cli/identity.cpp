#include "hosts/cli/identity.h"

#include <ctime>
#include <nlohmann/json.hpp>

#include "hosts/cli/document.h"
#include "norvane_checksum.h"
#include "norvane_commit.h"

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

// Enough of a checksum to tell two builds apart by eye.
constexpr std::size_t short_sum = 16;

}  // namespace

const Identity& identity() {
  static const Identity known = {NORVANE_VERSION, NORVANE_COMMIT, NORVANE_CALCULATIONS, compiler, platform};
  return known;
}

std::string version_text() {
  const Identity& id = identity();
  return "norvane " + id.version + "\ncommit " + id.commit + "\ncalculations " +
         id.calculations.substr(0, short_sum) + "\ncompiler " + id.compiler + "\nplatform " + id.platform + "\n";
}

nlohmann::ordered_json identity_json() {
  const Identity& id = identity();
  return {{"version", id.version},   {"commit", id.commit},     {"calculations_sha256", id.calculations},
          {"compiler", id.compiler}, {"platform", id.platform}, {"time", time_now()}};
}

std::string identity_line() {
  const Identity& id = identity();
  return "norvane " + id.version + ", commit " + id.commit + ", calculations " +
         id.calculations.substr(0, short_sum) + ", " + id.platform + ", " + time_now();
}

void add_identity(Document& page) {
  const Identity& id = identity();
  page.heading("Identity");
  page.table({"", ""}, {{"Program", "norvane " + id.version + ", commit " + id.commit},
                        {"Calculations (SHA-256 of tables and equations)", id.calculations},
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
