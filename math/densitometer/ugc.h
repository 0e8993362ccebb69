// UGC vibrating-element densitometer: a parabola of the period, with corrections for temperature and pressure
// that are parabolas of the density. The constants come from the calibration certificate of the single instrument.
#pragma once

#include "core/outcome.h"

namespace norvane::UGC {

struct Meter {
  double period;           // us
  double temperature;      // degC
  double pressure;         // bar gauge
  double ref_temperature;  // degC
  double ref_pressure;     // bar gauge
  bool temperature_correction;
  bool pressure_correction;
  double k0, k1, k2;     // kg/m3, kg/(m3 us), kg/(m3 us2)
  double kt0, kt1, kt2;  // kg/(m3 degC), 1/degC, m3/(kg degC)
  double kp0, kp1, kp2;  // kg/(m3 bar), 1/bar, m3/(kg bar)
};

struct Density {  // kg/m3
  double uncorrected;
  double corrected;
};

// Any density is answered, also a negative one. calculation_error only for a result that is no finite number.
Outcome density(const Meter& meter, Density& density) noexcept;

}  // namespace norvane::UGC
