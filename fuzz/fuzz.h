// What the fuzz targets share: an input's bytes as choices, and the reaction to an answer that should not be.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>

namespace norvane::fuzz {

// The bytes of an input from its front; zeros behind its end.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : data_(data), left_(size) {}
  bool more() const { return left_ != 0; }
  template <class T>
  T take() {
    T value{};
    const std::string_view bytes = take_bytes(sizeof value);
    std::memcpy(&value, bytes.data(), bytes.size());
    return value;
  }
  // From 0 to n - 1, of at most 65536.
  std::size_t below(std::size_t n) { return (n <= 256 ? take<std::uint8_t>() : take<std::uint16_t>()) % n; }
  bool once_in(std::size_t n) { return below(n) == n - 1; }
  std::string_view text() { return take_bytes(take<std::uint8_t>()); }
  std::string_view rest() { return take_bytes(left_); }
  // Any bits, whole numbers, numbers with two places, and those that break careless code.
  double number() {
    constexpr double infinity = std::numeric_limits<double>::infinity(),
                     nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double odd[] = {0.0,         -0.0,   -1.0,  1e-310,       5e-324,        1e-12,
                              1e12,        -1e308, 1e308, 4294967296.0, -2147483649.0, 2147483648.0,
                              0.999999999, nan,    -nan,  infinity,     -infinity};
    switch (below(4)) {
      case 0: return take<double>();
      case 1: return take<std::int8_t>();
      case 2: return take<std::int16_t>() / 100.0;
      default: return odd[below(std::size(odd))];
    }
  }

 private:
  std::string_view take_bytes(std::size_t count) {
    const std::string_view bytes(reinterpret_cast<const char*>(data_), count < left_ ? count : left_);
    data_ += bytes.size();
    left_ -= bytes.size();
    return bytes;
  }

  const std::uint8_t* data_;
  std::size_t left_;
};

inline void expect(bool good, std::string_view fault, const std::string& first = {}, const std::string& second = {}) {
  if (good) return;
  std::fprintf(stderr, "%.*s\n%s\n%s\n", static_cast<int>(fault.size()), fault.data(), first.c_str(), second.c_str());
  std::abort();
}

using Target = void(Input&);
Target calls, names, exports, excel, csv, json;

}  // namespace norvane::fuzz
