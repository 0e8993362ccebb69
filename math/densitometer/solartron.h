// Solartron (Micro Motion) vibrating-element meters: gas density meters 7810, 7812 (GDM), liquid density
// meters 7835, 7845, 7846, 7847 and relative density transducers 3096, 3098. Equations of the makers'
// manuals; the constants come from the calibration certificate of the single instrument.
#pragma once

#include "math/densitometer/densitometer.h"

namespace norvane::Solartron {

// Where the gas meter's velocity-of-sound correction takes the gas value G = relative density / (cp/cv) from.
enum class GasValue : int { given = 1, from_relative_density = 2 };

struct GasMeter {
  double period;           // us
  double temperature;      // degC
  double ref_temperature;  // degC
  bool temperature_correction;
  bool sound_correction;
  double k0, k1, k2;       // kg/m3, kg/(m3 us), kg/(m3 us2)
  double k18, k19;         // 1/degC, kg/(m3 degC)
  double k3, k4;           // K kg/m3 (per unit of G), kg/m3
  double calibration_gas;  // G/T of the calibration gas [1/K]
  GasValue method;
  double gas_value;            // G
  double relative_density;     // to air
  double specific_heat_ratio;  // cp/cv
};

struct GasDensity {  // kg/m3
  double uncorrected;
  double temperature_corrected;
  double corrected;
};

// calculation_error: a zero divisor, or a stage outside 0 to 3000 kg/m3.
Outcome gas_density(const GasMeter& meter, GasDensity& density) noexcept;

enum class SoundCorrection : int { none = 0, kr_kj = 1, velocity = 2 };

struct LiquidMeter {
  double period;           // us
  double temperature;      // degC
  double pressure;         // bar gauge
  double ref_temperature;  // degC
  double ref_pressure;     // bar gauge
  bool temperature_correction;
  bool pressure_correction;
  SoundCorrection sound_correction;
  double k0, k1, k2;         // kg/m3, kg/(m3 us), kg/(m3 us2)
  double k18, k19;           // 1/degC, kg/(m3 degC)
  double k20a, k20b;         // 1/bar, 1/bar2
  double k21a, k21b;         // kg/(m3 bar), kg/(m3 bar2)
  double kr;                 // m6/kg2
  double kj;                 // kg/m3
  double velocity_of_sound;  // of the liquid [m/s]
};

struct LiquidDensity {  // kg/m3
  double uncorrected;
  double temperature_corrected;
  double pressure_corrected;  // for temperature and pressure
  double corrected;
};

// calculation_error: a zero divisor, or the uncorrected, temperature
// corrected or final density outside 0 to 3000 kg/m3.
Outcome liquid_density(const LiquidMeter& meter, LiquidDensity& density) noexcept;

struct GravityMeter {
  double period;  // us
  double k0, k2;  // -, 1/us2
};

struct Gravity {
  double sg;  // relative density
};

// SG = K0 + K2 tau^2 of the relative density transducers.
// calculation_error only for a result that is no finite number.
Outcome specific_gravity(const GravityMeter& meter, Gravity& gravity) noexcept;

}  // namespace norvane::Solartron
