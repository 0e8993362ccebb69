// API MPMS Chapter 11.1:2004, procedures 11.1.6.1, 11.1.6.2, 11.1.7.1 and 11.1.7.2.
// Check values: the worked examples printed with them.
//
//   rho60    density at 60 degF, ITS-90 basis [kg/m3]     rho_star  the same on the IPTS-68 basis [kg/m3]
//   t, t68   temperature, ITS-90 and IPTS-68 [degF]       p         gauge pressure, never negative [psi]
//   alpha60  thermal expansion at 60 degF [1/degF]        f         compressibility [1/psi]
//   ctl, cpl, ctpl  volume correction factors to 60 degF and equilibrium pressure [-]
#include "math/liquid/api_11_1_2004.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

#include "core/elementary.h"
#include "math/common/rounding.h"

namespace norvane::API_11_1_2004 {

using namespace liquid;

namespace {

constexpr double delta60 = 0.01374979547;        // temperature shift of the correlation at 60 degF [degF]
constexpr double base_temperature = 60.0068749;  // the base temperature on the IPTS-68 scale [degF]
constexpr double infinity = std::numeric_limits<double>::infinity();

// Constants and limits by group, in the order of Group. The limits are those of the base and of the observed density.
struct Data {
  Constants k;
  double base_low, base_high;          // kg/m3
  double observed_low, observed_high;  // kg/m3
};
// clang-format off
constexpr Data data[] = {
    //  K0        K1       K2           base                 observed
    {{  0.0,      0.0,     0.0      }, -infinity, infinity, -infinity, infinity},  // special: limits on alpha60
    {{341.0957,   0.0,     0.0      },  610.6,    1163.5,    470.5,    1201.8},    // crude oil
    {{  0.0,      0.0,     0.0      },  610.6,    1163.5,    470.4,    1209.5},    // refined: one of the next four
    {{192.4571,   0.2438,  0.0      },  610.6,    1163.5,    470.4,    1209.5},    // gasoline
    {{1489.067,   0.0,    -0.0018684},  610.6,    1163.5,    470.4,    1209.5},    // transition zone
    {{330.3010,   0.0,     0.0      },  610.6,    1163.5,    470.4,    1209.5},    // jet fuel
    {{103.8720,   0.2701,  0.0      },  610.6,    1163.5,    470.4,    1209.5},    // fuel oil
    {{  0.0,      0.34878, 0.0      },  800.9,    1163.5,    714.3,    1208.3},    // lubricating oil
};
// clang-format on
static_assert(std::size(data) == static_cast<std::size_t>(Group::lubricating_oil) + 1);

// Base densities at which refined products change their constants [kg/m3].
constexpr double gasoline_below = 770.352;
constexpr double transition_below = 787.5195;
constexpr double fuel_oil_from = 838.3127;

// Limits of temperature, pressure and, for a special application, of alpha60.
constexpr double temperature_low = -58.0, temperature_high = 302.0;  // degF
constexpr double pressure_low = 0.0, pressure_high = 1500.0;         // psi gauge
constexpr double alpha60_above = 0.00023, alpha60_below = 0.00093;   // 1/degF

// 11.1.6.2: the iteration ends when the observed density is met within this [kg/m3], or fails after so many steps.
constexpr double converged = 1e-6;
constexpr int most_steps = 15;
// The end of the standard's iteration may leave 2e-9 of a light product's density, more than a conversion
// forth and back should lose. A result that is further off than this part of its density takes further steps.
constexpr double settled = 1e-10;

// A temperature and pressure with what depends on nothing else.
struct Conditions {
  double t;    // degF
  double p;    // psi gauge, 0 when it was negative
  double dt;   // t68 - base_temperature [degF]
  double f_a;  // f = 1e-5 exp(f_a + f_b / rho_star^2)
  double f_b;  // kg2/m6
};

// ITS-90 less IPTS-68 as a polynomial of tau/630, tau in degC (ITS-90).
constexpr double scale_difference[] = {-0.148759, -0.267408, 1.080760, 1.269056,
                                       -4.089591, -1.871251, 7.438081, -3.536296};

constexpr double ipts68(double t) {
  const double degC = (t - 32.0) / 1.8;
  const double scaled = degC / 630.0;
  double difference = 0.0;
  for (std::size_t i = std::size(scale_difference); i-- > 0;) {
    difference = (difference + scale_difference[i]) * scaled;
  }
  return (degC - difference) * 1.8 + 32.0;
}

constexpr Conditions conditions(double t, double psig) {
  const double t68 = ipts68(t);
  return {t, psig > 0.0 ? psig : 0.0, t68 - base_temperature, -1.9947 + 0.00013427 * t68, 793920.0 + 2326.0 * t68};
}

constexpr Conditions base_conditions[] = {conditions(base_15C_in_degF, 0.0), conditions(base_20C_in_degF, 0.0)};

// 11.1.6.1: the factors of a base density at given conditions.
struct Factors {
  Group group;
  double alpha60;
  double ctl;
  double f;
  double cpl;
  double observed;  // rho60 x ctl x cpl [kg/m3]
};

Group group_of(Group group, double rho60) {
  if (group != Group::refined) return group;
  if (rho60 < gasoline_below) return Group::gasoline;
  if (rho60 < transition_below) return Group::transition;
  return rho60 < fuel_oil_from ? Group::jet_fuel : Group::fuel_oil;
}

// exp(x) - 1. For liquids x is a few 1e-6: the series then has every digit, the difference would have ten.
double exponential_less_one(double x) {
  if (std::fabs(x) < 1e-4) return x + x * x * (0.5 + x * (1.0 / 6.0));
  return elementary::exp(x) - 1.0;
}

// 1/(1 + x). A step waits for every division in it; for the x of liquids, about 1e-5, the series has every digit.
double inverse_of_one_plus(double x) {
  if (std::fabs(x) < 1e-4) return (1.0 - x) + x * x * (1.0 - x);
  return 1.0 / (1.0 + x);
}

// 11.1.6.1 step 3: 1/rho_star, of which the factors are functions.
double inverse_shifted_density(const Liquid& liquid, const Constants& k, double rho60) {
  const double inverse = 1.0 / rho60;
  if (liquid.group == Group::special) {
    return inverse * elementary::exp(-delta60 / 2.0 * liquid.alpha60 * (1.0 + 0.4 * liquid.alpha60 * delta60));
  }
  const double a = delta60 / 2.0 * ((k.k0 * inverse + k.k1) * inverse + k.k2);
  // The standard's A x B as one term: B alone has a pole where the transition constants give no expansion.
  const double ab = delta60 / 2.0 * (2.0 * k.k0 * inverse + k.k1) * inverse;
  const double shift = exponential_less_one(a * (1.0 + 0.8 * a)) * inverse_of_one_plus((1.0 + 1.6 * a) * ab);
  return inverse * inverse_of_one_plus(shift);
}

double ctl_at(double alpha60, double dt) {
  return elementary::exp(-alpha60 * dt * (1.0 + 0.8 * alpha60 * (dt + delta60)));
}

Outcome no_factor(const char* which) {
  return failure(calculation_error, u"the $ is 0, negative or no finite number").naming(which);
}

Outcome factors_at(const Liquid& liquid, double rho60, const Conditions& at, Factors& out) {
  out.group = group_of(liquid.group, rho60);
  const Constants& k = data[static_cast<std::size_t>(out.group)].k;
  const double inverse = inverse_shifted_density(liquid, k, rho60);
  if (inverse == 0.0 || !std::isfinite(inverse)) return no_factor("density at 60 degF");
  out.alpha60 = liquid.group == Group::special ? liquid.alpha60 : (k.k0 * inverse + k.k1) * inverse + k.k2;
  out.ctl = ctl_at(out.alpha60, at.dt);
  out.f = 1e-5 * elementary::exp(at.f_a + at.f_b * inverse * inverse);
  if (!positive(out.ctl)) return no_factor("CTL");
  if (!positive(out.f)) return no_factor("compressibility factor F");
  // Below 1 also beyond the pole f p = 1, which lies far below the density limits.
  out.cpl = cpl(out.f, at.p);
  if (out.cpl < 1.0) out.cpl = 1.0;
  out.observed = rho60 * out.ctl * out.cpl;
  if (!std::isfinite(out.observed) || out.observed == 0.0) return no_factor("observed density");
  return {};
}

// D_alpha of 11.1.6.2, which estimates how alpha60 follows the density. Refined products take
// it by density, also when their group was named.
double d_alpha(Group group, double rho60) {
  switch (group) {
    case Group::special: return 0.0;
    case Group::crude: return 2.0;
    case Group::lubricating_oil: return 1.0;
    default: break;
  }
  switch (group_of(Group::refined, rho60)) {
    case Group::gasoline: return 1.5;
    case Group::transition: return 8.5;
    case Group::fuel_oil: return 1.3;
    default: return 2.0;
  }
}

// One Newton step of 11.1.6.2. It reads the temperature as it was observed, without the shift
// to IPTS-68: so the printed iterates come out.
double next_density(double rho60, double observed, const Factors& now, const Conditions& at) {
  const double dt = at.t - 60.0;
  const double by_temperature = (1.0 + 1.6 * now.alpha60 * dt) * (d_alpha(now.group, rho60) * now.alpha60 * dt);
  const double by_pressure = 2e5 * at.p * now.cpl * now.f * (0.02326 * at.t + 7.9392) / (rho60 * rho60);
  // The standard's (observed/CTPL - rho60) with CTPL in the denominator.
  return rho60 + (observed - now.observed) / (now.ctl * now.cpl * (1.0 + by_temperature - by_pressure));
}

// 11.1.6.2 from a given start: the density at 60 degF of an observed density, with its factors and the number
// of steps. Where two groups of refined products meet, alpha60 jumps by 1e-7 of its value; an observed
// density that falls into the gap belongs to neither side and does not converge.
Outcome solve_from(double start, const Liquid& liquid, double observed, const Conditions& at, double& rho60,
                   Factors& factors, int& steps) {
  rho60 = start;
  steps = 0;
  if (const Outcome outcome = factors_at(liquid, rho60, at, factors); !outcome.good()) return outcome;
  while (!(std::fabs(observed - factors.observed) < converged)) {
    if (steps == most_steps)
      return failure(no_convergence, u"the observed density is not met within % kg/m3 in % steps", converged,
                     most_steps);
    ++steps;
    rho60 = next_density(rho60, observed, factors, at);
    if (const Outcome outcome = factors_at(liquid, rho60, at, factors); !outcome.good()) return outcome;
  }
  // From here on each step must bring the result nearer, so that none leads away from a converged one.
  for (int further = 0; further < most_steps; ++further) {
    const double distance = std::fabs(observed - factors.observed);
    if (distance <= settled * observed) break;
    const double nearer_rho60 = next_density(rho60, observed, factors, at);
    Factors nearer;
    if (!factors_at(liquid, nearer_rho60, at, nearer).good()) break;
    if (!(std::fabs(observed - nearer.observed) < distance)) break;
    ++steps;
    rho60 = nearer_rho60;
    factors = nearer;
  }
  return {};
}

// The iteration starts at the observed density. A hot light liquid under high pressure can be lost from
// there: its compressibility is far from that of its base density. For a density within the limits the
// standard's own start, held within the limits of the base density, then has a second try, whose answer counts only
// if it converges: otherwise the first one says what is wrong.
Outcome solve(const Liquid& liquid, double observed, const Conditions& at, double& rho60, Factors& factors,
              int& steps) {
  const Outcome outcome = solve_from(observed, liquid, observed, at, rho60, factors, steps);
  if (outcome.good()) return outcome;
  const Data& limits = data[static_cast<std::size_t>(liquid.group)];
  const double start = std::clamp(observed, limits.base_low, limits.base_high);
  if (start == observed || outside(observed, limits.observed_low, limits.observed_high)) return outcome;
  return solve_from(start, liquid, observed, at, rho60, factors, steps).good() ? Outcome{} : outcome;
}

bool out_of_range(const Liquid& liquid, double t, double psig, double observed, double rho60) {
  const Data& limits = data[static_cast<std::size_t>(liquid.group)];
  return outside(t, temperature_low, temperature_high) || outside(psig, pressure_low, pressure_high) ||
         outside(observed, limits.observed_low, limits.observed_high) ||
         outside(rho60, limits.base_low, limits.base_high) ||
         (liquid.group == Group::special && !(liquid.alpha60 > alpha60_above && liquid.alpha60 < alpha60_below));
}

Outcome check(const Liquid& liquid, double density, double t, double psig) {
  if (liquid.group < Group::special || liquid.group > Group::lubricating_oil)
    return failure(argument_error, u"the commodity group must be within % to %", 0, 7);
  const bool finite =
      std::isfinite(density) && std::isfinite(t) && std::isfinite(psig) && std::isfinite(liquid.alpha60);
  if (!finite) return failure(calculation_error, u"an argument is no finite number");
  return {};
}

double rounded(double ctpl, Rounding rounding) { return rounding == Rounding::on ? round_half_away(ctpl, 5) : ctpl; }

void fill(const Factors& factors, Rounding rounding, Correction& result) {
  result.group = factors.group;
  result.k = data[static_cast<std::size_t>(factors.group)].k;
  result.ctl = factors.ctl;
  result.cpl = factors.cpl;
  result.ctpl = rounded(factors.ctl * factors.cpl, rounding);
  result.alpha = factors.alpha60;
  result.f = factors.f;
}

// The factors of a metric table: volumes go through 60 degF, so its CTL is a ratio.
void fill_metric(const Factors& factors, double ctl_base, Rounding rounding, Correction& result) {
  fill(factors, rounding, result);
  result.ctl = factors.ctl / ctl_base;
  result.ctpl = rounded(result.ctl * result.cpl, rounding);
  result.alpha = factors.alpha60 * 1.8;
  result.f = factors.f / kPa_per_psi;
}

}  // namespace

double ipts68_of_its90(double degF) noexcept { return ipts68(degF); }

Outcome observed_from_base(Liquid liquid, double rho60, double degF, double psig, Rounding rounding,
                           Correction& result) noexcept {
  Outcome outcome = check(liquid, rho60, degF, psig);
  if (!outcome.good()) return outcome;
  Factors factors;
  outcome = factors_at(liquid, rho60, conditions(degF, psig), factors);
  if (!outcome.good()) return outcome;
  fill(factors, rounding, result);
  result.steps = 0;
  result.base_density = rho60;
  result.observed_density = factors.observed;
  result.out_of_range = out_of_range(liquid, degF, psig, factors.observed, rho60);
  return {};
}

Outcome base_from_observed(Liquid liquid, double rho_observed, double degF, double psig, Rounding rounding,
                           Correction& result) noexcept {
  Outcome outcome = check(liquid, rho_observed, degF, psig);
  if (!outcome.good()) return outcome;
  Factors factors;
  outcome = solve(liquid, rho_observed, conditions(degF, psig), result.base_density, factors, result.steps);
  if (!outcome.good()) return outcome;
  fill(factors, rounding, result);
  result.observed_density = rho_observed;
  result.out_of_range = out_of_range(liquid, degF, psig, rho_observed, result.base_density);
  return {};
}

Outcome observed_from_base(Liquid liquid, MetricBase base, double rho_base, double degC, double barg,
                           Rounding rounding, Correction& result) noexcept {
  const double degF = degF_of_degC(degC), psig = psi_of_bar(barg);
  Outcome outcome = check(liquid, rho_base, degF, psig);
  if (!outcome.good()) return outcome;
  // The base density counts as observed at the base temperature.
  Factors at_base, factors;
  double rho60;
  outcome = solve(liquid, rho_base, base_conditions[static_cast<std::size_t>(base)], rho60, at_base, result.steps);
  if (!outcome.good()) return outcome;
  outcome = factors_at(liquid, rho60, conditions(degF, psig), factors);
  if (!outcome.good()) return outcome;
  fill_metric(factors, at_base.ctl, rounding, result);
  result.base_density = rho_base;
  result.observed_density = rho_base * result.ctl * result.cpl;
  result.out_of_range = out_of_range(liquid, degF, psig, result.observed_density, rho60);
  if (!positive(result.ctl)) return no_factor("CTL");
  if (!std::isfinite(result.observed_density)) return no_factor("observed density");
  return {};
}

Outcome base_from_observed(Liquid liquid, MetricBase base, double rho_observed, double degC, double barg,
                           Rounding rounding, Correction& result) noexcept {
  const double degF = degF_of_degC(degC), psig = psi_of_bar(barg);
  Outcome outcome = check(liquid, rho_observed, degF, psig);
  if (!outcome.good()) return outcome;
  Factors factors;
  double rho60;
  outcome = solve(liquid, rho_observed, conditions(degF, psig), rho60, factors, result.steps);
  if (!outcome.good()) return outcome;
  // Same base density, same alpha60: only the temperature is another.
  const double ctl_base = ctl_at(factors.alpha60, base_conditions[static_cast<std::size_t>(base)].dt);
  if (!positive(ctl_base)) return no_factor("CTL at the base temperature");
  fill_metric(factors, ctl_base, rounding, result);
  result.base_density = rho60 * ctl_base;
  result.observed_density = rho_observed;
  result.out_of_range = out_of_range(liquid, degF, psig, rho_observed, rho60);
  if (!positive(result.ctl)) return no_factor("CTL");
  if (!std::isfinite(result.base_density)) return no_factor("base density");
  return {};
}

// ---- The tables --------------------------------------------------------------------------------------------------

namespace {

Rounding rounding_of(const Observation& o) { return o.rounding ? Rounding::on : Rounding::off; }

}  // namespace

Outcome to_60F(const Observation& o, Correction& result) noexcept {
  return base_from_observed({o.product}, o.density, o.temperature, o.pressure, rounding_of(o), result);
}
Outcome from_60F(const Observation& o, Correction& result) noexcept {
  return observed_from_base({o.product}, o.density, o.temperature, o.pressure, rounding_of(o), result);
}
Outcome to_15C(const Observation& o, Correction& result) noexcept {
  return base_from_observed({o.product}, MetricBase::degC15, o.density, o.temperature, o.pressure, rounding_of(o),
                            result);
}
Outcome from_15C(const Observation& o, Correction& result) noexcept {
  return observed_from_base({o.product}, MetricBase::degC15, o.density, o.temperature, o.pressure, rounding_of(o),
                            result);
}
Outcome to_20C(const Observation& o, Correction& result) noexcept {
  return base_from_observed({o.product}, MetricBase::degC20, o.density, o.temperature, o.pressure, rounding_of(o),
                            result);
}
Outcome from_20C(const Observation& o, Correction& result) noexcept {
  return observed_from_base({o.product}, MetricBase::degC20, o.density, o.temperature, o.pressure, rounding_of(o),
                            result);
}

constexpr CoefficientTable coefficient_tables[] = {
    rows("data", data),
    rows("scale_difference", scale_difference),
};
constinit const CoefficientSet coefficient_set{
    "API MPMS 11.1:2004",
    "API MPMS Chapter 11.1:2004, constants and limits of the commodity groups; coefficients of ITS-90 less IPTS-68",
    coefficient_tables};

}  // namespace norvane::API_11_1_2004
