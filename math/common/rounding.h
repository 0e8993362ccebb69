// Decimal rounding as measurement standards mean it.
#pragma once

#include <cmath>

namespace norvane {

// Powers of ten that a double holds exactly: 10^0 to 10^22.
inline constexpr double powers_of_ten[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                           1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// Rounds to a number of decimal places, halves away from zero: 0.125 to 2 places is 0.13, -2.5 to 0 is -3. Places
// outside 0 to 22, and values whose scaled form is no longer finite or already whole, come back unchanged.
inline double round_half_away(double value, int decimals) noexcept {
  if (decimals < 0 || decimals > 22) return value;
  const double scaled = value * powers_of_ten[decimals];
  if (!(std::fabs(scaled) < 0x1p52)) return value;
  return std::round(scaled) / powers_of_ten[decimals];
}

// Drops the fraction: 2.9 gives 2, -2.9 gives -2.
inline double truncate_toward_zero(double value) noexcept { return std::trunc(value); }

}  // namespace norvane
