// OIML R 22 (1975): density, mass content and volume content of mixtures of ethanol and water, -20 to 40 degC.
#pragma once

#include "core/coefficients.h"
#include "core/outcome.h"

namespace norvane::OIML_R22 {

enum class Mode : int { content_of_density = 1, density_of_mass_content = 2, density_of_volume_content = 3 };

struct Arguments {
  Mode mode = Mode::content_of_density;
  double density = 950.0;       // kg/m3 at the temperature; read in mode 1
  double temperature = 20.0;    // degC
  double mass_content = 0.0;    // %; read in mode 2
  double volume_content = 0.0;  // % at 20 degC; read in mode 3
  bool hydrometer = false;      // refused: its correction is not part of this build
};

struct Result {
  double density = 0.0;         // kg/m3 at the temperature
  double mass_content = 0.0;    // %
  double volume_content = 0.0;  // % at 20 degC
  double density_20 = 0.0;      // kg/m3 at 20 degC
  double ctl = 0.0;             // density/density_20
  bool out_of_range = false;    // the formula was extrapolated beyond -20 to 40 degC (modes 2 and 3)
};

// Errors: argument_error for what is not finite, a content outside 0 to 100 %, a mode outside the list, in mode 1 a
// temperature outside -20 to 40 degC, beyond which a density may belong to several contents; calculation_error for a
// density that no mixture has at the temperature, or that is no positive number.
Outcome calculate(const Arguments& in, Result& out) noexcept;

extern const CoefficientSet coefficient_set;

}  // namespace norvane::OIML_R22
