// Viscosity of ethylene by Holland, Eaton and Hanley.
//
//   T    temperature [K]            rho  density [g/cm3]            eta  viscosity [micropoise]
//
//   eta   = eta0(T) + delta eta(rho, T)
//   eta0  = sum(1..9) GV_i T^((i-4)/3)
//   delta eta = exp(j1 + j4/T) {exp[rho^0.1 (j2 + j3/T^1.5) + theta rho^0.5 (j5 + j6/T + j7/T^2)] - 1}
//   theta = (rho - rho_c)/rho_c
//
// The term linear in density of the general form is zero for ethylene.

#include "math/fluid/nist_ethylene_visc.h"

#include <cmath>

#include "core/elementary.h"
#include "math/fluid/ethylene_nist1045.h"

namespace norvane::NIST_Ethylene_Visc {
namespace {

constexpr double Pa_s = 1e-7;               // a micropoise
constexpr double g_cm3 = 1e-3;              // kg/m3
constexpr double critical_density = 0.221;  // [g/cm3]

constexpr double GV[] = {-3509822.5018, 2500840.6184, -583655.40744, 4554.9146583, 22881.683403,
                         -4731.8682077, 450.22249258, -21.490688088, 0.41649263233};
constexpr double j1 = -4.8544486732, j2 = 13.033585236, j3 = 27808.928908, j4 = -1824.1971308, j5 = 1.5913024509,
                 j6 = -205.13573927, j7 = -39478.454708;

// e^x - 1 without the loss of digits near zero (W. Kahan): what rounding takes from e^x it takes from its logarithm.
double expm1(double x) noexcept {
  const double e = elementary::exp(x);
  if (e == 1.0) return x;
  if (std::fabs(x) > 1.0) return e - 1.0;
  return (e - 1.0) * x / elementary::log(e);
}

}  // namespace

double dilute_viscosity(double T) noexcept {
  const double root = elementary::pow(T, 1.0 / 3.0);
  double sum = 0.0;
  for (std::size_t i = std::size(GV); i-- > 0;) sum = sum * root + GV[i];
  return sum / T * Pa_s;  // the first power is T^-1
}

double viscosity(double T, double rho) noexcept {
  const double r = rho * Ethylene_NIST1045::molar_mass * g_cm3;
  const double theta = (r - critical_density) / critical_density;
  const double exponent =
      elementary::pow(r, 0.1) * (j2 + j3 / (T * std::sqrt(T))) + theta * std::sqrt(r) * (j5 + (j6 + j7 / T) / T);
  return dilute_viscosity(T) + elementary::exp(j1 + j4 / T) * expm1(exponent) * Pa_s;
}

Outcome calculate(const Arguments& in, Result& out) noexcept {
  const double p = in.pressure, T = in.temperature;
  if (!(p > 0.0 && std::isfinite(p))) return blame(in.pressure, argument_error, u"must be a number above %", 0.0);
  if (!(T > 0.0 && std::isfinite(T))) return blame(in.temperature, argument_error, u"must be a number above %", 0.0);
  double rho;
  if (!Ethylene_NIST1045::density(p, T, Ethylene_NIST1045::Phase::automatic, rho))
    return failure(no_convergence, u"the equation of the density has none at this state");
  out = {.viscosity = viscosity(T, rho), .range = Range::normal};
  if (!(out.viscosity > 0.0 && std::isfinite(out.viscosity)))
    return failure(calculation_error, u"the viscosity is not a positive number");
  if (!(T >= lowest_temperature && T <= highest_temperature && p <= highest_pressure)) {
    out.range = Range::outside;
    return remark(u"the state lies outside the range of the correlation");
  }
  return {};
}

constexpr CoefficientTable coefficient_tables[] = {
    rows("GV", GV),
};
constinit const CoefficientSet coefficient_set{
    "Ethylene viscosity", "P. M. Holland, B. E. Eaton, H. J. M. Hanley, J. Phys. Chem. Ref. Data 12 (1983) 917-932",
    coefficient_tables};

}  // namespace norvane::NIST_Ethylene_Visc
