// Carbon dioxide by the equation of Span and Wagner.
//
//   p    pressure [MPa]             T    temperature [K]            rho  density [kg/m3]
//   tau  T_c/T                      delta  rho/rho_c                phi  Helmholtz energy over R T
//
//   p = rho R T (1 + delta phi_d)
//
// Beside the usual terms the residual part has five bells around the critical density and three terms that are not
// analytic at the critical point:
//
//   n Delta^b delta Psi,   Psi = exp(-C x - D (tau - 1)^2),   x = (delta - 1)^2
//   Delta = theta^2 + B x^a,   theta = (1 - tau) + A x^(1/(2 beta))
//
// An index is a partial derivative: phi_dt = d2(phi)/(d delta d tau).

#include "math/fluid/nist_co2.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "core/elementary.h"
#include "math/fluid/helmholtz_terms.h"
#include "math/fluid/nist_co2_table.h"
#include "math/fluid/phase.h"

namespace norvane::NIST_CO2 {
namespace {

using Terms = fluid::TermSums<terms>;

constexpr double kJ = 1000.0;  // MPa m3 in kJ
constexpr double critical_z = kJ * critical_pressure / (critical_density * R * critical_temperature);

// All widths of the bells and of Psi along the density are multiples of this one: 10, 12.5, 15, 20 and 25.
constexpr double width = 2.5;
// Beyond this exponent of Psi a critical term is below the rounding of the others.
constexpr double negligible = 45.0;

constexpr double beta = criticals[0].beta;
static_assert(criticals[1].beta == beta && criticals[2].beta == beta);

// Exponentials of the terms, then exp(-width x) and x^(1/(2 beta) - 1).
constexpr std::size_t bell = Terms::exponential_count, power_of_x = bell + 1;
using Exponentials = std::array<double, 8>;
static_assert(power_of_x < std::tuple_size_v<Exponentials>);

// A density, and what the terms need of it.
struct Point {
  double delta;
  double offset;  // delta - 1, but never 0
  double x;       // its square
  bool critical;  // the critical terms count
  Terms::Powers powers;
  Exponentials e;
  double e10, e12, e15, e20, e25;  // exp(-10 x) and so on; e12 is exp(-12.5 x)

  Point(double at, double Psi_exponent) noexcept : delta(at), powers(Terms::powers_of(at)) {
    // At the critical density itself the derivatives of the critical terms are limits, which this distance stands
    // for.
    constexpr double least = 1e-15;
    offset = delta - 1.0;
    if (std::fabs(offset) < least) offset = std::copysign(least, offset);
    x = offset * offset;
    critical = criticals[0].C * x + Psi_exponent < negligible;
    Terms::arguments(powers, e);
    e[bell] = -width * x;
    e[power_of_x] = critical ? (0.5 / beta - 1.0) * elementary::log(x) : 0.0;
    fluid::exponentials(e);
    const double once = e[bell], twice = once * once;
    e10 = twice * twice;
    e12 = e10 * once;
    e15 = e10 * twice;
    e20 = e10 * e10;
    e25 = e20 * twice;
  }
};

// Value, u times the first and u^2 times the second derivative to a variable u.
struct Curve {
  double v, first, second;
};

// delta^d exp(-alpha (delta - 1)^2), whose exponential is e.
inline Curve bell_of(const Point& point, std::size_t exponent, double alpha, double e) noexcept {
  const double d = static_cast<double>(exponent), v = point.powers[exponent] * e;
  const double slope = d - 2.0 * alpha * point.delta * (point.delta - 1.0);  // of ln v, times delta
  return {v, slope * v, (slope * slope - d - 2.0 * alpha * point.powers[2]) * v};
}

// The bells have three shapes along the density.
constexpr std::size_t shapes = 3;
using Bells = std::array<Curve, shapes>;
inline Bells bells_of(const Point& point) noexcept {
  return {bell_of(point, 2, 25.0, point.e25), bell_of(point, 3, 15.0, point.e15), bell_of(point, 3, 20.0, point.e20)};
}
constexpr std::size_t shape_of[] = {0, 0, 0, 1, 2};  // of the terms 35 to 39
static_assert(gaussians[0].alpha == 25 && gaussians[1].alpha == 25 && gaussians[2].alpha == 25);
static_assert(gaussians[3].alpha == 15 && gaussians[4].alpha == 20);
static_assert(gaussians[0].d == 2 && gaussians[1].d == 2 && gaussians[2].d == 2);
static_assert(gaussians[3].d == 3 && gaussians[4].d == 3);

// Delta of the critical terms with one pair of a and B, and its derivatives; d Delta/d tau is -2 theta.
struct Distance {
  double v, d, dd, dt;
};

// What the critical terms share at a temperature and density.
struct CriticalPoint {
  double theta;
  Distance narrow, wide;  // of the terms 40 and 41, and of term 42
  double F[3];            // Delta^b

  CriticalPoint(double tau, const Point& point) noexcept {
    constexpr double A = criticals[0].A;
    static_assert(criticals[1].A == A && criticals[2].A == A);
    static_assert(criticals[0].a == 3.5 && criticals[1].a == 3.5 && criticals[2].a == 3.0);
    static_assert(criticals[0].B == criticals[1].B);
    const double x = point.x, r = point.e[power_of_x];
    theta = (1.0 - tau) + A * r * x;
    const auto distance = [&](double B, double a, double x_a1) {               // x_a1 = x^(a-1)
      const double slope = A * theta * (2.0 / beta) * r + 2.0 * B * a * x_a1;  // of Delta, over (delta - 1)
      const double bend = 4.0 * B * a * (a - 1.0) * x_a1 + 2.0 * (A / beta) * (A / beta) * x * r * r +
                          A * theta * (4.0 / beta) * (0.5 / beta - 1.0) * r;
      return Distance{theta * theta + B * x * x_a1, slope * point.offset, slope + bend,
                      -A * (2.0 / beta) * r * point.offset};
    };
    narrow = distance(criticals[0].B, 3.5, x * x * std::fabs(point.offset));
    wide = distance(criticals[2].B, 3.0, x * x);
    const double narrow_log = elementary::log(narrow.v), wide_log = elementary::log(wide.v);
    const auto power =
        elementary::exp4({criticals[0].b * narrow_log, criticals[1].b * narrow_log, criticals[2].b * wide_log, 0.0});
    std::copy_n(power.begin(), 3, F);
  }
  const Distance& of(std::size_t k) const noexcept { return k < 2 ? narrow : wide; }
};

// A critical term, delta times its first and delta^2 times its second derivative to delta.
struct CriticalTerm {
  double v, d, dd;
};

struct Isotherm {
  double tau;
  Terms sums;
  Bells height{};       // of each shape, along tau
  double Psi_exponent;  // D (tau - 1)^2
  double Psi;           // its exponential

  explicit Isotherm(double T) noexcept : tau(critical_temperature / T), sums(tau) {
    constexpr std::size_t count = std::size(gaussians);
    std::array<double, 8> e{};
    for (std::size_t k = 0; k < count; ++k) {
      const double away = tau - gaussians[k].gamma;
      e[k] = -gaussians[k].beta * away * away;
    }
    static_assert(criticals[0].D == criticals[1].D && criticals[0].D == criticals[2].D);
    Psi_exponent = criticals[0].D * (tau - 1.0) * (tau - 1.0);
    e[count] = -Psi_exponent;
    fluid::exponentials(e);
    Psi = e[count];
    const double power[] = {1.0, tau, tau * tau, tau * tau * tau};
    for (std::size_t k = 0; k < count; ++k) {
      const Gaussian& term = gaussians[k];
      const double v = term.n * power[term.t] * e[k];
      const double slope = term.t - 2.0 * term.beta * tau * (tau - term.gamma);  // of ln v, times tau
      Curve& sum = height[shape_of[k]];
      sum.v += v;
      sum.first += slope * v;
      sum.second += (slope * slope - term.t - 2.0 * term.beta * tau * tau) * v;
    }
  }

  // p/(rho_c R T) and its derivative to delta.
  fluid::Pressure operator()(double d) const noexcept {
    const Point point(d, Psi_exponent);
    fluid::Slopes s = sums.slopes(point.powers, point.e);
    const Bells bells = bells_of(point);
    for (std::size_t k = 0; k < shapes; ++k) {
      s.d += height[k].v * bells[k].first;
      s.dd += height[k].v * bells[k].second;
    }
    if (point.critical) {
      const CriticalPoint c(tau, point);
      for (std::size_t k = 0; k < 3; ++k) {
        const CriticalTerm t = critical_term(c, point, k);
        s.d += t.d;
        s.dd += t.dd;
      }
    }
    return {d * (1.0 + s.d), 1.0 + 2.0 * s.d + s.dd};
  }

  // The bells and the critical terms do not reach down to zero density.
  fluid::Virials virials() const noexcept { return sums.virials(); }

  double gibbs(double d) const noexcept {
    const Point point(d, Psi_exponent);
    double ar = sums.value(point.powers, point.e);
    const Bells bells = bells_of(point);
    for (std::size_t k = 0; k < shapes; ++k) ar += height[k].v * bells[k].v;
    if (point.critical) {
      const CriticalPoint c(tau, point);
      for (std::size_t k = 0; k < 3; ++k) ar += critical_term(c, point, k).v;
    }
    return ar + operator()(d).value / d + elementary::log(d);
  }

  helmholtz::Residual residual(double d) const noexcept {
    const Point point(d, Psi_exponent);
    helmholtz::Residual sum = sums.residual(point.powers, point.e);
    const Bells bells = bells_of(point);
    for (std::size_t k = 0; k < shapes; ++k) {
      sum.ar += height[k].v * bells[k].v;
      sum.d += height[k].v * bells[k].first;
      sum.dd += height[k].v * bells[k].second;
      sum.t += height[k].first * bells[k].v;
      sum.tt += height[k].second * bells[k].v;
      sum.dt += height[k].first * bells[k].first;
    }
    if (!point.critical) return sum;
    const CriticalPoint c(tau, point);
    for (std::size_t k = 0; k < 3; ++k) {
      const CriticalTerm term = critical_term(c, point, k);
      sum.ar += term.v;
      sum.d += term.d;
      sum.dd += term.dd;
      // Derivatives of F = Delta^b over F and of Psi over Psi.
      const double b = criticals[k].b, C = criticals[k].C, D = criticals[k].D;
      const Distance& distance = c.of(k);
      const double inverse = 1.0 / distance.v;
      const double ln_t = -2.0 * c.theta * inverse, ln_d = distance.d * inverse;  // of ln Delta
      const double F_t = b * ln_t, F_tt = b * (2.0 * inverse + (b - 1.0) * ln_t * ln_t);
      const double F_d = b * ln_d, F_dt = b * (distance.dt * inverse + (b - 1.0) * ln_d * ln_t);
      const double Psi_t = -2.0 * D * (tau - 1.0), Psi_tt = Psi_t * Psi_t - 2.0 * D;
      const double Psi_d = -2.0 * C * point.offset;
      sum.t += tau * term.v * (F_t + Psi_t);
      sum.tt += tau * tau * term.v * (F_tt + 2.0 * F_t * Psi_t + Psi_tt);
      sum.dt += tau * term.v * ((Psi_t + F_t) * (1.0 + d * Psi_d) + d * (F_d * Psi_t + F_dt));
    }
    return sum;
  }

 private:
  CriticalTerm critical_term(const CriticalPoint& c, const Point& point, std::size_t k) const noexcept {
    const Critical& t = criticals[k];
    const Distance& distance = c.of(k);
    const double inverse = 1.0 / distance.v, ln_d = distance.d * inverse, d = point.delta;
    const double F_d = t.b * ln_d, F_dd = t.b * (distance.dd * inverse + (t.b - 1.0) * ln_d * ln_d);  // over F
    const double Psi_d = -2.0 * t.C * point.offset, Psi_dd = Psi_d * Psi_d - 2.0 * t.C;               // over Psi
    const double v = t.n * c.F[k] * d * Psi * (k < 2 ? point.e10 : point.e12);
    return {v, v * (1.0 + d * (Psi_d + F_d)),
            v * d * (2.0 * (Psi_d + F_d) + d * (Psi_dd + 2.0 * F_d * Psi_d + F_dd))};
  }
};

// The ideal gas, per kilogram; the entropy at the pressure rho_c R T, so that
// the logarithm of the density that remains is ln delta.
helmholtz::IdealGas ideal_gas(double T) noexcept {
  const double tau = critical_temperature / T;
  double v = ideal[0] + ideal[1] * tau + ideal[2] * elementary::log(tau);  // phi0 without ln delta
  double t = ideal[1] * tau + ideal[2], tt = -ideal[2];                    // tau phi0_t, tau^2 phi0_tt
  for (const Oscillator& oscillator : oscillators) {
    const double u = oscillator.theta * tau;
    const double e = elementary::exp(-u), rest = 1.0 - e;
    v += oscillator.a * elementary::log(rest);
    t += oscillator.a * u * e / rest;
    tt -= oscillator.a * u * u * e / (rest * rest);
  }
  return {.cp = R * (1.0 - tt), .h = R * T * (1.0 + t), .s = R * (t - v)};
}

// Solid above it; the melting curve begins at the triple point.
bool solid(double p, double T) noexcept { return T >= triple_temperature && p > melting_pressure(T); }

bool find_density(const Isotherm& isotherm, double p, double T, double& rho) noexcept {
  const double unit = critical_density * R * T / kJ;  // [MPa]
  const fluid::Guess guess{.reduced_temperature = T / critical_temperature,
                           .critical_z = critical_z,
                           .acentricity = 0.7083,
                           .saturation = T < critical_temperature ? vapour_pressure(T) / unit : 0.0,
                           .uncertainty = 2e-4,
                           .dense_limit = 1600.0 / critical_density};
  double delta = 0.0;
  if (!fluid::phase_density(isotherm, p / unit, guess, fluid::Wanted::stable, delta)) return false;
  rho = delta * critical_density;
  return true;
}

}  // namespace

helmholtz::State state(double T, double rho) noexcept {
  const helmholtz::Residual residual = Isotherm(T).residual(rho / critical_density);
  helmholtz::State state = helmholtz::state(R, T, rho, residual, ideal_gas(T));
  state.s = helmholtz::entropy(R, T, rho, residual, state.ideal.s, 0.0, critical_density * R * T);
  return state;
}

bool density(double p, double T, double& rho) noexcept { return find_density(Isotherm(T), p, T, rho); }

double vapour_pressure(double T) noexcept {
  const double theta = 1.0 - T / critical_temperature, theta2 = theta * theta;
  const auto& [a1, a2, a3, a4] = vapour_pressure_terms;
  static_assert(a1.t == 1.0 && a2.t == 1.5 && a3.t == 2.0 && a4.t == 4.0);
  const double sum = a1.a * theta + a2.a * theta * std::sqrt(theta) + a3.a * theta2 + a4.a * theta2 * theta2;
  return critical_pressure * elementary::exp(sum * critical_temperature / T);
}

double melting_pressure(double T) noexcept {
  constexpr double a1 = 1955.5390, a2 = 2055.4593, triple_pressure = 0.51795;
  const double x = T / triple_temperature - 1.0;
  return triple_pressure * (1.0 + (a1 + a2 * x) * x);
}

Outcome calculate(const Arguments& in, Result& out) noexcept {
  const double p = in.pressure, T = in.temperature;
  if (!(p > 0.0 && std::isfinite(p))) return blame(in.pressure, argument_error, u"must be a number above %", 0.0);
  if (!(T > 0.0 && std::isfinite(T))) return blame(in.temperature, argument_error, u"must be a number above %", 0.0);
  double rho;
  if (!density(p, T, rho)) return failure(no_convergence, u"the equation has no density at this state");
  if (!(rho > 0.0 && std::isfinite(rho))) return failure(calculation_error, u"the density is not a positive number");
  out.density = rho;
  out.range = Range::normal;
  if (solid(p, T)) {
    out.range = Range::outside;
    return remark(u"carbon dioxide is solid at this pressure: the density is that of the continued liquid");
  }
  if (!(T >= triple_temperature && T <= highest_temperature && p <= highest_pressure)) {
    out.range = Range::outside;
    return remark(u"the state lies outside the range of the equation");
  }
  return {};
}

}  // namespace norvane::NIST_CO2
