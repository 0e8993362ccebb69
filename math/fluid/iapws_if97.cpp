// IAPWS-IF97.
//
//   p    pressure [MPa]                     T      temperature [K]
//   v    specific volume [m3/kg]            rho    density [kg/m3]
//   h    enthalpy [kJ/kg]                   s      entropy [kJ/(kg K)]
//   cp   isobaric heat capacity             cv     isochoric heat capacity [kJ/(kg K)]
//   w    speed of sound [m/s]
//   pi   p/p*                               tau    T*/T
//   g    Gibbs energy over R T, a function of pi and tau          (regions 1, 2 and 5)
//   phi  Helmholtz energy over R T, a function of delta = rho/rho* and tau   (region 3)
//
// An index is a partial derivative: g_pt = d2g/(d pi d tau).

#include "math/fluid/iapws_if97.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

#include "core/elementary.h"
#include "math/fluid/branch.h"
#include "math/fluid/iapws_if97_table.h"
#include "math/fluid/powers.h"

namespace norvane::IAPWS_IF97 {
namespace {

constexpr double kJ = 1000.0;          // MPa m3 in kJ, and kJ/kg in m2/s2
constexpr double boundary13 = 623.15;  // [K]: regions 1 and 2 up to here, region 3 beyond

// ---- Sums over a table -------------------------------------------------------------------------------------------

template <std::size_t size>
constexpr int highest(const Term (&terms)[size], int Term::*exponent, int sign) {
  int most = 0;
  for (const Term& term : terms) most = sign * (term.*exponent) > most ? sign * (term.*exponent) : most;
  return most;
}

template <const auto& terms, int Term::*exponent, int sign>
constexpr auto exponents_of() {
  fluid::Exponents<static_cast<std::size_t>(highest(terms, exponent, sign)) + 1> wanted{};
  for (const Term& term : terms) {
    const int power = sign * (term.*exponent);
    if (power >= 0) wanted[static_cast<std::size_t>(power)] = true;
  }
  return wanted;
}

// Sums of v = n x^I y^J times 1, I, I (I - 1), J, J (J - 1) and I J: the value and its derivatives to x and y, each
// times the powers of x and y that it lost.
struct Sums {
  double v = 0.0, x = 0.0, xx = 0.0, y = 0.0, yy = 0.0, xy = 0.0;
};

// Two numbers in one vector register, which every processor of the platform has.
using Two = double __attribute__((vector_size(16)));

// A table is summed in rows of equal I, which are sums over y with one weight, two rows side by side: the
// longest with the next, and so on. The shorter row of two is filled up with zeros.
struct TermPair {
  Term left, right;
  bool last;  // of the rows
};

template <const auto& terms>
struct Rows {
  static constexpr std::size_t count = std::size(terms);

  struct Plan {
    std::array<TermPair, count> pairs{};
    std::size_t size = 0;
  };
  static constexpr Plan make() {
    std::array<std::size_t, count + 1> first{};  // of each row
    std::size_t rows = 0;
    for (std::size_t k = 0; k < count; ++k)
      if (k == 0 || terms[k].I != terms[k - 1].I) first[rows++] = k;
    first[rows] = count;
    std::array<std::size_t, count> order{};
    for (std::size_t r = 0; r < rows; ++r) order[r] = r;
    const auto length = [&first](std::size_t r) { return first[r + 1] - first[r]; };
    std::sort(order.begin(), order.begin() + rows,
              [&](std::size_t a, std::size_t b) { return length(a) != length(b) ? length(a) > length(b) : a < b; });
    Plan made;
    for (std::size_t r = 0; r < rows; r += 2) {
      const std::size_t left = order[r], right = r + 1 < rows ? order[r + 1] : left;
      const std::size_t right_length = r + 1 < rows ? length(right) : 0;
      for (std::size_t k = 0; k < length(left); ++k) {
        // With an exponent of the table, whose power is there.
        const Term filler{terms[first[right]].I, terms[first[left] + k].J, 0.0};
        made.pairs[made.size++] = {terms[first[left] + k], k < right_length ? terms[first[right] + k] : filler,
                                   k + 1 == length(left)};
      }
    }
    return made;
  }
  static constexpr Plan plan = make();
};

template <const auto& terms>
[[gnu::always_inline]] inline Sums sums_of(double x, double y, double inverse_y) noexcept {
  const auto x_power = fluid::powers<exponents_of<terms, &Term::I, 1>()>(x);
  const auto y_power = fluid::powers<exponents_of<terms, &Term::J, 1>()>(y);
  const auto y_inverse = fluid::powers<exponents_of<terms, &Term::J, -1>()>(inverse_y);
  Two v{}, vx{}, vxx{}, vy{}, vyy{}, vxy{};
  Two row{}, row_y{}, row_yy{};
  const auto add = [&]<std::size_t k>(std::integral_constant<std::size_t, k>) {
    constexpr TermPair pair = Rows<terms>::plan.pairs[k];
    constexpr int J0 = pair.left.J, J1 = pair.right.J;
    constexpr Two n = {pair.left.n, pair.right.n}, J = {J0, J1}, I = {double(pair.left.I), double(pair.right.I)};
    const Two power = {J0 >= 0 ? y_power[std::size_t(J0)] : y_inverse[std::size_t(-J0)],
                       J1 >= 0 ? y_power[std::size_t(J1)] : y_inverse[std::size_t(-J1)]};
    row += n * power;
    row_y += n * J * power;
    row_yy += n * J * (J - 1.0) * power;
    if constexpr (pair.last) {
      const Two weight = {x_power[std::size_t(pair.left.I)], x_power[std::size_t(pair.right.I)]};
      row *= weight;
      row_y *= weight;
      v += row;
      vx += I * row;
      vxx += I * (I - 1.0) * row;
      vy += row_y;
      vxy += I * row_y;
      vyy += row_yy * weight;
      row = row_y = row_yy = Two{};
    }
  };
  [&]<std::size_t... k>(std::index_sequence<k...>) { (add(std::integral_constant<std::size_t, k>{}), ...); }
  (std::make_index_sequence<Rows<terms>::plan.size>{});
  const auto both = [](Two sum) { return sum[0] + sum[1]; };
  return {.v = both(v), .x = both(vx), .xx = both(vxx), .y = both(vy), .yy = both(vyy), .xy = both(vxy)};
}

// The ideal-gas part without its logarithm: value, tau times the first and tau^2 times the second derivative.
struct IdealSums {
  double v = 0.0, t = 0.0, tt = 0.0;
};

template <const auto& terms>
[[gnu::always_inline]] inline IdealSums ideal_sums(double tau, double inverse_tau) noexcept {
  constexpr auto wanted = [] {
    fluid::Exponents<6> all{};
    all.fill(true);
    return all;
  }();
  const auto power = fluid::powers<wanted>(tau);
  const auto inverse = fluid::powers<wanted>(inverse_tau);
  IdealSums sum;
  for (const IdealTerm& term : terms) {
    const double J = term.J;
    const double v =
        term.n * (term.J >= 0 ? power[static_cast<std::size_t>(term.J)] : inverse[static_cast<std::size_t>(-term.J)]);
    sum.v += v;
    sum.t += J * v;
    sum.tt += J * (J - 1.0) * v;
  }
  return sum;
}

// ---- Gibbs regions -----------------------------------------------------------------------------------------------

// g and its derivatives, each times the pi and tau it was derived to: p = pi g_p, pt = pi tau g_pt.
struct Gibbs {
  double g, p, pp, t, tt, pt;
};

// Tables 3, 12 and 39: relations of the properties to g.
[[gnu::always_inline]] inline State state_of(const Gibbs& g, double p, double T) noexcept {
  const double RT = R * T;
  const double mixed = g.p - g.pt;
  const double a = mixed * mixed;
  return {.v = RT * g.p / (kJ * p),
          .h = RT * g.t,
          .s = R * (g.t - g.g),
          .cp = -R * g.tt,
          .cv = R * (a / g.pp - g.tt),
          .w2 = kJ * RT * g.p * g.p / (a / g.tt - g.pp)};
}

// Regions 2 and 5: an ideal-gas part with its logarithm of the pressure, and a residual part in x = pi
// and y = tau - y0.
template <const auto& ideal, const auto& terms>
[[gnu::always_inline]] inline State gas_state(double p, double T, double T_star, double y0) noexcept {
  const double tau = T_star / T;
  const double y = tau - y0;
  const IdealSums i = ideal_sums<ideal>(tau, T / T_star);
  const Sums r = sums_of<terms>(p, y, 1.0);
  const double scale = tau / y;
  return state_of({.g = elementary::log(p) + i.v + r.v,
                   .p = 1.0 + r.x,
                   .pp = -1.0 + r.xx,
                   .t = i.t + scale * r.y,
                   .tt = i.tt + scale * scale * r.yy,
                   .pt = scale * r.xy},
                  p, T);
}

}  // namespace

State region1(double p, double T) noexcept {
  const double pi = p / 16.53, tau = 1386.0 / T;
  const double x = 7.1 - pi, y = tau - 1.222;
  const double inverse_y = 1.0 / y;
  const Sums sum = sums_of<region1_terms>(x, y, inverse_y);
  const double pi_scale = -pi / x, tau_scale = tau * inverse_y;
  return state_of({.g = sum.v,
                   .p = pi_scale * sum.x,
                   .pp = pi_scale * pi_scale * sum.xx,
                   .t = tau_scale * sum.y,
                   .tt = tau_scale * tau_scale * sum.yy,
                   .pt = pi_scale * tau_scale * sum.xy},
                  p, T);
}

State region2(double p, double T) noexcept { return gas_state<region2_ideal, region2_terms>(p, T, 540.0, 0.5); }

State metastable_vapour(double p, double T) noexcept {
  return gas_state<metastable_ideal, metastable_terms>(p, T, 540.0, 0.5);
}

State region5(double p, double T) noexcept { return gas_state<region5_ideal, region5_terms>(p, T, 1000.0, 0.0); }

// ---- Region 3 ----------------------------------------------------------------------------------------------------

namespace {

constexpr std::size_t region3_powers = 12;  // of delta: 0 to 11
static_assert(highest(region3_terms, &Term::I, 1) + 1 == region3_powers);
constexpr double n1 = region3_terms[0].n;  // the coefficient of ln delta

using Coefficients = std::array<double, region3_powers>;

// The terms at one temperature: coefficients of the powers of delta, and their derivatives to tau, each times the
// powers of tau it lost.
struct Isotherm3 {
  Coefficients a{}, t{}, tt{};
  double tau;
  double RT;  // [kJ/kg]

  explicit Isotherm3(double T) noexcept : tau(critical_temperature / T), RT(R * T) {
    const auto power = fluid::powers<exponents_of<region3_terms, &Term::J, 1>()>(tau);
    const auto add = [&]<std::size_t k>(std::integral_constant<std::size_t, k>) {
      constexpr Term term = region3_terms[k];
      constexpr double J = term.J;
      const double y = power[static_cast<std::size_t>(term.J)];
      a[static_cast<std::size_t>(term.I)] += term.n * y;
      t[static_cast<std::size_t>(term.I)] += term.n * J * y;
      tt[static_cast<std::size_t>(term.I)] += term.n * J * (J - 1.0) * y;
    };
    [&]<std::size_t... k>(std::index_sequence<k...>) { (add(std::integral_constant<std::size_t, k + 1>{}), ...); }
    (std::make_index_sequence<std::size(region3_terms) - 1>{});
  }

  // delta phi_d delta, which is p/(rho* R T), and its derivative to delta.
  fluid::Pressure operator()(double delta) const noexcept {
    double first = 0.0, second = 0.0;  // sums of I a delta^I and of I^2 a delta^I
    for (std::size_t I = region3_powers - 1; I > 0; --I) {
      const double i = static_cast<double>(I);
      first = (first + i * a[I]) * delta;
      second = (second + i * i * a[I]) * delta;
    }
    return {delta * (n1 + first), n1 + first + second};
  }
};

}  // namespace

double region3_pressure(double rho, double T) noexcept {
  const Isotherm3 isotherm(T);
  return isotherm(rho / critical_density).value * critical_density * isotherm.RT / kJ;
}

namespace {

State state3(const Isotherm3& isotherm, double rho) noexcept {
  const double delta = rho / critical_density;
  double v = 0.0, d = 0.0, dd = 0.0, t = 0.0, tt = 0.0, dt = 0.0;
  double power = 1.0;
  for (std::size_t I = 0; I < region3_powers; ++I) {
    const double i = static_cast<double>(I);
    v += isotherm.a[I] * power;
    d += i * isotherm.a[I] * power;
    dd += i * (i - 1.0) * isotherm.a[I] * power;
    t += isotherm.t[I] * power;
    tt += isotherm.tt[I] * power;
    dt += i * isotherm.t[I] * power;
    power *= delta;
  }
  v += n1 * elementary::log(delta);
  d += n1;
  dd -= n1;
  // Table 31
  const double mixed = d - dt;
  const double stiffness = 2.0 * d + dd;
  return {.v = 1.0 / rho,
          .h = isotherm.RT * (t + d),
          .s = R * (t - v),
          .cp = R * (mixed * mixed / stiffness - tt),
          .cv = -R * tt,
          .w2 = kJ * isotherm.RT * (stiffness - mixed * mixed / tt)};
}

// Below the critical temperature the phase decides about the branch, above it the side of the critical density that
// has the pressure. Some microkelvins below it the saturation pressure of region 4 is, by its rounding, beyond the
// end of the branch it stands for: then the pressure has one density only, and that one is the answer.
bool density3(const Isotherm3& isotherm, double p, double T, Phase phase, double& rho) noexcept {
  const double target = kJ * p / (critical_density * isotherm.RT);
  // Above every root of the region, and where the isotherm still rises: a constant fails above 860 K.
  const double dense_start = (780.0 - 1.15 * (T - boundary13)) / critical_density;
  double delta = 0.0;
  const auto find = [&](fluid::Branch::Side side, double start) {
    return fluid::find_density(isotherm, target, {.side = side, .start = start, .limit = 1.0, .zero_slope = n1},
                               delta);
  };
  const auto liquid = [&] { return find(fluid::Branch::dense, dense_start); };
  const auto steam = [&] { return find(fluid::Branch::dilute, target); };
  bool found;
  if (T >= critical_temperature) {
    found = find(fluid::Branch::whole, target >= isotherm(1.0).value ? dense_start : target);
  } else if (phase == Phase::automatic) {
    found = p >= saturation_pressure(T) ? liquid() || steam() : steam() || liquid();
  } else {
    found = phase == Phase::liquid ? liquid() : steam();
  }
  rho = delta * critical_density;
  return found;
}

}  // namespace

State region3(double rho, double T) noexcept { return state3(Isotherm3(T), rho); }

bool region3_density(double p, double T, Phase phase, double& rho) noexcept {
  return density3(Isotherm3(T), p, T, phase, rho);
}

// ---- Boundaries --------------------------------------------------------------------------------------------------

double saturation_pressure(double T) noexcept {
  const double(&n)[10] = saturation;
  const double theta = T + n[8] / (T - n[9]);
  const double A = (theta + n[0]) * theta + n[1];
  const double B = (n[2] * theta + n[3]) * theta + n[4];
  const double C = (n[5] * theta + n[6]) * theta + n[7];
  const double root = 2.0 * C / (std::sqrt(B * B - 4.0 * A * C) - B);
  return (root * root) * (root * root);
}

double saturation_temperature(double p) noexcept {
  const double(&n)[10] = saturation;
  const double beta = std::sqrt(std::sqrt(p));
  const double E = (beta + n[2]) * beta + n[5];
  const double F = (n[0] * beta + n[3]) * beta + n[6];
  const double G = (n[1] * beta + n[4]) * beta + n[7];
  const double D = 2.0 * G / (-F - std::sqrt(F * F - 4.0 * E * G));
  const double sum = n[9] + D;
  return 0.5 * (sum - std::sqrt(sum * sum - 4.0 * (n[8] + n[9] * D)));
}

double boundary23_pressure(double T) noexcept { return (boundary23[2] * T + boundary23[1]) * T + boundary23[0]; }

double boundary23_temperature(double p) noexcept {
  return boundary23[3] + std::sqrt((p - boundary23[4]) / boundary23[2]);
}

// ---- The calculation ---------------------------------------------------------------------------------------------

namespace {

constexpr double boundary23_end = 863.15;     // [K]: beyond it there is no region 3
constexpr double boundary25 = 1073.15;        // [K]
constexpr double metastable_pressure = 10.0;  // [MPa]: the equation for metastable vapour goes no further

Outcome deliver(const State& state, double p, int region, const char16_t* text, Result& out) noexcept {
  out = {.density = 1.0 / state.v,
         .enthalpy = state.h,
         .entropy = state.s,
         .isentropic_exponent = state.w2 / (kJ * kJ * p * state.v),
         .region = region};
  const bool state_of_matter = out.density > 0.0 && state.cv > 0.0 && state.cp > 0.0 && state.w2 > 0.0 &&
                               std::isfinite(out.density) && std::isfinite(out.enthalpy) &&
                               std::isfinite(out.entropy) && std::isfinite(out.isentropic_exponent);
  if (!state_of_matter)
    return failure(calculation_error, u"the equation gives no positive density and speed of sound at this state");
  return remark(text);
}

// The equation of one phase where the other one is stable. It ends somewhere: liquid is denser
// than at the critical point, steam is not.
Outcome deliver_unstable(const State& state, double p, int region, Phase phase, Result& out) noexcept {
  if ((state.v * critical_density < 1.0) != (phase == Phase::liquid))
    return failure(calculation_error, u"the phase wanted cannot be continued so far across the saturation line");
  return deliver(state, p, region, u"the phase wanted is not the stable one at this state", out);
}

}  // namespace

Outcome calculate(const Arguments& in, Result& out) noexcept {
  const double p = in.pressure, T = in.temperature;
  const Phase phase = in.phase;
  if (!(T >= lowest_temperature && T <= highest_temperature))
    return blame(in.temperature, argument_error, u"must be between % and %", lowest_temperature, highest_temperature);
  if (!(p > 0.0)) return blame(in.pressure, argument_error, u"must be above %", 0.0);
  if (!(p <= highest_pressure)) return blame(in.pressure, argument_error, u"must not be above %", highest_pressure);
  if (phase != Phase::automatic && phase != Phase::liquid && phase != Phase::steam)
    return blame(in.phase, argument_error, u"must be between % and %", 1.0, 3.0);

  if (T <= boundary13) {
    const bool liquid = p >= saturation_pressure(T);
    if (phase == Phase::automatic || liquid == (phase == Phase::liquid))
      return liquid ? deliver(region1(p, T), p, 1, u"", out) : deliver(region2(p, T), p, 2, u"", out);
    if (phase == Phase::liquid) return deliver_unstable(region1(p, T), p, 1, phase, out);
    return deliver_unstable(p <= metastable_pressure ? metastable_vapour(p, T) : region2(p, T), p, 2, phase, out);
  }
  if (T <= boundary23_end && p > boundary23_pressure(T)) {
    const Isotherm3 isotherm(T);
    double rho;
    if (!density3(isotherm, p, T, phase, rho))
      return failure(no_convergence, u"the phase wanted does not exist at this pressure and temperature");
    const State state = state3(isotherm, rho);
    if (phase == Phase::automatic || T >= critical_temperature ||
        (p >= saturation_pressure(T)) == (phase == Phase::liquid))
      return deliver(state, p, 3, u"", out);
    return deliver_unstable(state, p, 3, phase, out);
  }
  if (T <= boundary25) return deliver(region2(p, T), p, 2, u"", out);
  if (!(p <= highest_pressure_region5))
    return blame(in.pressure, argument_error, u"must not be above % at this temperature", highest_pressure_region5);
  return deliver(region5(p, T), p, 5, u"", out);
}

}  // namespace norvane::IAPWS_IF97
