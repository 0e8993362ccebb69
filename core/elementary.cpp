// exp, log and pow after the table method of Tang (ACM TOMS 15, 1989, and 16, 1990): reduce the argument to a
// small interval, take the value in its middle from a table, add a short polynomial for the rest.
//
//   exp   x = n ln2/128 + r, |r| <= ln2/256      e^x = 2^(n/128) (1 + p(r))
//   log   x = 2^k z, r = z c - 1, |r| <= 1/128   log x = k ln2 - log c + log(1 + r)
//   pow   e^(y log x), the logarithm and the product carried with about 68 bits
//
// Sums marked exact need no more than 53 bits: the constants' leading parts end at 2^-42
// and the leading part of r at 2^-33 for that purpose.

#include "core/elementary.h"

#include <bit>
#include <cstdint>
#include <limits>

#include "core/elementary_table.h"
#include "core/lanes.h"

namespace norvane::elementary {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double not_a_number = std::numeric_limits<double>::quiet_NaN();

// Beyond these the exponential is infinite or rounds to zero.
constexpr double overflow_from = 709.79;
constexpr double underflow_from = -745.14;

std::uint64_t bits_of(double x) noexcept { return std::bit_cast<std::uint64_t>(x); }
double of_bits(std::uint64_t bits) noexcept { return std::bit_cast<double>(bits); }
double magnitude(double x) noexcept { return of_bits(bits_of(x) & 0x7fffffffffffffff); }
double power_of_two(std::int64_t k) noexcept { return of_bits(static_cast<std::uint64_t>(k + 1023) << 52); }

// e^(x + low) = 2^k value (1 + rest).
struct Exponential {
  double value;
  double rest;
  std::int64_t k;
};

inline Exponential exponential(double x, double low) noexcept {
  const double shifted = x * inverse_step + rounder;
  const double n = shifted - rounder;
  // The difference of bits is n itself: the sum lies in [2^52, 2^53), where one unit in the last place is 1.
  const auto whole = static_cast<std::int64_t>(bits_of(shifted) - rounder_bits);
  const PowerOfTwo& middle = powers_of_two[whole & 127];
  const double r = (x - n * step_high) - n * step_low + low;  // first difference exact
  const double r2 = r * r;
  const double p = r2 * (0.5 + r * (1.0 / 6.0)) + r2 * r2 * (1.0 / 24.0 + r * (1.0 / 120.0));
  return {middle.value, middle.tail + r + p, whole >> 7};
}

// |x| below `plain`.
inline double exp_plain(double x, double low) noexcept {
  const Exponential e = exponential(x, low);
  const double scaled = of_bits(bits_of(e.value) + (static_cast<std::uint64_t>(e.k) << 52));
  return scaled + scaled * e.rest;
}

// |x| not below `plain`, or not a number; `low` is far below x.
[[gnu::noinline, gnu::cold]] double exp_beyond(double x, double low) noexcept {
  if (x != x) return x;
  if (x > overflow_from) return infinity;
  if (x < underflow_from) return 0.0;
  // Near either end in two steps, of which only the last can overflow or lose bits.
  const Exponential e = exponential(x, low);
  const std::int64_t half = e.k / 2;
  return (e.value + e.value * e.rest) * power_of_two(half) * power_of_two(e.k - half);
}

struct DoubleDouble {
  double high;
  double low;
};

// log of a positive, finite, normal number given by its bits; k is added to its exponent.
inline DoubleDouble logarithm(std::uint64_t bits, std::int64_t k) noexcept {
  const std::uint64_t offset = bits - first_interval;
  const LogInterval& interval = log_intervals[(offset >> 45) & 127];
  k += static_cast<std::int64_t>(offset) >> 52;
  const std::uint64_t z_bits = bits - (offset & 0xfff0000000000000);
  const double z = of_bits(z_bits);
  // Rounded, not cut, to 24 bits: cut, a z just below 1 would lose its digits to cancellation.
  const double z_high = of_bits((z_bits + 0x10000000) & 0xffffffffe0000000);
  const double r_high = z_high * interval.inverse - 1.0;  // exact
  const double r_low = (z - z_high) * interval.inverse;   // exact
  const double r = r_high + r_low;
  const auto exponent = static_cast<double>(k);

  // high parts: k ln2 - log c + r_high - r_high^2/2 + r_low
  const double a = exponent * ln2_high + interval.log_high + r_high;  // exact
  const double q = 0.5 * r_high * r_high;                             // exact
  const double b = a - q;
  const double b_rest = (a - b) - q;
  const double s = b + r_low;
  const double s_low = s - b;
  const double s_rest = (b - (s - s_low)) + (r_low - s_low);

  // log(1+r) beyond that: r^3/3 - r^4/4 + ... and the products of r_low
  const double r2 = r * r;
  const double series = (1.0 / 3.0 - r * 0.25) +
                        r2 * ((0.2 - r * (1.0 / 6.0)) + r2 * ((1.0 / 7.0 - r * 0.125) + r2 * (1.0 / 9.0 - r * 0.1)));
  const double rest = r * r2 * series - r_low * (r_high + 0.5 * r_low);
  const double low = (b_rest + s_rest) + (exponent * ln2_low + interval.log_low) + rest;
  const double high = s + low;
  return {high, (s - high) + low};
}

constexpr std::uint64_t infinity_bits = 0x7ff0000000000000;
constexpr std::uint64_t smallest_normal_bits = 0x0010000000000000;

inline DoubleDouble logarithm_of_positive(double x) noexcept {
  if (bits_of(x) < smallest_normal_bits) return logarithm(bits_of(x * 0x1p54), -54);
  return logarithm(bits_of(x), 0);
}

enum class Parity { fraction, even, odd };

// Of a finite or infinite number; from 2^53 on all are even.
Parity parity(double y) noexcept {
  y = magnitude(y);
  if (y >= 0x1p53) return Parity::even;
  const auto whole = static_cast<std::int64_t>(y);
  if (static_cast<double>(whole) != y) return Parity::fraction;
  return (whole & 1) != 0 ? Parity::odd : Parity::even;
}

// x zero, infinite, negative or not a number, or y infinite or not a number; neither pow(x, 0) nor pow(1, y).
double pow_special(double x, double y) noexcept {
  if (x != x || y != y) return x + y;
  const double size = magnitude(x);
  if (magnitude(y) == infinity) {
    if (size == 1.0) return 1.0;
    return (size > 1.0) == (y > 0.0) ? infinity : 0.0;
  }
  const Parity kind = parity(y);
  const bool negative = (bits_of(x) >> 63) != 0 && kind == Parity::odd;
  if (size == 0.0 || size == infinity) {
    const double result = (size == 0.0) == (y > 0.0) ? 0.0 : infinity;
    return negative ? -result : result;
  }
  if (kind == Parity::fraction) return not_a_number;
  const double result = pow(size, y);
  return negative ? -result : result;
}

}  // namespace

double exp(double x) noexcept { return magnitude(x) < plain ? exp_plain(x, 0.0) : exp_beyond(x, 0.0); }

std::array<double, 4> exp4(const std::array<double, 4>& x) noexcept {
  if (!(magnitude(x[0]) < plain && magnitude(x[1]) < plain && magnitude(x[2]) < plain && magnitude(x[3]) < plain))
    return {exp(x[0]), exp(x[1]), exp(x[2]), exp(x[3])};
  // Two by two, in the vector registers that every processor of the platform has.
  using Two = lanes::Vector<2>::Value;
  const Two low = lanes::exp_plain(Two{x[0], x[1]});
  const Two high = lanes::exp_plain(Two{x[2], x[3]});
  return {low[0], low[1], high[0], high[1]};
}

double log(double x) noexcept {
  // One comparison finds what is not a positive normal number: zeros, denormals, negatives, infinities, NaN.
  if (bits_of(x) - smallest_normal_bits >= infinity_bits - smallest_normal_bits) {
    if (x == 0.0) return -infinity;
    if (x != x || x == infinity) return x;
    if (x < 0.0) return not_a_number;
    return logarithm(bits_of(x * 0x1p54), -54).high;
  }
  return logarithm(bits_of(x), 0).high;
}

double pow(double x, double y) noexcept {
  if (y == 0.0 || x == 1.0) return 1.0;
  if (!(x > 0.0 && x < infinity) || !(magnitude(y) < infinity)) return pow_special(x, y);
  // |log x| of a number that is not 1 lies between 2^-53 and 745, so that larger and smaller y are settled.
  const double size = magnitude(y);
  if (size > 0x1p63) return (x > 1.0) == (y > 0.0) ? infinity : 0.0;
  if (size < 0x1p-64) return 1.0;
  const DoubleDouble l = logarithm_of_positive(x);
  // y log x: the leading halves of 26 bits give an exact product.
  const double y_high = of_bits(bits_of(y) & 0xfffffffff8000000);
  const double l_high = of_bits(bits_of(l.high) & 0xfffffffff8000000);
  const double product = y_high * l_high;
  const double rest = (y - y_high) * l_high + y * ((l.high - l_high) + l.low);
  if (magnitude(product) < plain) return exp_plain(product, rest);
  if (!(magnitude(product) < 1000.0)) return product > 0.0 ? infinity : 0.0;
  return exp_beyond(product, rest);
}

}  // namespace norvane::elementary
