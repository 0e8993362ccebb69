#include <dlfcn.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "core/text.h"
#include "hosts/excel/about.h"
#include "hosts/excel/platform.h"

namespace norvane::excel::platform {
namespace {

// Code page 1252 from 0x80 to 0x9F; all else is ISO 8859-1. The five places without a character stand for themselves.
constexpr char16_t high_controls[32] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                        0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                        0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                        0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

unsigned char to_byte(char16_t unit) noexcept {
  if (unit < 0x80 || (unit >= 0xA0 && unit <= 0xFF)) return static_cast<unsigned char>(unit);
  for (unsigned i = 0; i < 32; ++i)
    if (high_controls[i] == unit) return static_cast<unsigned char>(0x80 + i);
  return '?';
}

void write_line(std::u16string_view text) noexcept {
  try {
    std::fprintf(stderr, "%s\n", to_utf8(text).c_str());
  } catch (...) {
    std::fputs("Norvane: out of memory\n", stderr);
  }
}

}  // namespace

bool FindHostEntries(HostEntries& entries) noexcept {
  entries.entry4 = reinterpret_cast<XlEntry4>(dlsym(RTLD_DEFAULT, "Excel4v"));
  entries.entry12 = reinterpret_cast<XlEntry12>(dlsym(RTLD_DEFAULT, "MdCallBack12"));
  return entries.entry4 != nullptr || entries.entry12 != nullptr;
}

std::ptrdiff_t FromCodePage(const unsigned char* text, std::size_t length, char16_t* out, std::size_t room) noexcept {
  if (length > room) return -1;
  for (std::size_t i = 0; i < length; ++i)
    out[i] = text[i] >= 0x80 && text[i] <= 0x9F ? high_controls[text[i] - 0x80] : char16_t{text[i]};
  return static_cast<std::ptrdiff_t>(length);
}

std::ptrdiff_t ToCodePage(const char16_t* text, std::size_t length, unsigned char* out, std::size_t room) noexcept {
  if (length > room) return -1;
  for (std::size_t i = 0; i < length; ++i) out[i] = to_byte(text[i]);
  return static_cast<std::ptrdiff_t>(length);
}

std::uint32_t ThreadId() noexcept {
  // The system's own numbers are no part of the C library's interface; one of ours names a thread as well.
  static std::atomic<std::uint32_t> last{0};
  return ++last;
}

bool DebugAsked() noexcept {
  const char* value = std::getenv("NORVANE_DEBUG");
  return value != nullptr && *value != '\0' && !(value[0] == '0' && value[1] == '\0');
}

void ShowMessage(std::u16string_view title, std::u16string_view text) noexcept {
  write_line(title);
  write_line(text);
}

void DebugOutput(std::u16string_view line) noexcept { write_line(line); }

void ShowAbout() noexcept {
  write_line(u"Norvane (64-bit)");
  write_line(about_version);
  write_line(about_commit);
}

}  // namespace norvane::excel::platform
