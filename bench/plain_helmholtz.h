// A residual Helmholtz energy added up term by term, and the properties that follow, as the equations of state print
// them. For the plain transcriptions.
#pragma once

#include <cmath>
#include <cstddef>

namespace norvane::bench {

// Powers of a reduced density and exp(-delta^c), tabulated as any program would.
struct PlainDensity {
  explicit PlainDensity(double delta_) : delta(delta_) {
    power[0] = 1.0;
    for (std::size_t d = 1; d < 16; ++d) power[d] = power[d - 1] * delta;
    e[0] = 1.0;
    for (std::size_t c = 1; c < 7; ++c) e[c] = std::exp(-power[c]);
  }
  double delta, power[16], e[7];
};

struct PlainHelmholtz {
  double ar = 0, d = 0, dd = 0, t = 0, tt = 0, dt = 0;

  // A term of this value, whose logarithm has the reduced derivatives D to delta and t_ to tau; X = D^2 - D - what D
  // itself changes by.
  void add(double value, double D, double X, double t_) {
    ar += value;
    d += value * D;
    dd += value * X;
    t += value * t_;
    tt += value * t_ * (t_ - 1.0);
    dt += value * D * t_;
  }
  // n delta^d tau^t exp(-delta^c), without the exponential where c is 0; value_at_T = n tau^t.
  void add(double value_at_T, int d_, double t_, int c, const PlainDensity& at) {
    const double q = c == 0 ? 0.0 : c * at.power[c], D = d_ - q;
    add(value_at_T * at.power[d_] * at.e[c], D, D * (D - 1.0) - c * q, t_);
  }
};

// Per mole or per mass, in the unit of R; w2 is the square of the speed of sound times the molar mass, or alone.
struct PlainState {
  double z, cp, cv, h, s, w2, kappa;

  // The ideal gas's cp0, h0 and s0 at T; p_rho = rho R T/p_ref.
  PlainState(const PlainHelmholtz& a, double R, double T, double cp0, double h0, double s0, double p_rho) {
    const double dp_dT = 1.0 + a.d - a.dt, dp_drho = 1.0 + 2.0 * a.d + a.dd;
    z = 1.0 + a.d;
    cv = cp0 - R - R * a.tt;
    cp = cv + R * dp_dT * dp_dT / dp_drho;
    h = h0 + R * T * (a.d + a.t);
    s = s0 - R * std::log(p_rho) + R * (a.t - a.ar);
    w2 = cp / cv * R * T * dp_drho;
    kappa = w2 / (z * R * T);
  }
};

}  // namespace norvane::bench
