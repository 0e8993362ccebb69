// Water and steam, carbon dioxide and ethylene transcribed as their equations print them, with the C library's functions:
// the baselines of the ratios. Densities by Newton's method from the ideal gas or from a dense liquid; states close to
// saturation or to a critical point are not provided for, and nothing is checked.
#pragma once

#include <cmath>
#include <cstddef>
#include <iterator>

#include "bench/plain_helmholtz.h"
#include "math/fluid/ethylene_iupac.h"
#include "math/fluid/ethylene_iupac_table.h"
#include "math/fluid/ethylene_nist1045.h"
#include "math/fluid/ethylene_nist1045_table.h"
#include "math/fluid/ethylene_vapour_pressure.h"
#include "math/fluid/iapws_if97.h"
#include "math/fluid/iapws_if97_table.h"
#include "math/fluid/nist_co2.h"
#include "math/fluid/nist_co2_table.h"

namespace norvane::bench {

// ---- Water and steam: IAPWS-IF97 ---------------------------------------------------------------------------------

// [kg/m3], [kJ/kg], [kJ/(kg K)], isentropic exponent.
struct PlainWater {
  double rho, h, s, kappa;
};

namespace plain {

// A Gibbs energy over R T and its derivatives to pi and tau.
struct Gibbs {
  double g = 0, p = 0, pp = 0, t = 0, tt = 0, pt = 0;

  // n x^I y^J with dx/dpi = x_pi and dy/dtau = 1.
  void add(double n, int I, int J, double x, double x_pi, double y) {
    const double v = n * std::pow(x, I) * std::pow(y, J), i = I * x_pi / x, j = J / y;
    g += v;
    p += v * i;
    pp += v * i * (I - 1) * x_pi / x;
    t += v * j;
    tt += v * j * (J - 1) / y;
    pt += v * i * j;
  }
  PlainWater water(double p_MPa, double T, double pi, double tau) const {
    const double RT = IAPWS_IF97::R * T, v = RT * pi * p / (1000.0 * p_MPa);
    const double a = p - tau * pt;
    const double w2 = 1000.0 * RT * p * p / (a * a / (tau * tau * tt) - pp);
    return {1.0 / v, RT * tau * t, IAPWS_IF97::R * (tau * t - g), w2 / (1e6 * p_MPa * v)};
  }
};

template <class Ideal, class Terms>
PlainWater gas_region(const Ideal& ideal, const Terms& terms, double p, double T, double T_star, double y0) {
  const double pi = p, tau = T_star / T;
  Gibbs g;
  g.g = std::log(pi);
  g.p = 1.0 / pi;
  g.pp = -1.0 / (pi * pi);
  for (const auto& [J, n] : ideal) g.add(n, 0, J, 1.0, 0.0, tau);
  for (const auto& [I, J, n] : terms) g.add(n, I, J, pi, 1.0, tau - y0);
  return g.water(p, T, pi, tau);
}

}  // namespace plain

// p [MPa], T [K].
inline PlainWater plain_region1(double p, double T) {
  const double pi = p / 16.53, tau = 1386.0 / T;
  plain::Gibbs g;
  for (const auto& [I, J, n] : IAPWS_IF97::region1_terms) g.add(n, I, J, 7.1 - pi, -1.0, tau - 1.222);
  return g.water(p, T, pi, tau);
}
inline PlainWater plain_region2(double p, double T) {
  return plain::gas_region(IAPWS_IF97::region2_ideal, IAPWS_IF97::region2_terms, p, T, 540.0, 0.5);
}
inline PlainWater plain_region5(double p, double T) {
  return plain::gas_region(IAPWS_IF97::region5_ideal, IAPWS_IF97::region5_terms, p, T, 1000.0, 0.0);
}
inline PlainWater plain_region3(double p, double T) {
  const double R = IAPWS_IF97::R, rho_c = IAPWS_IF97::critical_density, tau = IAPWS_IF97::critical_temperature / T;
  const double n1 = IAPWS_IF97::region3_terms[0].n;
  const bool dense = T < IAPWS_IF97::critical_temperature ? p >= IAPWS_IF97::saturation_pressure(T)
                                                          : p >= IAPWS_IF97::region3_pressure(rho_c, T);
  double rho = dense ? 780.0 - 1.15 * (T - 623.15) : 1000.0 * p / (R * T);
  PlainHelmholtz a;  // of all of the energy
  const auto set = [&] {
    const double delta = rho / rho_c;
    a = {n1 * std::log(delta), n1, -n1};
    for (std::size_t k = 1; k < std::size(IAPWS_IF97::region3_terms); ++k) {
      const auto& [I, J, n] = IAPWS_IF97::region3_terms[k];
      a.add(n * std::pow(delta, I) * std::pow(tau, J), I, I * (I - 1), J);
    }
  };
  for (int step = 0; step < 30; ++step) {
    set();
    const double change = (1000.0 * p / (R * T) - rho * a.d) / (2.0 * a.d + a.dd);
    rho += change;
    if (std::fabs(change) < 1e-9 * rho) break;
  }
  set();
  const double mixed = a.d - a.dt, w2 = 1000.0 * R * T * (2.0 * a.d + a.dd - mixed * mixed / a.tt);
  return {rho, R * T * (a.t + a.d), R * (a.t - a.ar), w2 * rho / (1e6 * p)};
}

// ---- Pure fluids by a Helmholtz energy ---------------------------------------------------------------------------

namespace plain {

// rho_c times delta with p/(rho_c R T) = target. `energy(delta)` is the residual part.
template <class Energy>
double solve_delta(const Energy& energy, double target, bool dense, double dense_start) {
  double delta = dense ? dense_start : target;
  for (int step = 0; step < 60; ++step) {
    const PlainHelmholtz a = energy(delta);
    const double change = (target - delta * (1.0 + a.d)) / (1.0 + 2.0 * a.d + a.dd);
    delta += change;
    if (std::fabs(change) < 1e-9 * delta) break;
  }
  return delta;
}

// n tau^t of every term.
template <std::size_t size>
void at_temperature(const fluid::Term (&terms)[size], double tau, double (&value)[size]) {
  for (std::size_t k = 0; k < size; ++k) value[k] = terms[k].n * std::pow(tau, terms[k].t);
}
template <std::size_t size>
PlainHelmholtz add_up(const fluid::Term (&terms)[size], const double (&value)[size], double delta) {
  const PlainDensity at(delta);
  PlainHelmholtz sum;
  for (std::size_t k = 0; k < size; ++k) sum.add(value[k], terms[k].d, terms[k].t, terms[k].c, at);
  return sum;
}

}  // namespace plain

// ---- Carbon dioxide: Span and Wagner -----------------------------------------------------------------------------

// [kg/m3] at p [MPa], T [K].
inline double plain_co2(double p, double T) {
  const double tau = NIST_CO2::critical_temperature / T, unit = NIST_CO2::critical_density * NIST_CO2::R * T / 1000.0;
  double value[std::size(NIST_CO2::terms)];
  plain::at_temperature(NIST_CO2::terms, tau, value);
  const auto energy = [&](double delta) {
    PlainHelmholtz sum = plain::add_up(NIST_CO2::terms, value, delta);
    const double x = (delta - 1.0) * (delta - 1.0);
    for (const NIST_CO2::Gaussian& g : NIST_CO2::gaussians) {
      const double v = g.n * std::pow(delta, g.d) * std::pow(tau, g.t) *
                       std::exp(-g.alpha * x - g.beta * (tau - g.gamma) * (tau - g.gamma));
      const double D = g.d - 2.0 * g.alpha * delta * (delta - 1.0);
      sum.add(v, D, D * D - g.d - 2.0 * g.alpha * delta * delta, g.t);
    }
    for (const NIST_CO2::Critical& c : NIST_CO2::criticals) {
      const double theta = (1.0 - tau) + c.A * std::pow(x, 0.5 / c.beta);
      const double distance = theta * theta + c.B * std::pow(x, c.a);
      const double inner =
          c.A * theta * 2.0 / c.beta * std::pow(x, 0.5 / c.beta - 1.0) + 2.0 * c.B * c.a * std::pow(x, c.a - 1.0);
      const double D_d = (delta - 1.0) * inner;
      const double D_dd =
          inner + x * (4.0 * c.B * c.a * (c.a - 1.0) * std::pow(x, c.a - 2.0) +
                       2.0 * c.A * c.A / (c.beta * c.beta) * std::pow(x, 1.0 / c.beta - 2.0) +
                       c.A * theta * 4.0 / c.beta * (0.5 / c.beta - 1.0) * std::pow(x, 0.5 / c.beta - 2.0));
      const double F = std::pow(distance, c.b), F_1 = c.b * std::pow(distance, c.b - 1.0);
      const double F_d = F_1 * D_d, F_dd = F_1 * D_dd + F_1 * (c.b - 1.0) / distance * D_d * D_d;
      const double P = std::exp(-c.C * x - c.D * (tau - 1.0) * (tau - 1.0));
      const double P_d = -2.0 * c.C * (delta - 1.0) * P, P_dd = (2.0 * c.C * x - 1.0) * 2.0 * c.C * P;
      sum.d += c.n * delta * (F * (P + delta * P_d) + F_d * delta * P);
      sum.dd +=
          c.n * delta * delta * (F * (2.0 * P_d + delta * P_dd) + 2.0 * F_d * (P + delta * P_d) + F_dd * delta * P);
    }
    return sum;
  };
  const bool dense = T < NIST_CO2::critical_temperature ? p >= NIST_CO2::vapour_pressure(T)
                                                        : p >= unit * (1.0 + energy(1.0 + 1e-9).d);
  return plain::solve_delta(energy, p / unit, dense, 1300.0 / NIST_CO2::critical_density) *
         NIST_CO2::critical_density;
}

// ---- Ethylene: Jahangiri and others ------------------------------------------------------------------------------

struct PlainEthylene {
  double z, rho, h, s, cp, cv, w;  // [kg/m3], [kJ/kg], [kJ/(kg K)], [m/s]
};

inline PlainEthylene plain_ethylene_iupac(double p, double T) {
  using namespace Ethylene_IUPAC;
  constexpr double h_0 = 19094.056858319646 / molar_mass, s_0 = 27.287771303441395 / molar_mass;
  const double tau = critical_temperature / T, unit = critical_density * R * T / 1000.0;
  double value[std::size(terms)];
  plain::at_temperature(terms, tau, value);
  const auto energy = [&](double delta) { return plain::add_up(terms, value, delta); };
  const bool dense = T < critical_temperature ? p >= ethylene::vapour_pressure(T) : p >= unit * (1.0 + energy(1.0).d);
  const double delta = plain::solve_delta(energy, p / unit, dense, 24.0 * molar_mass / critical_density),
               rho = delta * critical_density;
  double cp = 4.0, h = 4.0 * T, s = 4.0 * std::log(T);
  for (double th : theta) {
    const double u = th / T, e = std::exp(u);
    cp += u * u * e / ((e - 1.0) * (e - 1.0));
    h += th / (e - 1.0);
    s += u / (e - 1.0) - std::log(1.0 - 1.0 / e);
  }
  const PlainState now(energy(delta), R, T, R * cp, R * h + h_0, R * s + s_0, rho * R * T / 101.325);
  return {now.z, rho, now.h, now.s, now.cp, now.cv, std::sqrt(1000.0 * now.w2)};
}

// ---- Ethylene: NBS Technical Note 1045 and its viscosity ---------------------------------------------------------

// [kmol/m3].
inline double plain_ethylene_1045(double p_MPa, double T) {
  using Ethylene_NIST1045::b;
  constexpr double gamma = 0.0172, R = 0.0831434;  // bar L/(mol K)
  const double T2 = T * T, T3 = T2 * T, T4 = T2 * T2, p = 10.0 * p_MPa;
  const double a[] = {0.0,
                      R * T,
                      b[0] * T + b[1] * std::sqrt(T) + b[2] + b[3] / T + b[4] / T2,
                      b[5] * T + b[6] + b[7] / T + b[8] / T2,
                      b[9] * T + b[10] + b[11] / T,
                      b[12],
                      b[13] / T + b[14] / T2,
                      b[15] / T,
                      b[16] / T + b[17] / T2,
                      b[18] / T2,
                      b[19] / T2 + b[20] / T3,
                      b[21] / T2 + b[22] / T4,
                      b[23] / T2 + b[24] / T3,
                      b[25] / T2 + b[26] / T4,
                      b[27] / T2 + b[28] / T3,
                      b[29] / T2 + b[30] / T3 + b[31] / T4};
  const auto pressure = [&](double rho, double& slope) {
    double value = 0.0;
    slope = 0.0;
    for (int n = 1; n <= 9; ++n) {
      const double term = a[n] * std::pow(rho, n);
      value += term;
      slope += n * term / rho;
    }
    const double e = std::exp(-gamma * rho * rho);
    for (int n = 10; n <= 15; ++n) {
      const double term = a[n] * std::pow(rho, 2 * n - 17) * e;
      value += term;
      slope += ((2 * n - 17) / rho - 2.0 * gamma * rho) * term;
    }
    return value;
  };
  double slope;
  const bool dense = T < Ethylene_NIST1045::critical_temperature
                         ? p_MPa >= ethylene::vapour_pressure(T)
                         : p >= pressure(Ethylene_NIST1045::critical_density, slope);
  double rho = dense ? 24.0 : p / (R * T);
  for (int step = 0; step < 60; ++step) {
    const double change = (p - pressure(rho, slope)) / slope;
    rho += change;
    if (std::fabs(change) < 1e-9 * rho) break;
  }
  return rho;
}

// [Pa s].
inline double plain_ethylene_viscosity(double p, double T) {
  constexpr double GV[] = {-3509822.5018, 2500840.6184, -583655.40744, 4554.9146583, 22881.683403,
                           -4731.8682077, 450.22249258, -21.490688088, 0.41649263233};
  constexpr double j1 = -4.8544486732, j2 = 13.033585236, j3 = 27808.928908, j4 = -1824.1971308, j5 = 1.5913024509,
                   j6 = -205.13573927, j7 = -39478.454708;
  const double r = plain_ethylene_1045(p, T) * Ethylene_NIST1045::molar_mass / 1000.0, theta = (r - 0.221) / 0.221;
  double dilute = 0.0;
  for (int i = 0; i < 9; ++i) dilute += GV[i] * std::pow(T, (i - 3) / 3.0);
  const double excess = std::exp(j1 + j4 / T) * std::expm1(std::pow(r, 0.1) * (j2 + j3 / std::pow(T, 1.5)) +
                                                           theta * std::sqrt(r) * (j5 + j6 / T + j7 / (T * T)));
  return (dilute + excess) * 1e-7;
}

}  // namespace norvane::bench
