// Numbers with 33 digits, and functions of two of them with their derivatives: what a referee calculates with.
#pragma once

#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstdlib>

#if LDBL_MANT_DIG < 113
#include <quadmath.h>
#endif

namespace norvane::referee {

#if LDBL_MANT_DIG < 113
using Real = __float128;
inline Real parse(const char* text) { return strtoflt128(text, nullptr); }
inline Real abs(Real x) { return fabsq(x); }
inline Real exp(Real x) { return expq(x); }
inline Real log(Real x) { return logq(x); }
inline Real sqrt(Real x) { return sqrtq(x); }
inline Real pow(Real x, Real y) { return powq(x, y); }
inline Real sinh(Real x) { return sinhq(x); }
inline Real cosh(Real x) { return coshq(x); }
inline Real round(Real x) { return roundq(x); }
#else
using Real = long double;
inline Real parse(const char* text) { return std::strtold(text, nullptr); }
inline Real abs(Real x) { return std::fabs(x); }
inline Real exp(Real x) { return std::exp(x); }
inline Real log(Real x) { return std::log(x); }
inline Real sqrt(Real x) { return std::sqrt(x); }
inline Real pow(Real x, Real y) { return std::pow(x, y); }
inline Real sinh(Real x) { return std::sinh(x); }
inline Real cosh(Real x) { return std::cosh(x); }
inline Real round(Real x) { return std::round(x); }
#endif
inline const Real pi = parse("3.14159265358979323846264338327950288");

// A constant as it is printed: 0.1_r is one tenth, not the double next to it.
template <char... digits>
Real operator""_r() {
  static constexpr char text[] = {digits..., '\0'};
  static const Real value = parse(text);
  return value;
}
// The printed number that a table holds as a double: the shortest that reads as this double.
inline Real printed(double value) {
  char text[32] = {};
  std::to_chars(text, text + sizeof text - 1, value);
  return parse(text);
}

inline Real square(Real x) { return x * x; }

// A function of x and y with its first and second derivatives.
struct Jet {
  Real v = 0, x = 0, y = 0, xx = 0, xy = 0, yy = 0;

  Jet() = default;
  Jet(Real value) : v(value) {}
  static Jet of_x(Real value) {
    Jet jet(value);
    jet.x = 1;
    return jet;
  }
  static Jet of_y(Real value) {
    Jet jet(value);
    jet.y = 1;
    return jet;
  }
};

// f(g) from f, f' and f'' at g.
inline Jet chain(const Jet& g, Real f, Real first, Real second) {
  Jet result(f);
  result.x = first * g.x;
  result.y = first * g.y;
  result.xx = first * g.xx + second * g.x * g.x;
  result.xy = first * g.xy + second * g.x * g.y;
  result.yy = first * g.yy + second * g.y * g.y;
  return result;
}
inline Jet operator+(const Jet& a, const Jet& b) {
  Jet sum(a.v + b.v);
  sum.x = a.x + b.x;
  sum.y = a.y + b.y;
  sum.xx = a.xx + b.xx;
  sum.xy = a.xy + b.xy;
  sum.yy = a.yy + b.yy;
  return sum;
}
inline Jet operator*(const Jet& a, const Jet& b) {
  Jet product(a.v * b.v);
  product.x = a.x * b.v + a.v * b.x;
  product.y = a.y * b.v + a.v * b.y;
  product.xx = a.xx * b.v + 2 * a.x * b.x + a.v * b.xx;
  product.xy = a.xy * b.v + a.x * b.y + a.y * b.x + a.v * b.xy;
  product.yy = a.yy * b.v + 2 * a.y * b.y + a.v * b.yy;
  return product;
}
inline Jet operator-(const Jet& a) { return Jet(-1) * a; }
inline Jet operator-(const Jet& a, const Jet& b) { return a + (-b); }
inline Jet& operator+=(Jet& a, const Jet& b) { return a = a + b; }
inline Jet exp(const Jet& a) {
  const Real e = exp(a.v);
  return chain(a, e, e, e);
}
inline Jet log(const Jet& a) { return chain(a, log(a.v), 1 / a.v, -1 / (a.v * a.v)); }
inline Jet pow(const Jet& a, Real t) {
  if (t == 0) return Jet(1);
  const Real p = pow(a.v, t);
  return chain(a, p, t * p / a.v, t * (t - 1) * p / (a.v * a.v));
}
inline Jet operator/(const Jet& a, const Jet& b) { return a * pow(b, -1); }

}  // namespace norvane::referee
