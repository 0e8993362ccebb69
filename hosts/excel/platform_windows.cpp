#include <windows.h>

#include <iterator>
#include <string>

#include "core/text_buffer.h"
#include "hosts/excel/about.h"
#include "hosts/excel/platform.h"
#include "hosts/excel/resource.h"

namespace norvane::excel::platform {
namespace {

static_assert(sizeof(wchar_t) == sizeof(char16_t));

const wchar_t* wide(const char16_t* text) noexcept { return reinterpret_cast<const wchar_t*>(text); }

// The image this code is part of: the process's main module is the host's.
HINSTANCE this_module() noexcept {
  HMODULE module = nullptr;
  static const char here = 0;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     reinterpret_cast<const wchar_t*>(&here), &module);
  return module;
}

INT_PTR CALLBACK about_dialog(HWND dialog, UINT message, WPARAM parameter, LPARAM) {
  switch (message) {
    case WM_INITDIALOG:
      try {
        const About text = about();
        SetDlgItemTextW(dialog, NORVANE_ABOUT_VERSION, wide(text.version.c_str()));
        SetDlgItemTextW(dialog, NORVANE_ABOUT_COMMIT, wide(text.commit.c_str()));
        SetDlgItemTextW(dialog, NORVANE_ABOUT_CHECKSUM, wide(text.checksum.c_str()));
      } catch (...) {
        SetDlgItemTextW(dialog, NORVANE_ABOUT_VERSION, L"not enough memory");
      }
      return TRUE;
    case WM_COMMAND:
      if (LOWORD(parameter) != IDOK && LOWORD(parameter) != IDCANCEL) return FALSE;
      EndDialog(dialog, LOWORD(parameter));
      return TRUE;
    default: return FALSE;
  }
}

template <class Entry>
Entry entry_of(HMODULE module, const char* name) noexcept {
  return reinterpret_cast<Entry>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

// The host's library: what the process has loaded, or the one beside its program. The folders that the system searches
// (the current one among them) may hold another's. Kept for the life of the process, as the binding is.
HMODULE host_library() noexcept {
  constexpr wchar_t name[] = L"XLCall32.DLL";
  HMODULE library = nullptr;
  if (GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN, name, &library)) return library;
  try {
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    const std::size_t folder = path.rfind(L'\\');
    if (folder == path.npos) return nullptr;
    path.replace(folder + 1, path.npos, name);
    return LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
  } catch (...) {
    return nullptr;
  }
}

}  // namespace

bool find_host_entries(HostEntries& entries) noexcept {
  const HMODULE library = host_library();
  if (library == nullptr) return false;
  entries.entry4 = entry_of<XlEntry4>(library, "Excel4v");
  entries.entry12 = entry_of<XlEntry12>(GetModuleHandleW(nullptr), "MdCallBack12");
  return true;
}

bool from_code_page(const unsigned char* text, std::size_t length, char16_t* out, std::size_t& written) noexcept {
  const auto size = static_cast<int>(length);
  const int units = length == 0 ? 0
                                : MultiByteToWideChar(CP_ACP, 0, reinterpret_cast<const char*>(text), size,
                                                      reinterpret_cast<wchar_t*>(out), size);
  written = static_cast<std::size_t>(units);
  return units > 0 || length == 0;
}

std::size_t to_code_page(std::u16string_view text, unsigned char* out, std::size_t room) noexcept {
  for (std::size_t length = text.size() < room ? text.size() : room; length > 0; --length) {
    // Not inside a pair of surrogates.
    if (text[length - 1] >= 0xD800 && text[length - 1] <= 0xDBFF && length < text.size()) continue;
    const int bytes = WideCharToMultiByte(CP_ACP, 0, wide(text.data()), static_cast<int>(length),
                                          reinterpret_cast<char*>(out), static_cast<int>(room), nullptr, nullptr);
    if (bytes > 0) return static_cast<std::size_t>(bytes);
  }
  return 0;
}

std::uint32_t thread_number() noexcept { return GetCurrentThreadId(); }

bool debug_asked() noexcept {
  wchar_t value[8];
  const DWORD length = GetEnvironmentVariableW(L"NORVANE_DEBUG", value, std::size(value));
  return length > 1 || (length == 1 && value[0] != L'0');
}

void show_message(std::u16string_view title, std::u16string_view text) noexcept {
  TextBuffer<127> caption;
  TextBuffer<1023> message;
  MessageBoxW(GetActiveWindow(), wide((message << text).c_str()), wide((caption << title).c_str()),
              MB_OK | MB_ICONERROR);
}

void debug_output(std::u16string_view line) noexcept {
  TextBuffer<1023> text;
  OutputDebugStringW(wide((text << line << u"\n").c_str()));
}

void show_about() noexcept {
  DialogBoxParamW(this_module(), MAKEINTRESOURCEW(NORVANE_DIALOG_ABOUT), GetActiveWindow(), about_dialog, 0);
}

}  // namespace norvane::excel::platform
