// API MPMS Chapter 11.1:2004, the procedures 11.1.6.1 and 11.1.6.2, the second one solved to its end.
#pragma once

#include "math/liquid/api_11_1_2004.h"
#include "tests/referee/quad.h"

namespace norvane::referee {

struct VolumeFactors {
  Real alpha60, ctl, f, cpl;  // 1/degF, [-], 1/psi, [-]
};

// Temperature of the ITS-90 [degF] on the IPTS-68.
inline Real ipts68(Real t) {
  const Real a[] = {-0.148759_r, -0.267408_r, 1.080760_r, 1.269056_r,
                    -4.089591_r, -1.871251_r, 7.438081_r, -3.536296_r};
  const Real celsius = (t - 32) / 1.8_r;
  Real difference = 0;
  for (int i = 0; i < 8; ++i) difference += a[i] * pow(celsius / 630, i + 1);
  return (celsius - difference) * 1.8_r + 32;
}

// Factors of a density at 60 degF [kg/m3] with K0, K1 and K2 at a temperature [degF] and pressure [psi gauge].
inline VolumeFactors volume_factors(const API_11_1_2004::Constants& k, Real rho60, Real t, Real p) {
  const Real K0 = printed(k.k0), K1 = printed(k.k1), K2 = printed(k.k2), delta60 = 0.01374979547_r;
  if (p < 0) p = 0;
  const Real t68 = ipts68(t);
  const Real A = delta60 / 2 * ((K0 / rho60 + K1) / rho60 + K2);
  const Real B = (2 * K0 + K1 * rho60) / (K0 + (K1 + K2 * rho60) * rho60);
  const Real rho_star = rho60 * (1 + (exp(A * (1 + 0.8_r * A)) - 1) / (1 + A * (1 + 1.6_r * A) * B));
  VolumeFactors v;
  v.alpha60 = (K0 / rho_star + K1) / rho_star + K2;
  const Real dt = t68 - 60.0068749_r;
  v.ctl = exp(-v.alpha60 * dt * (1 + 0.8_r * v.alpha60 * (dt + delta60)));
  v.f = exp(-1.9947_r + 0.00013427_r * t68 + (793920 + 2326 * t68) / square(rho_star)) / 100000;
  v.cpl = 1 / (1 - v.f * p);
  return v;
}

// The density at 60 degF of an observed one, next to a guess.
inline bool base_density(const API_11_1_2004::Constants& k, Real observed, Real t, Real p, Real& rho60) {
  const auto miss = [&](Real rho) {
    const VolumeFactors v = volume_factors(k, rho, t, p);
    return rho * v.ctl * v.cpl - observed;
  };
  Real before = rho60 * (1 + 1e-7_r), miss_before = miss(before);
  for (int i = 0; i < 30; ++i) {
    const Real now = miss(rho60);
    if (abs(now) < 1e-29_r * observed || now == miss_before) return abs(now) < 1e-27_r * observed;
    const Real next = rho60 - now * (rho60 - before) / (now - miss_before);
    before = rho60;
    miss_before = now;
    rho60 = next;
  }
  return false;
}

}  // namespace norvane::referee
