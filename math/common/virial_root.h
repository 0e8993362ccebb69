// The root of x (1 + b x + c x^2) = a that belongs to the ideal gas.
//
// With x the density, a = p/(R T) and b, c the second and third virial coefficient this is the truncated virial
// equation of state; the cubic of NX-19 has the same form. The standards give closed forms or loops of their own for
// it, which lose digits at low pressure or stop early; all mean this root.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>

namespace norvane {

// Follows the root from x = a = 0 upwards, as far as a rises with x. False when the root ends before a is reached
// (the vapour is not stable there), when a is negative, and for numbers that are not finite. Relative error below
// 4 units in the last place, more close to the end of the branch.
inline bool virial_root(double a, double b, double c, double& x) noexcept {
  if (!(a >= 0.0) || !std::isfinite(a) || !std::isfinite(b) || !std::isfinite(c)) return false;
  const auto rise = [b, c](double at) { return at * (1.0 + at * (b + c * at)); };
  // The end of the branch: the smallest positive root of 1 + 2 b x + 3 c x^2, if there is one. Where there is none
  // and b < 0, 1 + b x + c x^2 is nowhere below 1/4.
  const double q = b * b - 3.0 * c;
  const double end = q >= 0.0 ? std::sqrt(q) - b : 0.0;
  double low = 0.0, high = b < 0.0 ? 4.0 * a : a;
  if (end > 0.0) {
    high = 1.0 / end;
    if (!(rise(high) >= a)) return false;
  }
  // Newton's method, kept between the bounds; Newton alone takes 3 or 4 steps within the ranges of the standards.
  constexpr double tolerance = 4.0 * std::numeric_limits<double>::epsilon();
  constexpr int max_steps = 200;
  // From the inverted series a (1 - b a + (2 b^2 - c) a^2 ...), where that lies between.
  x = a * (1.0 - a * (b - a * (2.0 * b * b - c)));
  if (!(x > low && x < high)) x = std::min(a, high);
  for (int step = 0; step < max_steps; ++step) {
    const double excess = rise(x) - a;
    (excess > 0.0 ? high : low) = x;
    double next = x - excess / (1.0 + x * (2.0 * b + 3.0 * c * x));
    if (!(next >= low && next <= high)) next = 0.5 * (low + high);
    // Where the slope is small, as close to the end of the branch, the rounding of the excess moves x by more.
    const bool settled = std::fabs(next - x) <= tolerance * x || std::fabs(excess) <= tolerance * std::max(a, x);
    x = next;
    if (settled) return std::isfinite(x);
  }
  return false;
}

}  // namespace norvane
