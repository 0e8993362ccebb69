// Composition: normalising and checking mole amounts, shared by the gas standards.
#pragma once

#include <array>
#include <cstddef>
#include <span>

#include "core/outcome.h"

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

// What a normalisation says of the composition it was given. sum_status: the status of a sum that is off.
template <class Member>
constexpr Outcome judge(Result result, const Member& given, double sum, int sum_status) noexcept {
  switch (result) {
    case ok: return {};
    case sum_off: return blame(given, sum_status, u"sums to %, neither to 1 nor to 100 within 0.0001 of it", sum);
    case negative: return blame(given, calculation_error, u"holds a negative amount");
    default: return blame(given, calculation_error, u"sums to %, which is nothing to take fractions of", sum);
  }
}

// The sum as it is given, for messages.
double sum_of(std::span<const double> amounts) noexcept;

// Where neo-pentane goes, which equations of 21 components do not know.
enum NeoPentaneMode : int { add_to_i_pentane = 1, add_to_n_pentane = 2, neglect = 3 };

// The 22 amounts of a composition as an equation of 21 components takes them: neo-pentane folded or dropped, the rest
// normalised to a sum of 1. calculation_error for a negative amount and for nothing at all; sum_status when the sum is
// neither 1 nor 100, or with `neglect` when the 22 amounts do not sum to 1.
Outcome prepare(const std::array<double, 22>& given, NeoPentaneMode mode, int sum_status,
                std::array<double, 21>& x) noexcept;

// The same tests without normalising; the sum itself may be of any size.
Result check_sum(std::span<const double> amounts) noexcept;

}  // namespace norvane::composition
