// TextBuffer: a text put together in a fixed buffer, for messages, keys and names on the way of a call.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "core/text.h"

namespace norvane {

// Holds up to Size UTF-16 units and the NUL behind them; what does not fit is cut, and the cut is remembered.
template <std::size_t Size>
class TextBuffer {
 public:
  TextBuffer() noexcept { clear(); }
  TextBuffer& operator<<(std::u16string_view text) noexcept {
    const std::size_t room = Size - length_;
    const std::size_t n = text.size() < room ? text.size() : room;
    for (std::size_t i = 0; i < n; ++i) units_[length_ + i] = text[i];
    length_ += n;
    units_[length_] = u'\0';
    cut_ = cut_ || n < text.size();
    return *this;
  }
  TextBuffer& operator<<(const char16_t* text) noexcept { return *this << std::u16string_view(text); }
  // 14 significant digits in the general form.
  TextBuffer& operator<<(double value) noexcept {
    char16_t digits[max_number_text + 1];
    return *this << std::u16string_view{digits, format_number(value, digits)};
  }
  TextBuffer& operator<<(char16_t unit) noexcept { return *this << std::u16string_view(&unit, 1); }
  template <std::integral Number>
  TextBuffer& operator<<(Number value) noexcept {
    if (value < 0) *this << u"-";
    const auto bits = static_cast<std::uint64_t>(value);
    return append(value < 0 ? 0 - bits : bits, 10, 1);
  }
  // As a pointer prints: 16 hexadecimal digits.
  TextBuffer& operator<<(const void* address) noexcept {
    return append(reinterpret_cast<std::uintptr_t>(address), 16, 16);
  }

  std::u16string_view view() const noexcept { return {units_, length_}; }
  const char16_t* c_str() const noexcept { return units_; }
  bool cut() const noexcept { return cut_; }
  void clear() noexcept {
    length_ = 0;
    units_[0] = u'\0';
    cut_ = false;
  }

 private:
  TextBuffer& append(std::uint64_t value, unsigned base, std::size_t least) noexcept {
    constexpr std::size_t longest = 20;
    char16_t digits[longest];
    std::size_t first = longest;
    for (; value != 0 || longest - first < least; value /= base) digits[--first] = u"0123456789ABCDEF"[value % base];
    return *this << std::u16string_view{digits + first, longest - first};
  }

  char16_t units_[Size + 1];
  std::size_t length_;
  bool cut_;
};

}  // namespace norvane
