// Ethylene by NBS Technical Note 1045.
//
//   p    pressure [MPa]             T    temperature [K]            rho  density [kmol/m3, which is mol/L]
//
//   p = rho R T + sum(2..9) a_n rho^n + exp(-gamma rho^2) sum(10..15) a_n rho^(2n-17)
//
//   ar  = (1/(R T)) integral(0..rho) (p - rho R T)/rho^2 d rho, the residual Helmholtz energy over R T
//
// All a_n are sums of powers of T. The calculation has them over R T, where T^k a_n/(R T) has the derivatives
// tau d/d tau = (1 - k) and tau^2 d2/d tau2 = (1 - k)(-k) of itself, as every power of tau = 1/T.

#include "math/fluid/ethylene_nist1045.h"

#include <array>
#include <cmath>

#include "core/elementary.h"
#include "math/fluid/ethylene_nist1045_table.h"
#include "math/fluid/ethylene_vapour_pressure.h"
#include "math/fluid/phase.h"

namespace norvane::Ethylene_NIST1045 {
namespace {

constexpr double kJ = 1000.0;  // MPa m3 in kJ
constexpr double critical_z = kJ * critical_pressure / (critical_density * R * critical_temperature);
// Rounded, as the Note has it: 1/rho_c^2 instead puts the liquid at 150 K 2.4 % off.
constexpr double gamma = 0.0172;
// The equation's own critical temperature, up to which its isotherms have a loop [K].
constexpr double end_of_loop = 282.3501;
// The isotherms of the cold liquid bend over and turn down above 24.3 kmol/m3.
constexpr double dense_limit = 24.0;
constexpr double lowest_convex = 150.0;  // [K]
constexpr double bar_R = 0.0831434;      // R [bar L/(mol K)]

// Ideal gas at 298.15 K and 101.325 kPa: 29610.0025 J/mol and 219.225 J/(mol K).
constexpr double h_0 = 8496.9966567958;         // [J/mol]
constexpr double s_0 = 64.248308918869;         // [J/(mol K)]
constexpr double reference_pressure = 101.325;  // [kPa]

// A term b T^k of a_n.
struct Term {
  double b;
  int n;
  double k;
};
constexpr Term terms[] = {{b[0], 2, 1},    {b[1], 2, 0.5},  {b[2], 2, 0},    {b[3], 2, -1},   {b[4], 2, -2},
                          {b[5], 3, 1},    {b[6], 3, 0},    {b[7], 3, -1},   {b[8], 3, -2},   {b[9], 4, 1},
                          {b[10], 4, 0},   {b[11], 4, -1},  {b[12], 5, 0},   {b[13], 6, -1},  {b[14], 6, -2},
                          {b[15], 7, -1},  {b[16], 8, -1},  {b[17], 8, -2},  {b[18], 9, -2},  {b[19], 10, -2},
                          {b[20], 10, -3}, {b[21], 11, -2}, {b[22], 11, -4}, {b[23], 12, -2}, {b[24], 12, -3},
                          {b[25], 13, -2}, {b[26], 13, -4}, {b[27], 14, -2}, {b[28], 14, -3}, {b[29], 15, -2},
                          {b[30], 15, -3}, {b[31], 15, -4}};
static_assert(std::size(terms) == std::size(b));

constexpr std::size_t first_n = 2, first_exponential = 10, last_n = 15;
using Coefficients = std::array<double, last_n + 1>;  // by n

// a_n/(R T) at a temperature, and what its derivatives to tau need: the sums over its terms times 1, 1 - k
// and (1 - k)(-k).
struct Isotherm {
  Coefficients a{}, t{}, tt{};

  explicit Isotherm(double T) noexcept {
    const double inverse = 1.0 / T, i2 = inverse * inverse;
    const double scale = inverse / bar_R, root = std::sqrt(T);
    const double powers[] = {scale * T,  scale * root,         scale,          scale * inverse,
                             scale * i2, scale * i2 * inverse, scale * i2 * i2};
    for (const Term& term : terms) {
      const double value = term.b * powers[term.k == 0.5 ? 1 : term.k == 1.0 ? 0 : static_cast<int>(2.0 - term.k)];
      const auto n = static_cast<std::size_t>(term.n);
      a[n] += value;
      t[n] += (1.0 - term.k) * value;
      tt[n] += (1.0 - term.k) * -term.k * value;
    }
  }

  // p/(R T) and its derivative to rho.
  fluid::Pressure pressure(double rho) const noexcept {
    const double x = rho * rho, e = elementary::exp(-gamma * x);
    double first = 0.0, first_slope = 0.0;  // sum a_n rho^(n-2) and sum n a_n rho^(n-2)
    for (std::size_t n = first_exponential - 1; n >= first_n; --n) {
      first = first * rho + a[n];
      first_slope = first_slope * rho + static_cast<double>(n) * a[n];
    }
    double second = 0.0, second_slope = 0.0;  // the same of rho^(2n-20), weighted by the power 2n-17
    for (std::size_t n = last_n; n >= first_exponential; --n) {
      second = second * x + a[n];
      second_slope = second_slope * x + (2.0 * static_cast<double>(n) - 17.0) * a[n];
    }
    return {rho + x * (first + rho * e * second),
            1.0 + rho * (first_slope + rho * e * (second_slope - 2.0 * gamma * x * second))};
  }

  // The same in delta = rho/rho_c.
  fluid::Pressure operator()(double delta) const noexcept {
    const fluid::Pressure p = pressure(delta * critical_density);
    return {p.value / critical_density, p.slope};
  }
  fluid::Virials virials() const noexcept {
    return {a[2] * critical_density, (a[3] + a[10]) * critical_density * critical_density};
  }
  double gibbs(double delta) const noexcept {
    return helmholtz_of(a, delta * critical_density) + operator()(delta).value / delta + elementary::log(delta);
  }

  // Residual part of coefficients: sum over n of a_n times the integral of its power over rho^2.
  static double helmholtz_of(const Coefficients& a, double rho) noexcept {
    const double x = rho * rho, e = elementary::exp(-gamma * x);
    double sum = 0.0, power = rho;
    for (std::size_t n = first_n; n < first_exponential; ++n) {
      sum += a[n] * power / static_cast<double>(n - 1);
      power *= rho;
    }
    // I_3 = (1 - e)/(2 gamma), I_m = ((m - 3) I_(m-2) - rho^(m-3) e)/(2 gamma)
    double integral = (1.0 - e) / (2.0 * gamma);
    power = 1.0;
    for (std::size_t n = first_exponential; n <= last_n; ++n) {
      sum += a[n] * integral;
      power *= x;
      integral = (2.0 * static_cast<double>(n - 9) * integral - power * e) / (2.0 * gamma);
    }
    return sum;
  }

  // rho times the derivative of that.
  static double pressure_of(const Coefficients& a, double rho) noexcept {
    const double x = rho * rho, e = elementary::exp(-gamma * x);
    double first = 0.0, second = 0.0;
    for (std::size_t n = first_exponential - 1; n >= first_n; --n) first = first * rho + a[n];
    for (std::size_t n = last_n; n >= first_exponential; --n) second = second * x + a[n];
    return rho * (first + rho * e * second);
  }

  helmholtz::Residual residual(double rho) const noexcept {
    const double d = pressure_of(a, rho);
    return {.ar = helmholtz_of(a, rho),
            .d = d,
            .dd = pressure(rho).slope - 1.0 - 2.0 * d,
            .t = helmholtz_of(t, rho),
            .tt = helmholtz_of(tt, rho),
            .dt = pressure_of(t, rho)};
  }
};

// Per mole; the entropy at the reference pressure.
helmholtz::IdealGas ideal_gas(double T) noexcept {
  const double i = 1.0 / T, u = g[8] * i;
  const double e = elementary::exp(-u), rest = 1.0 - e, occupied = e / rest, log = elementary::log(T);
  const double cp =
      ((g[0] * i + g[1]) * i + g[2]) * i + g[3] + ((g[6] * T + g[5]) * T + g[4]) * T + g[7] * u * u * occupied / rest;
  const double h = (-g[0] / 2.0 * i - g[1]) * i + g[2] * log +
                   (((g[6] / 4.0 * T + g[5] / 3.0) * T + g[4] / 2.0) * T + g[3]) * T + g[7] * g[8] * occupied;
  const double s = ((-g[0] / 3.0 * i - g[1] / 2.0) * i - g[2]) * i + g[3] * log +
                   ((g[6] / 3.0 * T + g[5] / 2.0) * T + g[4]) * T + g[7] * (u * occupied - elementary::log(rest));
  return {.cp = R * cp, .h = R * h + h_0, .s = R * s + s_0};
}

// Target and knowledge of the phases at a temperature.
bool find_density(const Isotherm& isotherm, double p, double T, Phase phase, double& rho) noexcept {
  const double unit = critical_density * R * T / kJ;  // [MPa]
  const fluid::Guess guess{.reduced_temperature = T / end_of_loop,
                           .critical_z = critical_z,
                           .acentricity = 0.506,
                           .saturation = T < end_of_loop ? ethylene::vapour_pressure(T) / unit : 0.0,
                           .uncertainty = 0.01,
                           .dense_limit = dense_limit / critical_density,
                           .convex = T > lowest_convex};
  const fluid::Wanted wanted = phase == Phase::liquid ? fluid::Wanted::liquid
                               : phase == Phase::gas  ? fluid::Wanted::gas
                                                      : fluid::Wanted::stable;
  double delta = 0.0;
  if (!fluid::phase_density(isotherm, p / unit, guess, wanted, delta)) return false;
  rho = delta * critical_density;
  return true;
}

// Densities further apart than this are two phases, nearer ones are one root found in two ways.
constexpr double different_phases = 1e-6;

}  // namespace

helmholtz::State state(double T, double rho) noexcept {
  const helmholtz::Residual residual = Isotherm(T).residual(rho);
  helmholtz::State state = helmholtz::state(R, T, rho, residual, ideal_gas(T));
  state.s = helmholtz::entropy(R, T, rho, residual, state.ideal.s, 0.0, reference_pressure);
  return state;
}

bool density(double p, double T, Phase phase, double& rho) noexcept {
  return find_density(Isotherm(T), p, T, phase, rho);
}

Outcome calculate(const Arguments& in, Result& out) noexcept {
  const double p = in.pressure, T = in.temperature;
  const Phase phase = in.phase;
  if (!(p > 0.0 && std::isfinite(p))) return blame(in.pressure, argument_error, u"must be a number above %", 0.0);
  if (!(T > 0.0 && std::isfinite(T))) return blame(in.temperature, argument_error, u"must be a number above %", 0.0);
  if (phase != Phase::automatic && phase != Phase::liquid && phase != Phase::gas)
    return blame(in.phase, argument_error, u"must be between % and %", 1.0, 3.0);
  const Isotherm isotherm(T);
  double rho;
  if (!find_density(isotherm, p, T, phase, rho))
    return phase == Phase::automatic
               ? failure(no_convergence, u"the equation has no density at this state")
               : failure(no_convergence, u"the phase wanted does not exist at this pressure and temperature");
  out = {.z = kJ * p / (rho * R * T), .density = rho * molar_mass, .molar_density = rho, .range = Range::normal};
  if (!(rho > 0.0 && std::isfinite(rho) && out.z > 0.0 && std::isfinite(out.z)))
    return failure(calculation_error, u"the density is not a positive number");
  const char16_t* text = u"";
  if (!(T >= triple_temperature && T <= highest_temperature && p <= highest_pressure)) {
    out.range = Range::outside;
    text = u"the state lies outside the range of the equation";
  } else if (std::fabs(T / critical_temperature - 1.0) <= 0.05 && std::fabs(rho / critical_density - 1.0) <= 0.3) {
    out.range = Range::critical;
    text = u"near the critical point the density may be 10 % off";
  }
  if (phase != Phase::automatic) {
    double stable;
    if (find_density(isotherm, p, T, Phase::automatic, stable) && std::fabs(stable / rho - 1.0) > different_phases)
      text = u"the phase wanted is not the stable one at this state";
  }
  return remark(text);
}

}  // namespace norvane::Ethylene_NIST1045
