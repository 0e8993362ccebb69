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
    // At the critical density itself the derivatives of the critical terms are limits, which this distance stands for.
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

// A bell's factor f = n delta^d exp(-alpha x) and its derivatives to delta, over n, times delta and delta^2.
struct Bell {
  double v, d, dd;
};
inline Bell bell_of(const Point& point, std::size_t exponent, double alpha, double e) noexcept {
  const double d = static_cast<double>(exponent);
  const double first = d - 2.0 * alpha * point.delta * (point.delta - 1.0);
  const double v = point.powers[exponent] * e;
  return {v, first * v, (first * first - d - 2.0 * alpha * point.powers[2]) * v};
}

// Delta of the critical terms with one pair of a and B, and its derivatives.
struct Distance {
  double v, d, dd, dt;  // to tau: d Delta/d tau = -2 theta
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

struct Isotherm {
  double tau;
  Terms sums;
  double bells[3];      // coefficients: delta^2 exp(-25 x), delta^3 exp(-15 x), delta^3 exp(-20 x)
  double bells_t[3];    // their derivatives to tau, times tau
  double bells_tt[3];   // tau^2
  double Psi_exponent;  // D (tau - 1)^2
  double Psi;           // its exponential

  explicit Isotherm(double T) noexcept : tau(critical_temperature / T), sums(tau) {
    std::array<double, 8> e{};
    for (std::size_t k = 0; k < 5; ++k) {
      const double away = tau - gaussians[k].gamma;
      e[k] = -gaussians[k].beta * away * away;
    }
    static_assert(criticals[0].D == criticals[1].D && criticals[0].D == criticals[2].D);
    Psi_exponent = criticals[0].D * (tau - 1.0) * (tau - 1.0);
    e[5] = -Psi_exponent;
    fluid::exponentials(e);
    Psi = e[5];
    const double tau3 = tau * tau * tau;
    const auto coefficient = [&](std::size_t k, double v, double t) {
      const double first = t - 2.0 * gaussians[k].beta * tau * (tau - gaussians[k].gamma);
      const double value = gaussians[k].n * v * e[k];
      return Bell{value, first * value, (first * first - t - 2.0 * gaussians[k].beta * tau * tau) * value};
    };
    const Bell a[] = {coefficient(0, tau, 1.0), coefficient(1, 1.0, 0.0), coefficient(2, tau, 1.0),
                      coefficient(3, tau3, 3.0), coefficient(4, tau3, 3.0)};
    const auto sum = [&](double Bell::*which, double(&to)[3]) {
      to[0] = a[0].*which + a[1].*which + a[2].*which;
      to[1] = a[3].*which;
      to[2] = a[4].*which;
    };
    sum(&Bell::v, bells);
    sum(&Bell::d, bells_t);
    sum(&Bell::dd, bells_tt);
  }

  // p/(rho_c R T) and its derivative to delta.
  fluid::Pressure operator()(double d) const noexcept {
    const Point point(d, Psi_exponent);
    fluid::Slopes s = sums.slopes(point.powers, point.e);
    const Bell b[] = {bell_25(point), bell_15(point), bell_20(point)};
    for (std::size_t k = 0; k < 3; ++k) {
      s.d += bells[k] * b[k].d;
      s.dd += bells[k] * b[k].dd;
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
    const double e[] = {point.powers[2] * point.e25, point.powers[3] * point.e15, point.powers[3] * point.e20};
    for (std::size_t k = 0; k < 3; ++k) ar += bells[k] * e[k];
    if (point.critical) {
      const CriticalPoint c(tau, point);
      for (std::size_t k = 0; k < 3; ++k) ar += critical_term(c, point, k).v;
    }
    return ar + operator()(d).value / d + elementary::log(d);
  }

  helmholtz::Residual residual(double d) const noexcept {
    const Point point(d, Psi_exponent);
    helmholtz::Residual sum = sums.residual(point.powers, point.e);
    const Bell b[] = {bell_25(point), bell_15(point), bell_20(point)};
    for (std::size_t k = 0; k < 3; ++k) {
      sum.ar += bells[k] * b[k].v;
      sum.d += bells[k] * b[k].d;
      sum.dd += bells[k] * b[k].dd;
      sum.t += bells_t[k] * b[k].v;
      sum.tt += bells_tt[k] * b[k].v;
      sum.dt += bells_t[k] * b[k].d;
    }
    if (point.critical) {
      const CriticalPoint c(tau, point);
      for (std::size_t k = 0; k < 3; ++k) {
        const CriticalTerm term = critical_term(c, point, k);
        sum.ar += term.v;
        sum.d += term.d;
        sum.dd += term.dd;
        // Along tau
        const double b_ = criticals[k].b, D = criticals[k].D;
        const Distance& distance = c.of(k);
        const double inverse = 1.0 / distance.v;
        const double Dt = -2.0 * c.theta * inverse;                                    // of ln Delta
        const double Ft = b_ * Dt, Ftt = b_ * (2.0 * inverse + (b_ - 1.0) * Dt * Dt);  // over F
        const double Pt = -2.0 * D * (tau - 1.0), Ptt = Pt * Pt - 2.0 * D;             // over Psi
        const double Fd = b_ * distance.d * inverse, Pd = term.psi_d;
        const double Fdt = b_ * (distance.dt * inverse + (b_ - 1.0) * distance.d * inverse * Dt);
        sum.t += tau * term.v * (Ft + Pt);
        sum.tt += tau * tau * term.v * (Ftt + 2.0 * Ft * Pt + Ptt);
        sum.dt += tau * term.v * ((Pt + Ft) * (1.0 + d * Pd) + d * (Fd * Pt + Fdt));
      }
    }
    return sum;
  }

 private:
  static Bell bell_25(const Point& p) noexcept { return bell_of(p, 2, 25.0, p.e25); }
  static Bell bell_15(const Point& p) noexcept { return bell_of(p, 3, 15.0, p.e15); }
  static Bell bell_20(const Point& p) noexcept { return bell_of(p, 3, 20.0, p.e20); }

  // A critical term, delta times its first and delta^2 times its second derivative to delta.
  struct CriticalTerm {
    double v, d, dd;
    double psi_d;  // dPsi/d delta over Psi
  };
  CriticalTerm critical_term(const CriticalPoint& c, const Point& point, std::size_t k) const noexcept {
    const Critical& t = criticals[k];
    const Distance& distance = c.of(k);
    const double inverse = 1.0 / distance.v;
    const double ratio = distance.d * inverse;
    const double Fd = t.b * ratio, Fdd = t.b * (distance.dd * inverse + (t.b - 1.0) * ratio * ratio);  // over F
    const double Pd = -2.0 * t.C * point.offset, Pdd = Pd * Pd - 2.0 * t.C;                            // over Psi
    const double v = t.n * c.F[k] * point.delta * Psi * (k < 2 ? point.e10 : point.e12);
    const double d = point.delta;
    return {v, v * (1.0 + d * (Pd + Fd)), v * d * (2.0 * (Pd + Fd) + d * (Pdd + 2.0 * Fd * Pd + Fdd)), Pd};
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
