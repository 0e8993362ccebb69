// Dual: a number that carries its derivative, so that a formula written once also gives its slope.
//
//   const Dual rho = Dual::variable(850.0);
//   const Dual observed = rho * ctl(alpha(k, rho), dt);   // observed.value, and observed.slope = d observed / d rho
//
// The value goes through the operations that a plain double would go through and has the same bits.
#pragma once

#include <array>

#include "core/elementary.h"

namespace norvane {

struct Dual {
  double value = 0.0;
  double slope = 0.0;

  static constexpr Dual variable(double x) { return {x, 1.0}; }
};

constexpr Dual operator-(Dual a) { return {-a.value, -a.slope}; }
constexpr Dual operator+(Dual a, Dual b) { return {a.value + b.value, a.slope + b.slope}; }
constexpr Dual operator-(Dual a, Dual b) { return {a.value - b.value, a.slope - b.slope}; }
constexpr Dual operator*(Dual a, Dual b) { return {a.value * b.value, a.slope * b.value + a.value * b.slope}; }
constexpr Dual operator/(Dual a, Dual b) {
  const double quotient = a.value / b.value;
  return {quotient, (a.slope - quotient * b.slope) / b.value};
}
constexpr Dual operator+(Dual a, double b) { return {a.value + b, a.slope}; }
constexpr Dual operator+(double a, Dual b) { return {a + b.value, b.slope}; }
constexpr Dual operator-(Dual a, double b) { return {a.value - b, a.slope}; }
constexpr Dual operator-(double a, Dual b) { return {a - b.value, -b.slope}; }
constexpr Dual operator*(Dual a, double b) { return {a.value * b, a.slope * b}; }
constexpr Dual operator*(double a, Dual b) { return {a * b.value, a * b.slope}; }
constexpr Dual operator/(Dual a, double b) { return {a.value / b, a.slope / b}; }
constexpr Dual operator/(double a, Dual b) {
  const double quotient = a / b.value;
  return {quotient, -quotient * b.slope / b.value};
}

inline Dual exponential(Dual a) noexcept {
  const double value = elementary::exp(a.value);
  return {value, value * a.slope};
}
inline double exponential(double a) noexcept { return elementary::exp(a); }
inline Dual logarithm(Dual a) noexcept { return {elementary::log(a.value), a.slope / a.value}; }
inline double logarithm(double a) noexcept { return elementary::log(a); }

// Four at once.
inline std::array<double, 4> exponentials(const std::array<double, 4>& x) noexcept { return elementary::exp4(x); }
inline std::array<Dual, 4> exponentials(const std::array<Dual, 4>& x) noexcept {
  const std::array<double, 4> e = elementary::exp4({x[0].value, x[1].value, x[2].value, x[3].value});
  return {Dual{e[0], e[0] * x[0].slope}, Dual{e[1], e[1] * x[1].slope}, Dual{e[2], e[2] * x[2].slope},
          Dual{e[3], e[3] * x[3].slope}};
}

constexpr double value_of(Dual a) { return a.value; }
constexpr double value_of(double a) { return a; }

}  // namespace norvane
