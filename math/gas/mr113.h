// GSSSD MR 113-03: properties of moist petroleum gas, by the library of the method's owner.
//
// The equations are not part of this build. The library "mr113_3.dll" is looked for once, in the folder of this
// module; how its entry is called is not public, so that it is not called even where it is found.
#pragma once

#include "core/outcome.h"

namespace norvane::MR113 {

struct Arguments {
  double pressure = 0.0;     // absolute [MPa]
  double temperature = 0.0;  // [K]
  double humidity = 0.0;     // relative, 0 to 1
  // Mole fractions of the dry gas.
  double methane = 1.0;
  double ethane = 0.0;
  double propane = 0.0;
  double butanes = 0.0;
  double pentanes = 0.0;
  double hexanes_plus = 0.0;
  double nitrogen = 0.0;
  double carbon_dioxide = 0.0;
  double hydrogen_sulfide = 0.0;
};

struct Result {
  double z = 0.0;                         // compressibility factor
  double zc = 0.0;                        // at standard conditions, 293.15 K and 0.101325 MPa
  double k = 0.0;                         // z/zc
  double mass_density = 0.0;              // [kg/m3]
  double standard_density = 0.0;          // at standard conditions [kg/m3]
  double dry_standard_density = 0.0;      // of the dry gas [kg/m3]
  double isentropic_exponent = 0.0;       // [-]
  double viscosity = 0.0;                 // dynamic [Pa s]
  double molar_mass = 0.0;                // [kg/kmol]
  double water_content = 0.0;             // mole fraction
  double speed_of_sound = 0.0;            // [m/s]
  double relative_density = 0.0;          // [-]
  double superior_calorific_value = 0.0;  // at standard conditions [MJ/m3]
  double inferior_calorific_value = 0.0;  // at standard conditions [MJ/m3]
  bool out_of_range = false;
};

enum Status : int { library_error = 4 };

// Status 1: an argument that no gas has; found before the library is looked for. Else status 4.
Outcome calculate(const Arguments& in, Result& out) noexcept;

}  // namespace norvane::MR113
