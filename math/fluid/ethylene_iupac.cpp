// Ethylene by the equation of Jahangiri, Jacobsen, Stewart and McCarty.
//
//   p    pressure [MPa]             T    temperature [K]            rho  density [kg/m3]
//   tau  T_c/T                      delta  rho/rho_c                phi  Helmholtz energy over R T
//
//   p = rho R T (1 + delta phi_d)
//
// The ideal gas is a rigid rotor with twelve vibrations of temperatures theta_i, u_i = theta_i/T:
//
//   cp0/R = 4 + sum u^2 e^u/(e^u - 1)^2        h0/R = 4 T + sum theta/(e^u - 1) + h_0/R
//   s0/R  = 4 ln T + sum(u/(e^u - 1) - ln(1 - e^-u)) + s_0/R

#include "math/fluid/ethylene_iupac.h"

#include <array>
#include <cmath>

#include "core/elementary.h"
#include "math/fluid/ethylene_iupac_table.h"
#include "math/fluid/ethylene_vapour_pressure.h"
#include "math/fluid/helmholtz_terms.h"
#include "math/fluid/phase.h"

namespace norvane::Ethylene_IUPAC {
namespace {

constexpr double kJ = 1000.0;  // MPa m3 in kJ, and kJ/kg in m2/s2
constexpr double critical_z = kJ * critical_pressure / (critical_density * R * critical_temperature);

// Put the ideal gas at 298.15 K and 101.325 kPa to 29610.08 J/mol and 219.2234 J/(mol K). The constants printed with
// the equation, 29610 and 219.225, miss some of its tabulated enthalpies by 0.09 J/mol; these reproduce all.
constexpr double h_0 = 19094.056858319646;      // [J/mol]
constexpr double s_0 = 27.287771303441395;      // [J/(mol K)]
constexpr double reference_pressure = 101.325;  // [kPa]

using Terms = fluid::TermSums<terms>;
using Exponentials = std::array<double, Terms::exponential_count>;

struct Isotherm {
  Terms sums;

  explicit Isotherm(double T) noexcept : sums(critical_temperature / T) {}

  struct Point {
    Terms::Powers powers;
    Exponentials e;
    explicit Point(double delta) noexcept : powers(Terms::powers_of(delta)) {
      Terms::arguments(powers, e);
      fluid::exponentials(e);
    }
  };

  // p/(rho_c R T) and its derivative to delta.
  fluid::Pressure operator()(double delta) const noexcept {
    const Point point(delta);
    const fluid::Slopes s = sums.slopes(point.powers, point.e);
    return {delta * (1.0 + s.d), 1.0 + 2.0 * s.d + s.dd};
  }
  fluid::Virials virials() const noexcept { return sums.virials(); }
  double gibbs(double delta) const noexcept {
    const Point point(delta);
    return sums.value(point.powers, point.e) + 1.0 + sums.slopes(point.powers, point.e).d + elementary::log(delta);
  }
  helmholtz::Residual residual(double delta) const noexcept {
    const Point point(delta);
    return sums.residual(point.powers, point.e);
  }
};

// Per kilogram; the entropy at the reference pressure.
helmholtz::IdealGas ideal_gas(double T) noexcept {
  std::array<double, std::size(theta)> e;
  for (std::size_t i = 0; i < e.size(); ++i) e[i] = -theta[i] / T;
  fluid::exponentials(e);
  double cp = 4.0, h = 4.0 * T, product = 1.0, s = 4.0 * elementary::log(T);
  for (std::size_t i = 0; i < e.size(); ++i) {
    const double u = theta[i] / T, rest = 1.0 - e[i], occupied = e[i] / rest;
    cp += u * u * occupied / rest;
    h += theta[i] * occupied;
    s += u * occupied;
    product *= rest;
  }
  s -= elementary::log(product);
  return {.cp = R * cp, .h = R * h + h_0 / molar_mass, .s = R * s + s_0 / molar_mass};
}

helmholtz::State state_of(const Isotherm& isotherm, double T, double rho) noexcept {
  const helmholtz::Residual residual = isotherm.residual(rho / critical_density);
  helmholtz::State state = helmholtz::state(R, T, rho, residual, ideal_gas(T));
  state.s = helmholtz::entropy(R, T, rho, residual, state.ideal.s, 0.0, reference_pressure);
  return state;
}

bool find_density(const Isotherm& isotherm, double p, double T, double& rho) noexcept {
  const double unit = critical_density * R * T / kJ;  // [MPa]
  const fluid::Guess guess{.reduced_temperature = T / critical_temperature,
                           .critical_z = critical_z,
                           .acentricity = 0.506,
                           .saturation = T < critical_temperature ? ethylene::vapour_pressure(T) / unit : 0.0,
                           .uncertainty = 0.015,
                           .dense_limit = 26.0 * molar_mass / critical_density};
  double delta = 0.0;
  if (!fluid::phase_density(isotherm, p / unit, guess, fluid::Wanted::stable, delta)) return false;
  rho = delta * critical_density;
  return true;
}

}  // namespace

helmholtz::State state(double T, double rho) noexcept { return state_of(Isotherm(T), T, rho); }

bool density(double p, double T, double& rho) noexcept { return find_density(Isotherm(T), p, T, rho); }

double second_virial(double T) noexcept { return Isotherm(T).virials().B / critical_density; }

Outcome calculate(const Arguments& in, Result& out) noexcept {
  const double p = in.pressure, T = in.temperature;
  if (!(p > 0.0 && std::isfinite(p))) return blame(in.pressure, argument_error, u"must be a number above %", 0.0);
  if (!(T > 0.0 && std::isfinite(T))) return blame(in.temperature, argument_error, u"must be a number above %", 0.0);
  const Isotherm isotherm(T);
  double rho;
  if (!find_density(isotherm, p, T, rho))
    return failure(no_convergence, u"the equation has no density at this state");
  const helmholtz::State s = state_of(isotherm, T, rho);
  out = {.z = s.z,
         .density = rho,
         .enthalpy = s.h,
         .entropy = s.s,
         .cp = s.cp,
         .cv = s.cv,
         .speed_of_sound = std::sqrt(kJ * s.M_w2),
         .range = Range::normal};
  if (!(rho > 0.0 && s.z > 0.0 && s.cv > 0.0 && s.cp > 0.0 && s.M_w2 > 0.0 && std::isfinite(s.h + s.s) &&
        std::isfinite(s.cp) && std::isfinite(out.speed_of_sound)))
    return failure(calculation_error, u"the equation gives no state of matter at this pressure and temperature");
  if (!(T >= triple_temperature && T <= highest_temperature && p <= highest_pressure)) {
    out.range = Range::outside;
    return remark(u"the state lies outside the range of the equation");
  }
  return {};
}

}  // namespace norvane::Ethylene_IUPAC
