#include "core/external_library.h"

#ifdef _WIN32

#include <windows.h>

#include <cstddef>
#include <cwchar>

namespace norvane {
namespace {

constexpr DWORD longest_path = 32768;  // of the system, in code units

// The folder of the module that holds this code, with the separator behind it; its length, 0 on failure.
std::size_t module_folder(wchar_t (&path)[longest_path]) noexcept {
  HMODULE module = nullptr;
  constexpr DWORD flags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
  static const char here = 0;
  if (!GetModuleHandleExW(flags, reinterpret_cast<LPCWSTR>(&here), &module)) return 0;
  std::size_t length = GetModuleFileNameW(module, path, longest_path);
  if (length >= longest_path) return 0;
  while (length > 0 && path[length - 1] != L'\\' && path[length - 1] != L'/') --length;
  return length;
}

}  // namespace

ExternalEntry find_external_entry(const wchar_t* file, const char* entry) noexcept {
  wchar_t path[longest_path];
  const std::size_t folder = module_folder(path), name = std::wcslen(file);
  if (folder == 0 || folder + name >= longest_path) return ExternalEntry::no_library;
  std::wmemcpy(path + folder, file, name + 1);

  DWORD mode = 0;
  const BOOL changed = SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &mode);
  // What the library needs itself comes from its own folder or the system's, whatever the search path holds.
  const HMODULE library =
      LoadLibraryExW(path, nullptr, LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32);
  if (changed) SetThreadErrorMode(mode, nullptr);
  if (library == nullptr) return ExternalEntry::no_library;
  return GetProcAddress(library, entry) != nullptr ? ExternalEntry::found : ExternalEntry::no_entry;
}

}  // namespace norvane

#else

namespace norvane {

ExternalEntry find_external_entry(const wchar_t*, const char*) noexcept { return ExternalEntry::no_library; }

}  // namespace norvane

#endif
