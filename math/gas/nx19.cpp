// NX-19 (1962).
//
//   p_g  gauge pressure [psi], absolute less 14.7      t    temperature [degF]; t + 460 is absolute
//   G    specific gravity                              c, n, m  mole fractions of CO2, N2 and CH4
//   Fp, Ft  adjustment of pressure and temperature     Fpv  supercompressibility factor
//   Pi = (p_g Fp + 14.7)/1000                          tau = (t + 460) Ft/500
//
//   m   = 0.0330378/tau^2 - 0.0221323/tau^3 + 0.0161353/tau^5
//   n   = (0.265827/tau^2 + 0.0457697/tau^4 - 0.133185/tau)/m
//   B   = (3 - m n^2)/(9 m Pi^2)
//   b   = (9 n - 2 m n^3)/(54 m Pi^3) - E/(2 m Pi^2)
//   D   = (b + sqrt(b^2 + B^3))^(1/3)
//   Fpv = sqrt(B/D - D + n/(3 Pi))/(1 + 0.00132/tau^3.25)
//
// X = B/D - D + n/(3 Pi) is the root of X (1 - m n Pi X + m Pi^2 X^2) = E; solved as such it keeps its digits at low
// pressure, where the closed form is a small difference of large numbers.
#include "math/gas/nx19.h"

#include <cmath>

#include "core/elementary.h"
#include "math/common/virial_root.h"

namespace norvane::NX19 {
namespace {

double square(double x) noexcept { return x * x; }

bool within(double x, double low, double high) noexcept { return x >= low && x <= high; }

bool is_fraction(double x) noexcept { return within(x, 0.0, 1.0); }

// Correction E of the region.
double correction(const Reduced& reduced, int region) noexcept {
  const double Pi = reduced.pressure;
  const double Pi_2_3 = 0.00075 * elementary::pow(Pi, 2.3);
  const double distance = std::fabs(reduced.temperature - 1.09);
  const double decay = elementary::exp(-20.0 * distance);
  if (region == 1) {
    const double root = std::sqrt(distance);
    return 1.0 - Pi_2_3 * decay - 0.0011 * root * square(Pi * (2.17 + 1.4 * root - Pi));
  }
  const double c = distance, c2 = c * c;
  const double cold = 1.0 - Pi_2_3 * (2.0 - decay);
  if (region == 2) return cold - 1.317 * c2 * c2 * Pi * (1.69 - Pi * Pi);
  constexpr double two_1_25 = 2.378414230005442;  // 2^1.25
  const double power =
      region == 3 ? two_1_25 : elementary::pow(2.0, 1.25 + 80.0 * square(0.88 - reduced.temperature));
  const double polynomial = c * (-0.03249 + c * (2.0167 + c * (-18.028 + c * (42.844 + 200.0 * c2))));
  return cold + 0.455 * polynomial * (Pi - 1.3) * (1.69 * power - Pi * Pi);
}

struct Adjustment {
  double Fp, Ft;
};
Adjustment adjustment(const Arguments& in) noexcept {
  const double G = in.specific_gravity, c = in.carbon_dioxide, n = in.nitrogen, m = in.methane;
  if (in.method == Method::methane)
    return {671.4 / (891.11 - 172.56 * G + 443.04 * c - 232.32 * n - 122.52 * m),
            359.46 / (327.77 + 214.82 * G - 144.12 * c - 319.52 * n - 102.78 * m)};
  const double Mc = 100.0 * c, Mn = 100.0 * n;  // this method counts in percent
  return {156.47 / (160.8 - 7.22 * G + (Mc - 0.392 * Mn)), 226.29 / (99.15 + 211.9 * G - (Mc + 1.681 * Mn))};
}

Outcome check_arguments(const Arguments& in) noexcept {
  constexpr auto not_fraction = u"must be from % to %";
  constexpr double sum_tolerance = 1e-4;  // as of a composition that is to sum to 1
  if (in.method != Method::specific_gravity && in.method != Method::methane)
    return blame(in.method, argument_error, u"is not a method (% or %)", 1, 2);
  if (!(in.pressure >= 0.0) || !std::isfinite(in.pressure))
    return blame(in.pressure, argument_error, u"must not be below %", 0.0);
  if (!(in.temperature > -459.67) || !std::isfinite(in.temperature))
    return blame(in.temperature, argument_error, u"must be above %", -459.67);
  if (!(in.specific_gravity > 0.0) || !std::isfinite(in.specific_gravity))
    return blame(in.specific_gravity, argument_error, u"must be above %", 0.0);
  if (!is_fraction(in.carbon_dioxide)) return blame(in.carbon_dioxide, argument_error, not_fraction, 0.0, 1.0);
  if (!is_fraction(in.nitrogen)) return blame(in.nitrogen, argument_error, not_fraction, 0.0, 1.0);
  double sum = in.carbon_dioxide + in.nitrogen;
  if (in.method == Method::methane) {
    if (!is_fraction(in.methane)) return blame(in.methane, argument_error, not_fraction, 0.0, 1.0);
    sum += in.methane;
  }
  if (sum > 1.0 + sum_tolerance) return failure(argument_error, u"the fractions sum to %, above %", sum, 1.0);
  return {};
}

// The specific gravity method is for gas of at most 0.75 with at most 15 % of each diluent; both for -40 to 240 degF.
bool out_of_range(const Arguments& in) noexcept {
  const bool lean = in.specific_gravity <= 0.75 && in.carbon_dioxide <= 0.15 && in.nitrogen <= 0.15;
  return !within(in.temperature, -40.0, 240.0) || (in.method == Method::specific_gravity && !lean);
}

}  // namespace

int region(const Reduced& reduced) noexcept {
  const double Pi = reduced.pressure, tau = reduced.temperature;
  if (!within(Pi, 0.0, 2.0) || !within(tau, 0.84, 1.4)) return 0;
  if (tau >= 1.09) return 1;
  if (Pi < 1.3) return 2;
  return tau >= 0.88 ? 3 : 4;
}

bool compressibility(const Reduced& reduced, int region, double n4, double& z) noexcept {
  const double Pi = reduced.pressure, tau = reduced.temperature;
  const double tau2 = tau * tau, tau3 = tau2 * tau;
  const double m = (0.0330378 * tau3 - 0.0221323 * tau2 + 0.0161353) / (tau2 * tau3);
  const double mn = (0.265827 * tau2 - 0.133185 * tau3 + n4) / (tau2 * tau2);
  double X;
  if (!virial_root(correction(reduced, region), -mn * Pi, m * Pi * Pi, X) || !(X > 0.0)) return false;
  z = square(1.0 + 0.00132 / (tau3 * std::sqrt(std::sqrt(tau)))) / X;
  return std::isfinite(z);
}

Outcome calculate(const Arguments& in, Result& out) noexcept {
  if (const Outcome bad = check_arguments(in); !bad.good()) return bad;
  constexpr double base_pressure = 14.7, absolute = 460.0;  // as the report has them, in psi and degF
  const Adjustment F = adjustment(in);
  const Reduced reduced = {((in.pressure - base_pressure) * F.Fp + base_pressure) / 1000.0,
                           (in.temperature + absolute) * F.Ft / 500.0};
  const int where = region(reduced);
  if (where == 0)
    return failure(calculation_error,
                   u"the reduced pressure % and temperature % lie outside 0 to 2 and 0.84 to 1.4, for which the "
                   u"equations are known",
                   reduced.pressure, reduced.temperature);
  if (!compressibility(reduced, where, n4_as_reported, out.z))
    return failure(calculation_error, u"the equation has no solution at the reduced pressure % and temperature %",
                   reduced.pressure, reduced.temperature);
  out.out_of_range = out_of_range(in);
  return {};
}

}  // namespace norvane::NX19
