// API MPMS Chapter 11.2.4 (GPA TP-27), two-fluid corresponding states.
//
//   G, Gx   relative density at 60 degF and at the observed temperature [-]     Tx    observed temperature [K]
//   delta   share of the second reference fluid [-]                             Tc    critical temperature [K]
//   tau     1 - Tx/Tc [-]                                                       CTL   X(Tx)/X(60 degF) [-]
//   X       density of the mixture at saturation, by that of the reference fluids at the same tau:
//           rho1/(1 + delta (rho1/(h rho2) - 1)), h = Zc1 rhoc1/(Zc2 rhoc2)
//   rho     density of a reference fluid at saturation:
//           rhoc (1 + (k1 tau^0.35 + k3 tau^2 + k4 tau^3)/(1 + k2 tau^0.65))
#include "math/liquid/api_11_2_4.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <limits>

#include "math/common/rounding.h"

namespace norvane::API_11_2_4 {

using namespace liquid;

namespace {

// Reference fluids, in the order of their relative densities.
struct Fluid {
  double g;     // relative density 60/60 degF [-]
  double tc;    // critical temperature [K]
  double zc;    // critical compressibility factor [-]
  double rhoc;  // critical density [mol/l]
  double k1, k2, k3, k4;
};
// clang-format off
constexpr Fluid fluids[] = {
    // G        Tc      Zc       rhoc   k1             k2               k3               k4
    {0.325022, 298.11, 0.27998, 6.250, 2.54616855327, -0.058244177754,  0.803398090807, -0.745720314137},  // EE (68/32)
    {0.355994, 305.33, 0.28220, 6.870, 1.8911304261,  -0.370305782347, -0.54486728872,   0.337876634952},  // ethane
    {0.429277, 333.67, 0.28060, 5.615, 2.20970078464, -0.294253708172, -0.405754420098,  0.319443433421},  // EP (65/35)
    {0.470381, 352.46, 0.27930, 5.110, 2.2534198132,  -0.266542138024, -0.372756711655,  0.384734185665},  // EP (35/65)
    {0.507025, 369.78, 0.27626, 5.000, 1.96568366933, -0.327662435541, -0.417979702538,  0.303271602831},  // propane
    {0.562827, 407.85, 0.28326, 3.860, 2.0474803441,  -0.289734363425, -0.330345036434,  0.291757103132},  // i-butane
    {0.584127, 425.16, 0.27536, 3.920, 2.03734743118, -0.299059145695, -0.418883095671,  0.380367738748},  // n-butane
    {0.624285, 460.44, 0.27026, 3.247, 2.06541640707, -0.23836620884,  -0.161440492247,  0.258681568613},  // i-pentane
    {0.631054, 469.65, 0.27235, 3.200, 2.11263474494, -0.26126941356,  -0.291923445075,  0.308344290017},  // n-pentane
    {0.657167, 498.05, 0.26706, 2.727, 2.02382197871, -0.423550090067, -1.15281098257,   0.950139001678},  // i-hexane
    {0.664064, 507.35, 0.26762, 2.704, 2.17134547773, -0.232997313405, -0.267019794036,  0.378629524102},  // n-hexane
    {0.688039, 540.15, 0.26312, 2.315, 2.19773533433, -0.275056764147, -0.447144095029,  0.493770995799},  // n-heptane
};
// clang-format on
constexpr std::size_t fluid_count = std::size(fluids);
static_assert(fluid_count == 12 && fluids[0].g == lightest && fluids[fluid_count - 1].g == heaviest);

// A density at saturation is a fraction, X of two of them another. Carried as fractions they cost one division in all:
//   rho = rhoc N/D, X = rhoc1 N1 N2/((1 - delta) N2 D1 + delta Zc2/Zc1 N1 D2)
template <class Number>
struct Fraction {
  Number over, under;
};
template <class Number>
struct Powers {
  Number p35, p65, p2, p3;  // of tau
};
template <class Number>
Fraction<Number> saturation(const Fluid& fluid, const Powers<Number>& tau) {
  const Number under = 1.0 + fluid.k2 * tau.p65;
  return {under + (fluid.k1 * tau.p35 + fluid.k3 * tau.p2 + fluid.k4 * tau.p3), under};
}
// X/rhoc1.
template <class Number>
Fraction<Number> mixture(const Fluid* pair, Number delta, const Powers<Number>& tau) {
  const Fraction<Number> rho1 = saturation(pair[0], tau), rho2 = saturation(pair[1], tau);
  return {rho1.over * rho2.over,
          (1.0 - delta) * (rho2.over * rho1.under) + (delta * (pair[1].zc / pair[0].zc)) * (rho1.over * rho2.under)};
}

constexpr double kelvin_60F = kelvin_of_degF(60.0);

}  // namespace

template <class Number>
Number ctl_from_60F(Number g, double kelvin) noexcept {
  // The second fluid is the first that is not lighter than the liquid.
  std::size_t second = 1;
  while (second + 1 < fluid_count && fluids[second].g < value_of(g)) ++second;
  const Fluid* pair = &fluids[second - 1];
  const Number delta = (g - pair[0].g) / (pair[1].g - pair[0].g);
  const Number reciprocal_tc = 1.0 / (pair[0].tc + delta * (pair[1].tc - pair[0].tc));
  const Number tau = 1.0 - kelvin * reciprocal_tc, tau_60 = 1.0 - kelvin_60F * reciprocal_tc;
  if (!(value_of(tau) >= 0.0)) return Number{std::numeric_limits<double>::quiet_NaN()};

  const Number log_60 = logarithm(tau_60);
  // At the critical temperature itself every power of tau is 0.
  const Number log_tau = value_of(tau) > 0.0 ? logarithm(tau) : Number{-std::numeric_limits<double>::infinity()};
  const std::array<Number, 4> powers =
      exponentials(std::array<Number, 4>{0.35 * log_tau, 0.65 * log_tau, 0.35 * log_60, 0.65 * log_60});
  const Number square = tau * tau, square_60 = tau_60 * tau_60;
  const Fraction<Number> x = mixture<Number>(pair, delta, {powers[0], powers[1], square, square * tau});
  const Fraction<Number> x_60 = mixture<Number>(pair, delta, {powers[2], powers[3], square_60, square_60 * tau_60});
  return (x.over * x_60.under) / (x.under * x_60.over);
}
template double ctl_from_60F(double g, double kelvin) noexcept;
template Dual ctl_from_60F(Dual g, double kelvin) noexcept;

double lightest_liquid(double kelvin) noexcept {
  if (kelvin <= fluids[0].tc) return lightest;
  for (std::size_t i = 1; i < fluid_count; ++i) {
    const Fluid& a = fluids[i - 1];
    const Fluid& b = fluids[i];
    if (kelvin <= b.tc) return a.g + (kelvin - a.tc) / (b.tc - a.tc) * (b.g - a.g);
  }
  return std::numeric_limits<double>::infinity();
}

double guess(double observed, double degF) noexcept {
  const double dt = degF - base_60F;
  double g = std::clamp(observed, 0.35, heaviest);
  for (int round = 0; round < 2; ++round) {
    const double x = (5.46e-4 / (g - 0.2565) - 5.76e-4) * dt;
    const double ctl = 1.0 - x - (0.57 + 1.82 * x) * x * x;
    g = std::clamp(observed / std::max(ctl, 0.5), 0.35, heaviest);
  }
  return g;
}

Solution relative_density_60(double observed, double degF, double& g) noexcept {
  const double kelvin = kelvin_of_degF(degF);
  const double edges[] = {lightest_liquid(kelvin), heaviest};
  if (!(edges[0] < heaviest)) return {Search::none};
  g = guess(observed, degF);
  return solve_rising([&](std::size_t, Dual u) { return u * ctl_from_60F(u, kelvin); }, edges, observed, g);
}

bool out_of_range(double g, double degF) noexcept {
  return outside(g, 0.3500, 0.6880) || outside(degF, -50.8, 199.4);
}
bool out_of_range_observed(double relative_density) noexcept { return outside(relative_density, 0.2100, 0.7400); }

Outcome check_60F(const double& g) noexcept {
  if (g >= lightest && g <= heaviest) return {};
  return blame(g, calculation_error, u"must be from % to %, between the reference fluids", lightest, heaviest);
}

Outcome correct(double g, Base base, double degF, const double& temperature, Correction& out) noexcept {
  return correct(g, ctl_from_60F(g, kelvin_of_degF(degF)), base, degF, temperature, out);
}
Outcome correct(double g, double ctl_60, Base base, double degF, const double& temperature,
                Correction& out) noexcept {
  out.ctl = ctl_60;
  out.base_density = g;
  out.out_of_range = out_of_range(g, degF);
  if (base != Base::degF60) {
    const double ctl_base = ctl_from_60F(g, kelvin_of_degF(base_degF(base)));
    out.base_density = water_2004.density_of_relative(g * ctl_base);
    out.ctl /= ctl_base;
  }
  if (positive(out.ctl)) return {};
  return blame(temperature, calculation_error, u"is above the critical temperature of this liquid");
}

namespace {

Outcome check(const Observation& o, double zero) {
  if (!positive(o.density)) return blame(o.density, argument_error, not_a_density);
  if (!(o.temperature > zero && std::isfinite(o.temperature)))
    return blame(o.temperature, argument_error, u"must be above % and finite", zero);
  return {};
}

// Arguments as they enter the printed tables.
Observation rounded(const Observation& o, Base base) {
  if (!o.rounding) return o;
  if (base == Base::degF60) return {round_half_away(o.density, 4), round_half_away(o.temperature, 1), true};
  return {round_half_away(o.density, 1), round_half_away(o.temperature * 20.0, 0) / 20.0, true};
}
double rounded_density(double density, Base base) { return round_half_away(density, base == Base::degF60 ? 4 : 1); }

double degF_of(const Observation& o, Base base) {
  return base == Base::degF60 ? o.temperature : degF_of_degC(o.temperature);
}
double unit_of(Base base) { return base == Base::degF60 ? 1.0 : 1.0 / water_2004.density; }

// The factor of a density at the base temperature. `given` is what the caller can be blamed for.
Outcome correct_base(const Observation& given, const Observation& o, Base base, Correction& out) {
  double g = o.density;
  if (base != Base::degF60) {
    const Solution solution = relative_density_60(o.density * unit_of(base), base_degF(base), g);
    if (!solution.found()) return outcome_of(solution, given.density, unit_of(base));
  } else if (Outcome outcome = check_60F(g); !outcome.good()) {
    outcome.member = &given.density;
    return outcome;
  }
  const Outcome outcome = correct(g, base, degF_of(o, base), given.temperature, out);
  out.base_density = o.density;
  if (o.rounding) out.ctl = round_half_away(out.ctl, 5);
  return outcome;
}

Outcome from_base(const Observation& given, Base base, Correction& out) {
  if (const Outcome outcome = check(given, base == Base::degF60 ? zero_degF : zero_degC); !outcome.good())
    return outcome;
  return correct_base(given, rounded(given, base), base, out);
}

Outcome to_base(const Observation& given, Base base, Correction& out) {
  if (const Outcome outcome = check(given, base == Base::degF60 ? zero_degF : zero_degC); !outcome.good())
    return outcome;
  const Observation o = rounded(given, base);
  const double degF = degF_of(o, base), observed = o.density * unit_of(base);
  double g;
  const Solution solution = relative_density_60(observed, degF, g);
  if (!solution.found()) return outcome_of(solution, given.density, unit_of(base));
  Outcome outcome = correct(g, observed / g, base, degF, given.temperature, out);
  const bool beyond = out.out_of_range || out_of_range_observed(observed);
  if (outcome.good() && o.rounding) {
    // As with the printed tables: the factor is looked up with the density that was found.
    outcome = correct_base(given, {rounded_density(out.base_density, base), o.temperature, true}, base, out);
  }
  out.out_of_range = beyond;
  return outcome;
}

}  // namespace

Outcome to_60F(const Observation& o, Correction& out) noexcept { return to_base(o, Base::degF60, out); }
Outcome from_60F(const Observation& o, Correction& out) noexcept { return from_base(o, Base::degF60, out); }
Outcome to_15C(const Observation& o, Correction& out) noexcept { return to_base(o, Base::degC15, out); }
Outcome from_15C(const Observation& o, Correction& out) noexcept { return from_base(o, Base::degC15, out); }
Outcome to_20C(const Observation& o, Correction& out) noexcept { return to_base(o, Base::degC20, out); }
Outcome from_20C(const Observation& o, Correction& out) noexcept { return from_base(o, Base::degC20, out); }

constexpr CoefficientTable coefficient_tables[] = {
    rows("fluids", fluids),
};
constinit const CoefficientSet coefficient_set{
    "API MPMS 11.2.4", "API MPMS Chapter 11.2.4 (GPA TP-27), reference fluids", coefficient_tables};

}  // namespace norvane::API_11_2_4
