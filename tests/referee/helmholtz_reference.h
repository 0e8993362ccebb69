// The properties of a fluid from its residual Helmholtz energy and its ideal gas, derivatives taken of the energy
// itself.
#pragma once

#include "tests/referee/quad.h"

namespace norvane::referee {

// Per mole, the entropy at the reference pressure and with that of mixing.
struct IdealState {
  Real cp = 0, h = 0, s = 0;
};

struct HelmholtzState {
  Real T, rho, R;  // [K], [kmol/m3], [J/(mol K)]
  Jet a;           // residual Helmholtz energy over R T: x is T, y is rho

  template <class Energy>
  static HelmholtzState of(const Energy& energy, Real T, Real rho, Real R) {
    return {T, rho, R, energy(Jet::of_x(T), Jet::of_y(rho))};
  }

  Real z() const { return 1 + rho * a.y; }
  Real p() const { return rho * R * T * z(); }                                     // [kPa]
  Real dp_drho() const { return R * T * (1 + 2 * rho * a.y + rho * rho * a.yy); }  // [kPa m3/kmol]
  Real dp_dT() const { return rho * R * (z() + T * rho * a.xy); }                  // [kPa/K]
  Real cv(const IdealState& ideal) const { return ideal.cp - R - R * (2 * T * a.x + T * T * a.xx); }
  Real cp(const IdealState& ideal) const { return cv(ideal) + T * square(dp_dT() / rho) / dp_drho(); }
  Real h(const IdealState& ideal) const { return ideal.h + R * T * (rho * a.y - T * a.x); }
  Real s(const IdealState& ideal) const { return ideal.s - R * log(rho * R * T / 101.325_r) - R * (a.v + T * a.x); }
  Real M_w2(const IdealState& ideal) const { return cp(ideal) / cv(ideal) * dp_drho(); }  // [J/mol]
  Real kappa(const IdealState& ideal) const { return M_w2(ideal) / (z() * R * T); }
};

// The density of a pressure [kPa] next to a guess. False when there is none close by.
template <class Energy>
bool density_near(const Energy& energy, Real T, Real R, Real p, Real& rho) {
  for (int i = 0; i < 30; ++i) {
    const HelmholtzState state = HelmholtzState::of(energy, T, rho, R);
    const Real step = (p - state.p()) / state.dp_drho();
    rho += step;
    if (!(rho > 0)) return false;
    if (abs(step) < 1e-28_r * rho) return true;
  }
  return false;
}

}  // namespace norvane::referee
