#include "math/densitometer/sarasota.h"

namespace norvane::Sarasota {

Outcome density(const Meter& m, double& rho) noexcept {
  double t0c = m.t0;
  if (m.temperature_correction) t0c += m.temperature_coefficient * (m.temperature - m.ref_temperature);
  if (m.pressure_correction) t0c += m.pressure_coefficient * (m.pressure - m.ref_pressure);
  if (t0c == 0.0) return Outcome::calculation_error;
  const double d = (m.period - t0c) / t0c;
  rho = m.d0 * d * (2.0 + m.k * d);
  return densitometer::plausible(rho) ? Outcome::ok : Outcome::calculation_error;
}

}  // namespace norvane::Sarasota
