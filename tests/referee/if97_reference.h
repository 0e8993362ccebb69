// IAPWS-IF97 as the release prints it: the energies of its regions, and what their derivatives make.
#pragma once

#include "math/fluid/iapws_if97_table.h"
#include "tests/referee/quad.h"

namespace norvane::referee {

struct WaterState {
  Real rho, h, s, kappa;  // [kg/m3], [kJ/kg], [kJ/(kg K)], [-]
};

class If97 {
 public:
  static Real R() { return 0.461526_r; }  // [kJ/(kg K)]

  static WaterState region1(Real p, Real T) {
    const Jet x = Jet(7.1_r) - Jet::of_x(p / 16.53_r), y = Jet::of_y(1386 / T) - Jet(1.222_r);
    return of_gibbs(sum(IAPWS_IF97::region1_terms, x, y), p, T, p / 16.53_r, 1386 / T);
  }
  static WaterState region2(Real p, Real T) {
    const Jet tau = Jet::of_y(540 / T);
    return of_gibbs(
        ideal(IAPWS_IF97::region2_ideal, p, tau) + sum(IAPWS_IF97::region2_terms, Jet::of_x(p), tau - Jet(0.5_r)), p,
        T, p, 540 / T);
  }
  static WaterState metastable(Real p, Real T) {
    const Jet tau = Jet::of_y(540 / T);
    return of_gibbs(ideal(IAPWS_IF97::metastable_ideal, p, tau) +
                        sum(IAPWS_IF97::metastable_terms, Jet::of_x(p), tau - Jet(0.5_r)),
                    p, T, p, 540 / T);
  }
  static WaterState region5(Real p, Real T) {
    const Jet tau = Jet::of_y(1000 / T);
    return of_gibbs(ideal(IAPWS_IF97::region5_ideal, p, tau) + sum(IAPWS_IF97::region5_terms, Jet::of_x(p), tau), p,
                    T, p, 1000 / T);
  }
  // rho [kg/m3]; p [MPa] comes with the state.
  static WaterState region3(Real rho, Real T, Real& p, Real& dp_drho) {
    const Jet delta = Jet::of_x(rho / 322), tau = Jet::of_y(647.096_r / T);
    Jet phi = log(delta) * printed(IAPWS_IF97::region3_terms[0].n);
    for (std::size_t k = 1; k < std::size(IAPWS_IF97::region3_terms); ++k) {
      const IAPWS_IF97::Term& term = IAPWS_IF97::region3_terms[k];
      phi += whole(delta, term.I) * whole(tau, term.J) * printed(term.n);
    }
    const Real d = delta.v, t = tau.v, RT = R() * T;
    const Real first = d * phi.x, mixed = first - d * t * phi.xy, stiff = 2 * first + d * d * phi.xx;
    p = rho * RT * first / 1000;
    dp_drho = RT * stiff / 1000;
    const Real w2 = RT * (stiff - square(mixed) / (t * t * phi.yy));  // [kJ/kg]
    return {rho, RT * (t * phi.y + first), R() * (t * phi.y - phi.v), w2 * rho / (1000 * p)};
  }
  // The density of a pressure next to a guess.
  static bool region3_density(Real p, Real T, Real& rho) {
    for (int i = 0; i < 60; ++i) {
      Real at, slope;
      region3(rho, T, at, slope);
      const Real step = (p - at) / slope;
      rho += step;
      if (abs(step) < 1e-28_r * rho) return true;
    }
    return false;
  }

  static Real saturation_pressure(Real T) {
    Real n[10];
    for (std::size_t i = 0; i < 10; ++i) n[i] = printed(IAPWS_IF97::saturation[i]);
    const Real theta = T + n[8] / (T - n[9]);
    const Real A = theta * theta + n[0] * theta + n[1], B = n[2] * theta * theta + n[3] * theta + n[4],
               C = n[5] * theta * theta + n[6] * theta + n[7];
    return pow(2 * C / (-B + sqrt(B * B - 4 * A * C)), 4);
  }
  static Real boundary23(Real T) {
    return printed(IAPWS_IF97::boundary23[0]) + printed(IAPWS_IF97::boundary23[1]) * T +
           printed(IAPWS_IF97::boundary23[2]) * T * T;
  }

 private:
  static Jet whole(const Jet& x, int n) {
    Jet power(1);
    for (int k = 0; k < std::abs(n); ++k) power = power * x;
    return n < 0 ? pow(power, -1) : power;
  }
  template <std::size_t size>
  static Jet sum(const IAPWS_IF97::Term (&terms)[size], const Jet& x, const Jet& y) {
    Jet total;
    for (const IAPWS_IF97::Term& term : terms) total += whole(x, term.I) * whole(y, term.J) * printed(term.n);
    return total;
  }
  template <std::size_t size>
  static Jet ideal(const IAPWS_IF97::IdealTerm (&terms)[size], Real p, const Jet& tau) {
    Jet total = log(Jet::of_x(p));
    for (const IAPWS_IF97::IdealTerm& term : terms) total += whole(tau, term.J) * printed(term.n);
    return total;
  }
  static WaterState of_gibbs(const Jet& g, Real p, Real T, Real reduced_p, Real tau) {
    const Real RT = R() * T, v = RT * reduced_p * g.x / (1000 * p);
    const Real mixed = g.x - tau * g.xy;
    const Real w2 = RT * square(g.x) / (square(mixed) / (tau * tau * g.yy) - g.xx);  // [kJ/kg]
    return {1 / v, RT * tau * g.y, R() * (tau * g.y - g.v), w2 / (1000 * p * v)};
  }
};

}  // namespace norvane::referee
