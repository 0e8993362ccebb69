// Sarasota vibrating-element densitometer: density from the period, with the period at vacuum corrected for
// temperature and pressure. The constants come from the calibration certificate of the single instrument.
#pragma once

#include "math/densitometer/densitometer.h"

namespace norvane::Sarasota {

struct Meter {
  double period;           // us
  double temperature;      // degC
  double pressure;         // bar gauge
  double ref_temperature;  // degC
  double ref_pressure;     // bar gauge
  bool temperature_correction;
  bool pressure_correction;
  double d0;                       // kg/m3
  double t0;                       // us
  double k;                        // -
  double temperature_coefficient;  // us/degC
  double pressure_coefficient;     // us/bar
};

struct Density {
  double density;  // kg/m3
};

// calculation_error: a corrected period constant of zero, or a density outside 0 to 3000 kg/m3.
Outcome density(const Meter& meter, Density& result) noexcept;

}  // namespace norvane::Sarasota
