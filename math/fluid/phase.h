// Density of a pure fluid at a pressure and temperature: the stable one of the two below the critical temperature.
//
//   delta  density over the critical one          target  p/(rho_c R T)
//
// The saturation pressure decides about the phase. Where an approximation of it is not sure, both densities are
// sought and their Gibbs energies compared; each branch is entered from outside, so that no root
// within the loop of the isotherm is met. At the saturation pressure itself the liquid is answered.
#pragma once

#include <algorithm>
#include <cmath>

#include "math/fluid/branch.h"

namespace norvane::fluid {

enum class Wanted { stable, liquid, gas };

// What is known about a fluid at a temperature before its equation is asked.
struct Guess {
  double reduced_temperature;  // T/T_c
  double critical_z;           // p_c/(rho_c R T_c)
  double acentricity;          // m of the cubic equation: 0.37464 + 1.54226 omega - 0.26992 omega^2
  double saturation;           // target at an approximate saturation pressure, below the critical temperature
  double uncertainty;          // share by which that may be off
  double dense_limit;          // delta up to which the dense branch is known to rise
  bool convex = true;          // the dense branch is convex down from there
};

// Leading terms of the virial series, target = delta + B delta^2 + C delta^3 + ...
struct Virials {
  double B, C;
};

// Start on the dilute branch: two steps towards the root of the virial series, which has it
// from below as long as the series rises.
inline double dilute_start(double target, const Virials& virials) noexcept {
  double delta = target / (1.0 + std::max(virials.B, -0.25 / target) * target);
  for (int i = 0; i < 2; ++i) {
    const double slope = 1.0 + delta * (2.0 * virials.B + 3.0 * virials.C * delta);
    const double value = delta * (1.0 + delta * (virials.B + delta * virials.C));
    if (!(slope > 0.2)) break;
    delta -= (value - target) / slope;
  }
  return delta;
}

// Start on the dense branch: the liquid root of the cubic equation of Peng and Robinson (1976), in z, from below; but
// not below what saturated liquids of simple molecules have within some percent.
inline double dense_start(double target, const Guess& guess) noexcept {
  const double Tr = guess.reduced_temperature, zc = guess.critical_z;
  const double eighth = std::sqrt(std::sqrt(std::sqrt(std::max(1.0 - Tr, 0.0))));
  const double saturated = 1.0 + 2.35 * eighth * eighth * eighth;
  const double attraction = 1.0 + guess.acentricity * (1.0 - std::sqrt(Tr));
  const double b = 0.0778 / zc, a = 0.45724 * attraction * attraction / (zc * Tr);  // of delta
  const double B = b * target, A = a * target;
  const double c2 = B - 1.0, c1 = A - B * (3.0 * B + 2.0), c0 = B * (B * (1.0 + B) - A);
  double z = B;
  for (int i = 0; i < 4; ++i) {
    const double value = ((z + c2) * z + c1) * z + c0, slope = (3.0 * z + 2.0 * c2) * z + c1;
    if (!(slope > 0.0)) break;
    z -= value / slope;
  }
  return std::min(std::max(target / z, saturated), guess.dense_limit);
}

// An Isotherm gives target and its slope at a delta, operator(); virials(); and gibbs(delta): g/(R T) without what
// depends on the temperature alone. False when no density is found on the branch wanted.
template <class Isotherm>
bool phase_density(const Isotherm& isotherm, double target, const Guess& guess, Wanted wanted,
                   double& delta) noexcept {
  const auto find = [&](Branch::Side side, double start, double& root) {
    const Branch branch{.side = side,
                        .start = start,
                        .limit = 1.0,
                        .zero_slope = 1.0,
                        .curved = side == Branch::dilute || guess.convex};
    return find_density(isotherm, target, branch, root);
  };
  const auto find_liquid = [&](double& root) { return find(Branch::dense, dense_start(target, guess), root); };
  const auto find_gas = [&](double& root) {
    return find(Branch::dilute, std::min(dilute_start(target, isotherm.virials()), 0.9), root);
  };
  if (!(guess.reduced_temperature < 1.0)) {
    double start = dilute_start(target, isotherm.virials());
    if (!(start > 0.0 && start < 0.6)) start = std::max(dense_start(target, guess), 0.6);
    return find(Branch::whole, start, delta);
  }
  if (wanted != Wanted::stable) return wanted == Wanted::liquid ? find_liquid(delta) : find_gas(delta);
  if (target > guess.saturation * (1.0 + guess.uncertainty)) return find_liquid(delta);
  if (target < guess.saturation * (1.0 - guess.uncertainty)) return find_gas(delta);
  double liquid = 0.0, gas = 0.0;
  const bool has_liquid = find_liquid(liquid), has_gas = find_gas(gas);
  if (has_liquid && has_gas) {
    delta = isotherm.gibbs(liquid) <= isotherm.gibbs(gas) ? liquid : gas;
    return true;
  }
  // An equation's own critical temperature may lie below that of the substance: no loop, and no branches.
  if (!has_liquid && !has_gas) return find(Branch::whole, 1.0, delta);
  delta = has_liquid ? liquid : gas;
  return true;
}

}  // namespace norvane::fluid
