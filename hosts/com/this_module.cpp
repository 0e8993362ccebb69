#include "hosts/com/this_module.h"

#include <atomic>

namespace norvane::com {
namespace {

std::atomic<long> locks{0};

}  // namespace

void module_lock() noexcept { locks.fetch_add(1, std::memory_order_relaxed); }

void module_unlock() noexcept { locks.fetch_sub(1, std::memory_order_release); }

bool module_locked() noexcept { return locks.load(std::memory_order_acquire) != 0; }

HMODULE this_module() noexcept {
  HMODULE module = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     reinterpret_cast<const wchar_t*>(&this_module), &module);
  return module;
}

std::wstring module_path() {
  // Without its module the system would tell the path of the host's program.
  const HMODULE module = this_module();
  if (module == nullptr) return {};
  std::wstring path(MAX_PATH, L'\0');
  while (path.size() < 65536) {
    const DWORD length = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
    if (length < path.size()) {
      path.resize(length);
      return path;
    }
    path.resize(path.size() * 2);
  }
  return {};
}

HRESULT load_type_library(ITypeLib** library) noexcept {
  *library = nullptr;
  try {
    const std::wstring path = module_path();
    // An empty path would stand for whatever the system finds under no name.
    return path.empty() ? TYPE_E_CANTLOADLIBRARY : LoadTypeLibEx(path.c_str(), REGKIND_NONE, library);
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

}  // namespace norvane::com
