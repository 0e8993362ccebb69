// Composition: normalising and checking mole amounts, shared by the gas standards.
#pragma once

#include <span>

namespace norvane::composition {

enum Result : int {
  ok = 0,
  sum_off = -1,   // the sum lies outside 0.9999 to 1.0001 and 99.99 to 100.01
  negative = -2,  // a value is negative
  invalid = -8    // no values, or their sum is below 1e-6
};

// Divides every amount by the sum, in place, unless an amount is negative or the sum is below 1e-6.
// With sum_off the amounts are normalised all the same. A NaN counts as a negative value, an infinite sum as invalid.
Result normalise(std::span<double> amounts) noexcept;

// The same tests without normalising; the sum itself may be of any size.
Result check_sum(std::span<const double> amounts) noexcept;

}  // namespace norvane::composition
