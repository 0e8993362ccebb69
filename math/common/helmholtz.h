// Properties of a fluid from the reduced Helmholtz energy of its equation of state and its ideal gas.
//
//   ar      residual Helmholtz energy over R T, a function of density and T or of delta = rho/rho_r, tau = T_r/T
//   Z       = 1 + d                                    dp/drho = R T (1 + 2 d + dd)
//   dp/dT   = rho R (1 + d - dt)                       h       = h0 + R T (t + d)
//   s       = s0 - R sum x ln x - R ln(rho R T/p_ref) + R (t - ar)
//   cv      = cp0 - R - R tt                           cp      = cv + T (dp/dT)^2 / (rho^2 dp/drho)
//   w^2     = (cp/cv) (dp/drho) / M                    kappa   = w^2 M / (Z R T)
//
// See for instance R. Span, Multiparameter Equations of State (2000), section 3.1. The gas constant is the caller's,
// since each standard has its own. Per mole, with J and kPa: rho in kmol/m3, R in J/(mol K); or per mass, with kJ.
#pragma once

#include <array>
#include <cstddef>

#include "core/elementary.h"

namespace norvane::helmholtz {

// ar and its reduced derivatives; tau is any constant over T.
struct Residual {
  double ar;  // a_r/(R T)
  double d;   // rho d(ar)/d(rho)
  double dd;  // rho^2 d2(ar)/d(rho)2
  double t;   // tau d(ar)/d(tau) = -T d(ar)/dT
  double tt;  // tau^2 d2(ar)/d(tau)2
  double dt;  // rho tau d2(ar)/(d(rho) d(tau))
};

// The ideal gas at a temperature; its entropy at a reference pressure, without the entropy of mixing.
struct IdealGas {
  double cp = 0.0;  // [J/(mol K)]
  double h = 0.0;   // [J/mol]
  double s = 0.0;   // [J/(mol K)]
};

struct State {
  double T;    // [K]
  double rho;  // [kmol/m3]
  double z;
  double dp_dT;    // (dp/dT)_rho / (rho R)
  double dp_drho;  // (dp/drho)_T / (R T)
  double cp, cv;   // [J/(mol K)]
  double h;        // [J/mol]
  double s;        // [J/(mol K)], 0 unless asked for
  double M_w2;     // molar mass times the square of the speed of sound [J/mol]
  IdealGas ideal;
};

// Everything but the entropy.
inline State state(double R, double T, double rho, const Residual& r, const IdealGas& ideal) noexcept {
  State now{};
  now.T = T;
  now.rho = rho;
  now.z = 1.0 + r.d;
  now.dp_dT = 1.0 + r.d - r.dt;
  now.dp_drho = 1.0 + 2.0 * r.d + r.dd;
  now.ideal = ideal;
  now.cv = ideal.cp - R - R * r.tt;
  now.cp = now.cv + R * now.dp_dT * now.dp_dT / now.dp_drho;
  now.h = ideal.h + R * T * (r.d + r.t);
  now.M_w2 = now.cp / now.cv * R * T * now.dp_drho;
  return now;
}

// sum x ln x of the components that are present.
template <std::size_t count>
double mixing(const std::array<double, count>& x) noexcept {
  double sum = 0.0;
  for (double fraction : x)
    if (fraction > 0.0) sum += fraction * elementary::log(fraction);
  return sum;
}

// Entropy [J/(mol K)]; p_reference [kPa] is that of the ideal gas's entropy.
inline double entropy(double R, double T, double rho, const Residual& r, double s0, double mixing,
                      double p_reference) noexcept {
  return s0 - R * (mixing + elementary::log(rho * R * T / p_reference) + r.ar - r.t);
}

// Isentropic exponent of a state.
inline double kappa(double R, const State& s) noexcept { return s.M_w2 / (s.z * R * s.T); }

// Joule-Thomson coefficient [K/kPa].
inline double joule_thomson(const State& s) noexcept { return (s.dp_dT / s.dp_drho - 1.0) / (s.cp * s.rho); }

}  // namespace norvane::helmholtz
