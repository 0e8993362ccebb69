// Liquid tables transcribed as the standards print them, everything evaluated anew in each step, with the C library's
// functions: the baselines of the ratios.
#pragma once

#include <cmath>
#include <cstddef>
#include <iterator>

namespace norvane::bench {

// ---- API MPMS 11.1:2004, crude oil -------------------------------------------------------------------------------

struct PlainFactors {
  double ctl, f, cpl, alpha60;
};

// 11.1.6.1. Density at 60 degF [kg/m3], degF, psig.
inline PlainFactors plain_factors(double rho60, double t, double p) {
  constexpr double k0 = 341.0957, k1 = 0.0, k2 = 0.0, delta60 = 0.01374979547;
  constexpr double scale[] = {-0.148759, -0.267408, 1.080760, 1.269056, -4.089591, -1.871251, 7.438081, -3.536296};
  const double tau = (t - 32) / 1.8 / 630;
  double difference = 0;
  for (int i = 7; i >= 0; --i) difference = (difference + scale[i]) * tau;
  const double t68 = ((t - 32) / 1.8 - difference) * 1.8 + 32;
  const double a = delta60 / 2 * ((k0 / rho60 + k1) / rho60 + k2);
  const double b = (2 * k0 + k1 * rho60) / (k0 + (k1 + k2 * rho60) * rho60);
  const double rho_star = rho60 * (1 + (std::exp(a * (1 + 0.8 * a)) - 1) / (1 + a * (1 + 1.6 * a) * b));
  const double alpha60 = (k0 / rho_star + k1) / rho_star + k2;
  const double dt = t68 - 60.0068749;
  const double f = 1e-5 * std::exp(-1.9947 + 0.00013427 * t68 + (793920 + 2326 * t68) / (rho_star * rho_star));
  return {std::exp(-alpha60 * dt * (1 + 0.8 * alpha60 * (dt + delta60))), f, 1 / (1 - f * p), alpha60};
}

// 11.1.6.2, carried on until the observed density is met to 1e-10 of it, as the library does.
inline double plain_base(double observed, double t, double p) {
  double rho60 = observed;
  for (int i = 0; i < 15; ++i) {
    const PlainFactors c = plain_factors(rho60, t, p);
    if (std::fabs(observed - c.ctl * c.cpl * rho60) < 1e-10 * observed) break;
    const double dt = t - 60;
    rho60 +=
        (observed / (c.ctl * c.cpl) - rho60) / (1 + (1 + 1.6 * c.alpha60 * dt) * (2.0 * c.alpha60 * dt) -
                                                2e5 * p * c.cpl * c.f * (0.02326 * t + 7.9392) / (rho60 * rho60));
  }
  return rho60;
}

// ---- API 2540 (1980), crude oil ----------------------------------------------------------------------------------

// The base density of an observed one by substitution. K0 and dt of the table's base temperature.
inline double plain_base_1980(double observed, double K0, double dt) {
  double rho = observed;
  for (int round = 0; round < 100; ++round) {
    const double x = K0 / std::pow(rho, 2) * dt;
    const double next = observed / std::exp(-x * (1 + 0.8 * x));
    const bool met = std::fabs(next - rho) < 1e-13 * rho;
    rho = next;
    if (met) break;
  }
  return rho;
}

// ---- API MPMS 11.2.4, Tables 23E and 24E -------------------------------------------------------------------------

// The fluids of propane to n-pentane.
struct PlainFluid {
  double g, tc, zc, rhoc, k1, k2, k3, k4;
};
inline constexpr PlainFluid plain_fluids[] = {
    {0.470381, 352.46, 0.27930, 5.110, 2.2534198132, -0.266542138024, -0.372756711655, 0.384734185665},
    {0.507025, 369.78, 0.27626, 5.000, 1.96568366933, -0.327662435541, -0.417979702538, 0.303271602831},
    {0.562827, 407.85, 0.28326, 3.860, 2.0474803441, -0.289734363425, -0.330345036434, 0.291757103132},
    {0.584127, 425.16, 0.27536, 3.920, 2.03734743118, -0.299059145695, -0.418883095671, 0.380367738748},
    {0.624285, 460.44, 0.27026, 3.247, 2.06541640707, -0.23836620884, -0.161440492247, 0.258681568613},
    {0.631054, 469.65, 0.27235, 3.200, 2.11263474494, -0.26126941356, -0.291923445075, 0.308344290017}};

inline double plain_saturation(const PlainFluid& f, double tau) {
  return f.rhoc * (1 + (f.k1 * std::pow(tau, 0.35) + f.k3 * std::pow(tau, 2) + f.k4 * std::pow(tau, 3)) /
                           (1 + f.k2 * std::pow(tau, 0.65)));
}

// CTL of a relative density at 60 degF, at t [degF].
inline double plain_ctl(double g, double t) {
  std::size_t i = 1;
  while (plain_fluids[i].g < g && i + 1 < std::size(plain_fluids)) ++i;
  const PlainFluid &a = plain_fluids[i - 1], &b = plain_fluids[i];
  const double delta = (g - a.g) / (b.g - a.g), tc = a.tc + delta * (b.tc - a.tc);
  const double h2 = a.zc * a.rhoc / (b.zc * b.rhoc);
  const auto x = [&](double kelvin) {
    const double r1 = plain_saturation(a, 1 - kelvin / tc), r2 = plain_saturation(b, 1 - kelvin / tc);
    return r1 / (1 + delta * (r1 / (h2 * r2) - 1));
  };
  return x((t + 459.67) / 1.8) / x(519.67 / 1.8);
}

// The relative density at 60 degF of an observed one, by secants.
inline double plain_relative_density(double observed, double t) {
  double a = observed, f_a = a * plain_ctl(a, t) - observed;
  double b = a - f_a, f_b = b * plain_ctl(b, t) - observed;
  for (int i = 0; i < 50 && std::fabs(f_b) > 1e-14 && f_a != f_b; ++i) {
    const double next = b - f_b * (b - a) / (f_b - f_a);
    a = b;
    f_a = f_b;
    b = next;
    f_b = b * plain_ctl(b, t) - observed;
  }
  return b;
}

}  // namespace norvane::bench
