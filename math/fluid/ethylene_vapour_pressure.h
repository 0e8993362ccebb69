// Vapour pressure of ethylene, near enough to tell the phases apart where they are not close to each other.
#pragma once

#include <cmath>

#include "core/elementary.h"

namespace norvane::ethylene {

// Equation of Smukala, Span and Wagner, J. Phys. Chem. Ref. Data 29 (2000) 1053, below the
// critical temperature. [MPa], T [K]
inline double vapour_pressure(double T) noexcept {
  constexpr double critical_temperature = 282.35, critical_pressure = 5.0418;
  const double theta = std::fmax(1.0 - T / critical_temperature, 0.0), root = std::sqrt(theta);
  const double theta2 = theta * theta;
  const double sum = theta * (-6.3905741 + 1.4060338 * root) - 1.6589923 * theta2 * root +
                     1.0278028 * theta2 * theta - 2.5071716 * theta2 * theta2 * root;
  return critical_pressure * elementary::exp(sum * critical_temperature / T);
}

}  // namespace norvane::ethylene
