#include <dlfcn.h>
#include <langinfo.h>

#include <atomic>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>

#include "core/text.h"
#include "hosts/excel/about.h"
#include "hosts/excel/platform.h"

namespace norvane::excel::platform {
namespace {

// Whether texts of the older dialect are UTF-8. The "C" locale, in which a program runs that asks for none, calls its
// encoding by a name of US-ASCII.
bool is_utf8() noexcept {
  const std::string_view name = nl_langinfo(CODESET);
  return name == "UTF-8" || name == "ANSI_X3.4-1968" || name == "US-ASCII";
}

// One character in the encoding of any other locale; a wide character is a code point.
std::size_t put_in_locale(char32_t character, char (&bytes)[MB_LEN_MAX]) noexcept {
  std::mbstate_t state{};
  const std::size_t count = std::wcrtomb(bytes, static_cast<wchar_t>(character), &state);
  if (count != static_cast<std::size_t>(-1)) return count;
  bytes[0] = '?';
  return 1;
}

char32_t take_in_locale(std::string_view text, std::size_t& position, std::mbstate_t& state) noexcept {
  wchar_t wide = 0;
  const std::size_t count = std::mbrtowc(&wide, text.data() + position, text.size() - position, &state);
  if (count > text.size() - position) {  // malformed, or cut
    state = {};
    ++position;
    return 0xFFFD;
  }
  position += count > 0 ? count : 1;  // 0: a NUL
  return static_cast<char32_t>(wide);
}

void write_line(std::u16string_view text) noexcept {
  try {
    std::fprintf(stderr, "%s\n", to_utf8(text).c_str());
  } catch (...) {
    std::fputs("Norvane: out of memory\n", stderr);
  }
}

}  // namespace

bool find_host_entries(HostEntries& entries) noexcept {
  entries.entry4 = reinterpret_cast<XlEntry4>(dlsym(RTLD_DEFAULT, "Excel4v"));
  entries.entry12 = reinterpret_cast<XlEntry12>(dlsym(RTLD_DEFAULT, "MdCallBack12"));
  return entries.entry4 != nullptr || entries.entry12 != nullptr;
}

bool from_code_page(const unsigned char* text, std::size_t length, char16_t* out, std::size_t& written) noexcept {
  const std::string_view bytes(reinterpret_cast<const char*>(text), length);
  const bool utf8 = is_utf8();
  std::mbstate_t state{};
  char16_t units[2];
  written = 0;
  for (std::size_t i = 0; i < length;) {
    const std::size_t count = put_character(utf8 ? take_character(bytes, i) : take_in_locale(bytes, i, state), units);
    for (std::size_t k = 0; k < count; ++k) out[written++] = units[k];
  }
  return true;
}

std::size_t to_code_page(std::u16string_view text, unsigned char* out, std::size_t room) noexcept {
  const bool utf8 = is_utf8();
  char narrow[4];
  char wide[MB_LEN_MAX];
  std::size_t written = 0;
  for (std::size_t i = 0; i < text.size();) {
    const char32_t character = take_character(text, i);
    const std::size_t count = utf8 ? put_character(character, narrow) : put_in_locale(character, wide);
    if (count > room - written) break;
    std::memcpy(out + written, utf8 ? narrow : wide, count);
    written += count;
  }
  return written;
}

std::uint32_t thread_number() noexcept {
  // The system's own numbers are no part of the C library's interface; one of ours names a thread as well.
  static std::atomic<std::uint32_t> last{0};
  return ++last;
}

bool debug_asked() noexcept {
  const char* value = std::getenv("NORVANE_DEBUG");
  return value != nullptr && *value != '\0' && !(value[0] == '0' && value[1] == '\0');
}

void show_message(std::u16string_view title, std::u16string_view text) noexcept {
  write_line(title);
  write_line(text);
}

void debug_output(std::u16string_view line) noexcept { write_line(line); }

void show_about() noexcept {
  try {
    const About text = about();
    write_line(u"Norvane (64-bit)");
    write_line(text.version);
    write_line(text.commit);
    write_line(text.checksum);
  } catch (...) {
    write_line(u"not enough memory");
  }
}

}  // namespace norvane::excel::platform
