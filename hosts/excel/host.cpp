#include "hosts/excel/host.h"

#include <atomic>

#include "hosts/excel/platform.h"
#include "hosts/excel/sinks.h"

namespace norvane::excel {
namespace {

// Set once by the host's main thread, read by its calculation threads.
std::atomic<bool> bound{false};
std::atomic<XlEntry4> entry4{nullptr};
std::atomic<XlEntry12> entry12{nullptr};

Sinks current_sinks{platform::show_message, platform::debug_output, platform::show_about};

}  // namespace

int bind_host() noexcept {
  if (bound.load(std::memory_order_acquire)) return BIND_ALREADY;
  platform::HostEntries entries;
  if (!platform::find_host_entries(entries)) return BIND_NOT_FOUND;
  entry4.store(entries.entry4, std::memory_order_release);
  entry12.store(entries.entry12, std::memory_order_release);
  bound.store(true, std::memory_order_release);
  return BIND_OK;
}

bool host_speaks_12() noexcept { return entry12.load(std::memory_order_acquire) != nullptr; }

int call_host(int function, XlRecord12* result, int count, XlRecord12** args) noexcept {
  const XlEntry12 entry = entry12.load(std::memory_order_acquire);
  return entry != nullptr ? entry(function, count, args, result) : XL_RETURN_FAILED;
}

int call_host(int function, XlRecord4* result, int count, XlRecord4** args) noexcept {
  const XlEntry4 entry = entry4.load(std::memory_order_acquire);
  return entry != nullptr ? entry(function, result, count, args) : XL_RETURN_FAILED;
}

const Sinks& sinks() noexcept { return current_sinks; }

void set_sinks(const Sinks& sinks) noexcept { current_sinks = sinks; }

}  // namespace norvane::excel
