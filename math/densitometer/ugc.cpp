#include "math/densitometer/ugc.h"

#include <cmath>

namespace norvane::UGC {

Outcome density(const Meter& m, Density& density) noexcept {
  const auto parabola = [](double a, double b, double c, double x) { return a + b * x + c * (x * x); };
  const double rho = parabola(m.k0, m.k1, m.k2, m.period);
  double correction = 0.0;
  if (m.temperature_correction) {
    correction += parabola(m.kt0, m.kt1, m.kt2, rho) * (m.temperature - m.ref_temperature);
  }
  if (m.pressure_correction) {
    correction += parabola(m.kp0, m.kp1, m.kp2, rho) * (m.pressure - m.ref_pressure);
  }
  density = {rho, rho + correction};
  if (!std::isfinite(density.uncorrected) || !std::isfinite(density.corrected))
    return failure(calculation_error, u"the density is no finite number");
  return {};
}

}  // namespace norvane::UGC
