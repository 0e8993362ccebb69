// Solartron densitometers. Check values: calibration point and velocity-of-sound factors of the gas meter's
// manuals (GDM 2016, 7812 2012); calibration of the 3098 with two gases.
//
//   tau  period [us]           dt, dp  temperature and pressure less their reference [degC, bar]
//   rho  density [kg/m3]       G       relative density / (cp/cv) [-]
#include "math/densitometer/solartron.h"

#include <cmath>

namespace norvane::Solartron {
namespace {

using densitometer::plausible;

// The manuals count the absolute temperature from -273 degC.
constexpr double kelvin = 273.0;

double from_period(double k0, double k1, double k2, double tau) { return k0 + k1 * tau + k2 * (tau * tau); }

double for_temperature(double rho, double k18, double k19, double dt) { return rho * (1.0 + k18 * dt) + k19 * dt; }

// Velocity-of-sound correction of the liquid meters (manual of the 7835, 7845, 7846, 7847, 6.24), to the
// sound velocity that the calibration liquids had at this density. Nothing is known outside these limits,
// and nothing corrected.
constexpr double sound_from = 300.0, sound_to = 1400.0;  // kg/m3
constexpr double branches_meet = 1100.0;                 // kg/m3

double calibration_velocity(double rho) { return rho <= branches_meet ? 1.455 * rho + 100.0 : 2690.0 - 0.9 * rho; }

double for_velocity(double rho, double velocity) {
  const double calibration = calibration_velocity(rho);
  return rho * (1.0 + 1.4e6 / (rho + 1400.0) * (1.0 / (calibration * calibration) - 1.0 / (velocity * velocity)));
}

Outcome judged(double uncorrected, double temperature_corrected, double corrected) noexcept {
  using densitometer::no_density;
  if (!plausible(uncorrected)) return no_density("uncorrected density", uncorrected);
  if (!plausible(temperature_corrected)) return no_density("temperature corrected density", temperature_corrected);
  if (!plausible(corrected)) return no_density("corrected density", corrected);
  return {};
}

}  // namespace

Outcome gas_density(const GasMeter& m, GasDensity& density) noexcept {
  double g = m.gas_value;
  if (m.method == GasValue::from_relative_density) {
    if (m.specific_heat_ratio == 0.0) return blame(m.specific_heat_ratio, calculation_error, u"must not be 0");
    g = m.relative_density / m.specific_heat_ratio;
  }

  density.uncorrected = from_period(m.k0, m.k1, m.k2, m.period);
  density.temperature_corrected = density.uncorrected;
  if (m.temperature_correction) {
    density.temperature_corrected =
        for_temperature(density.uncorrected, m.k18, m.k19, m.temperature - m.ref_temperature);
  }
  density.corrected = density.temperature_corrected;
  if (m.sound_correction) {
    const double divisor = density.temperature_corrected + m.k4;
    const double absolute = m.temperature + kelvin;
    if (divisor == 0.0)
      return blame(m.k4, calculation_error, u"and the temperature corrected density are 0 together");
    if (absolute == 0.0) return blame(m.temperature, calculation_error, u"must be above %", -kelvin);
    density.corrected = density.temperature_corrected * (1.0 + m.k3 / divisor * (m.calibration_gas - g / absolute));
  }
  return judged(density.uncorrected, density.temperature_corrected, density.corrected);
}

Outcome liquid_density(const LiquidMeter& m, LiquidDensity& density) noexcept {
  density.uncorrected = from_period(m.k0, m.k1, m.k2, m.period);
  density.temperature_corrected = density.uncorrected;
  if (m.temperature_correction) {
    density.temperature_corrected =
        for_temperature(density.uncorrected, m.k18, m.k19, m.temperature - m.ref_temperature);
  }
  density.pressure_corrected = density.temperature_corrected;
  if (m.pressure_correction) {
    const double dp = m.pressure - m.ref_pressure;
    const double k20 = m.k20a + m.k20b * dp;
    const double k21 = m.k21a + m.k21b * dp;
    density.pressure_corrected = density.temperature_corrected * (1.0 + k20 * dp) + k21 * dp;
  }
  const double rho = density.pressure_corrected;
  density.corrected = rho;
  switch (m.sound_correction) {
    case SoundCorrection::none: break;
    case SoundCorrection::kr_kj: {
      const double above = rho - m.kj;
      density.corrected = rho + m.kr * (above * above * above);
      break;
    }
    case SoundCorrection::velocity:
      if (!(rho >= sound_from && rho <= sound_to)) break;
      if (m.velocity_of_sound == 0.0) return blame(m.velocity_of_sound, calculation_error, u"must not be 0");
      density.corrected = for_velocity(rho, m.velocity_of_sound);
      break;
  }
  return judged(density.uncorrected, density.temperature_corrected, density.corrected);
}

Outcome specific_gravity(const GravityMeter& m, Gravity& gravity) noexcept {
  gravity.sg = from_period(m.k0, 0.0, m.k2, m.period);
  if (!std::isfinite(gravity.sg)) return failure(calculation_error, u"the relative density is no finite number");
  return {};
}

}  // namespace norvane::Solartron
