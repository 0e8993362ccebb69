#include "math/flow/differential_pressure.h"

#include "core/elementary.h"

namespace norvane::differential_pressure {

States::States(const Measurement& measured, const Units& units) noexcept
    : measured_(measured), absolute_zero_(units.absolute_zero) {
  const double difference = measured.dp / units.dp_per_pressure;
  if (measured.pressure_location == Location::upstream) {
    pressure_.upstream = measured.pressure;
    pressure_.downstream = measured.pressure - difference;
  } else {
    pressure_.upstream = measured.pressure + difference;
    pressure_.downstream = measured.pressure;
  }
  n_rho_ = measured.density_exponent != 0.0 ? measured.density_exponent : 1.0 / measured.kappa;
  n_T_ = measured.temperature_correction == TemperatureCorrection::isentropic
             ? (1.0 - measured.kappa) / measured.kappa
             : measured.temperature_exponent;
  log_ratio_.downstream =
      pressure_.downstream == pressure_.upstream ? 0.0 : elementary::log(pressure_.downstream / pressure_.upstream);
  pressure_.recovered = pressure_.downstream;
  log_ratio_.recovered = log_ratio_.downstream;
}

void States::set_recovered_pressure(double p3) noexcept {
  if (p3 == pressure_.recovered) return;
  pressure_.recovered = p3;
  log_ratio_.recovered = p3 == pressure_.upstream ? 0.0 : elementary::log(p3 / pressure_.upstream);
}

namespace {

// (p_x/p_loc)^n from the difference of the pressures' logarithms. No change of pressure, or the exponent 0,
// leaves the value alone even where a pressure is zero.
double power(double log_ratio, double n) noexcept {
  return log_ratio == 0.0 || n == 0.0 ? 1.0 : elementary::exp(n * log_ratio);
}

}  // namespace

double States::temperature(Location x) const noexcept {
  const Location at = measured_.temperature_location;
  if (x == at) return measured_.temperature;
  if (measured_.temperature_correction == TemperatureCorrection::joule_thomson)
    return measured_.temperature + (pressure_[x] - pressure_[at]) * n_T_;
  const double factor = power(log_ratio_[at] - log_ratio_[x], n_T_);
  // The exact input where nothing changes, without the rounding of a detour through absolute temperature.
  return factor == 1.0 ? measured_.temperature : (measured_.temperature + absolute_zero_) * factor - absolute_zero_;
}

double States::density(Location x) const noexcept {
  const Location at = measured_.density_location;
  return x == at ? measured_.density : measured_.density * power(log_ratio_[x] - log_ratio_[at], n_rho_);
}

void clear_unmeasured(const Measurement& measured, ThreePoints& temperature, ThreePoints& density) noexcept {
  for (const Location at : {Location::upstream, Location::downstream, Location::recovered}) {
    if (at != measured.temperature_location) temperature[at] = 0.0;
    if (at != measured.density_location) density[at] = 0.0;
  }
}

bool all_finite(const Measurement& m) noexcept {
  return all_finite(
      {m.dp, m.pressure, m.temperature, m.density, m.viscosity, m.kappa, m.temperature_exponent, m.density_exponent});
}

bool all_finite(const Geometry& g) noexcept {
  return all_finite({g.pipe_diameter, g.pipe_expansion, g.pipe_reference_temperature, g.device_diameter,
                     g.device_expansion, g.device_reference_temperature});
}

bool all_finite(const ThreePoints& points) noexcept {
  return all_finite({points.upstream, points.downstream, points.recovered});
}

}  // namespace norvane::differential_pressure
