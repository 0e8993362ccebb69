#include "math/densitometer/sarasota.h"

namespace norvane::Sarasota {

Outcome density(const Meter& m, Density& result) noexcept {
  double t0c = m.t0;
  if (m.temperature_correction) t0c += m.temperature_coefficient * (m.temperature - m.ref_temperature);
  if (m.pressure_correction) t0c += m.pressure_coefficient * (m.pressure - m.ref_pressure);
  if (t0c == 0.0) return blame(m.t0, calculation_error, u"is 0 when corrected for temperature and pressure");
  const double d = (m.period - t0c) / t0c;
  result.density = m.d0 * d * (2.0 + m.k * d);
  if (!densitometer::plausible(result.density)) return densitometer::no_density("density", result.density);
  return {};
}

}  // namespace norvane::Sarasota
