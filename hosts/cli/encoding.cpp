#include "hosts/cli/encoding.h"

#include <array>
#include <cstdint>
#include <cstring>

#include "core/text.h"

namespace norvane::cli {
namespace {

// 0x80 to 0x9F of Windows-1252; 0 where nothing is assigned.
constexpr std::array<char16_t, 32> windows_gap = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                  0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                                  0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                  0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

}  // namespace

bool is_utf8(std::string_view text) {
  const auto* p = reinterpret_cast<const unsigned char*>(text.data());
  const auto* const end = p + text.size();
  while (p < end) {
    // Eight characters of plain text at a time.
    std::uint64_t word = 0;
    if (end - p >= 8 && (std::memcpy(&word, p, 8), (word & 0x8080808080808080u) == 0)) {
      p += 8;
      continue;
    }
    const unsigned char c = *p++;
    if (c < 0x80) continue;
    const int more = c >= 0xC2 && c < 0xE0 ? 1 : c >= 0xE0 && c < 0xF0 ? 2 : c >= 0xF0 && c < 0xF5 ? 3 : 0;
    if (more == 0 || end - p < more) return false;
    // Overlong forms, surrogates and what lies beyond Unicode show in the second byte.
    const unsigned char second = *p;
    if ((c == 0xE0 && second < 0xA0) || (c == 0xED && second > 0x9F) || (c == 0xF0 && second < 0x90) ||
        (c == 0xF4 && second > 0x8F))
      return false;
    for (int i = 0; i < more; ++i)
      if ((*p++ & 0xC0) != 0x80) return false;
  }
  return true;
}

std::string from_windows_1252(std::string_view bytes) {
  std::u16string text;
  for (const char byte : bytes) {
    const auto c = static_cast<unsigned char>(byte);
    const char16_t gap = c >= 0x80 && c < 0xA0 ? windows_gap[c - 0x80u] : char16_t{0};
    text += gap != 0 ? gap : static_cast<char16_t>(c);
  }
  return to_utf8(text);
}

char Utf16Decoder::endian_of(std::string_view bytes) {
  if (bytes.starts_with("\xFF\xFE")) return 'L';
  return bytes.starts_with("\xFE\xFF") ? 'B' : '\0';
}

void Utf16Decoder::decode(std::string_view bytes, std::string& out) {
  rest_ += bytes;
  std::u16string text;
  const std::size_t low = endian_ == 'L' ? 0 : 1;
  std::size_t i = 0;
  for (; i + 1 < rest_.size(); i += 2)
    text += static_cast<char16_t>(static_cast<unsigned char>(rest_[i + low]) |
                                  static_cast<unsigned char>(rest_[i + 1 - low]) << 8);
  // The first half of a pair waits for the second.
  if (!text.empty() && text.back() >= 0xD800 && text.back() < 0xDC00) {
    text.pop_back();
    i -= 2;
  }
  rest_.erase(0, i);
  out += to_utf8(text);
}

std::string as_utf8(std::string bytes) {
  if (const char endian = Utf16Decoder::endian_of(bytes); endian != '\0') {
    std::string text;
    Utf16Decoder(endian).decode(bytes, text);
    return text;
  }
  return is_utf8(bytes) ? bytes : from_windows_1252(bytes);
}

}  // namespace norvane::cli
