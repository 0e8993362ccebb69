#include "hosts/cli/commands.h"
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

}  // namespace

std::string version_text() {
  std::string text = "norvane " NORVANE_VERSION "\ncommit " NORVANE_COMMIT "\n";
  return text.append("compiler ").append(compiler).append("\nplatform ").append(platform).append("\n");
}

}  // namespace norvane::cli
