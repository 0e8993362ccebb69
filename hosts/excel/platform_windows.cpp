#include <windows.h>

#include <iterator>

#include "hosts/excel/about.h"
#include "hosts/excel/platform.h"
#include "hosts/excel/resource.h"

namespace norvane::excel::platform {
namespace {

static_assert(sizeof(wchar_t) == sizeof(char16_t));

const wchar_t* wide(const char16_t* text) noexcept { return reinterpret_cast<const wchar_t*>(text); }

// A terminated copy of a text, cut to the buffer.
template <std::size_t N>
const wchar_t* terminated(std::u16string_view text, wchar_t (&buffer)[N]) noexcept {
  const std::size_t length = text.size() < N - 1 ? text.size() : N - 1;
  for (std::size_t i = 0; i < length; ++i) buffer[i] = static_cast<wchar_t>(text[i]);
  buffer[length] = L'\0';
  return buffer;
}

// The image this code is part of: the process's main module is the host's.
HINSTANCE this_module() noexcept {
  HMODULE module = nullptr;
  static const char here = 0;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     reinterpret_cast<const wchar_t*>(&here), &module);
  return module;
}

INT_PTR CALLBACK AboutDialog(HWND dialog, UINT message, WPARAM parameter, LPARAM) {
  switch (message) {
    case WM_INITDIALOG:
      SetDlgItemTextW(dialog, NORVANE_ABOUT_VERSION, wide(about_version));
      SetDlgItemTextW(dialog, NORVANE_ABOUT_COMMIT, wide(about_commit));
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

}  // namespace

bool FindHostEntries(HostEntries& entries) noexcept {
  // Kept for the life of the process, as the binding is.
  const HMODULE library = LoadLibraryW(L"XLCall32.DLL");
  if (library == nullptr) return false;
  entries.entry4 = entry_of<XlEntry4>(library, "Excel4v");
  entries.entry12 = entry_of<XlEntry12>(GetModuleHandleW(nullptr), "MdCallBack12");
  return true;
}

std::ptrdiff_t FromCodePage(const unsigned char* text, std::size_t length, char16_t* out, std::size_t room) noexcept {
  if (length == 0) return 0;
  const int written = MultiByteToWideChar(CP_ACP, 0, reinterpret_cast<const char*>(text), static_cast<int>(length),
                                          reinterpret_cast<wchar_t*>(out), static_cast<int>(room));
  return written > 0 ? written : -1;
}

std::ptrdiff_t ToCodePage(const char16_t* text, std::size_t length, unsigned char* out, std::size_t room) noexcept {
  if (length == 0) return 0;
  const int written = WideCharToMultiByte(CP_ACP, 0, wide(text), static_cast<int>(length),
                                          reinterpret_cast<char*>(out), static_cast<int>(room), nullptr, nullptr);
  return written > 0 ? written : -1;
}

std::uint32_t ThreadId() noexcept { return GetCurrentThreadId(); }

bool DebugAsked() noexcept {
  wchar_t value[8];
  const DWORD length = GetEnvironmentVariableW(L"NORVANE_DEBUG", value, std::size(value));
  return length > 1 || (length == 1 && value[0] != L'0');
}

void ShowMessage(std::u16string_view title, std::u16string_view text) noexcept {
  wchar_t title_text[128];
  wchar_t message[1024];
  MessageBoxW(GetActiveWindow(), terminated(text, message), terminated(title, title_text), MB_OK | MB_ICONERROR);
}

void DebugOutput(std::u16string_view line) noexcept {
  wchar_t buffer[1024];
  OutputDebugStringW(terminated(line, buffer));
  OutputDebugStringW(L"\n");
}

void ShowAbout() noexcept {
  DialogBoxParamW(this_module(), MAKEINTRESOURCEW(NORVANE_DIALOG_ABOUT), GetActiveWindow(), AboutDialog, 0);
}

}  // namespace norvane::excel::platform
