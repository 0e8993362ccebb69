// Dynamic viscosity of natural gas from composition, pressure and temperature.
//
// Source: ISO 20765-5, Viscosity, Joule-Thomson coefficient, and isentropic exponent: low-pressure viscosities of
// Stiel and Thodos, mixed after Herning and Zipperer, with the dense-gas excess of Jossi, Stiel and Thodos; the
// density is that of AGA Report No. 8. This is the library's choice of a viscosity for natural gas: other
// correlations differ by some percent.
#pragma once

#include "core/coefficients.h"
#include "core/outcome.h"
#include "math/gas/aga8.h"

namespace norvane::ISO20765_5 {

struct Arguments {
  double pressure = 0.0;                 // absolute [MPa]
  double temperature = 0.0;              // [K]
  AGA8::CompositionInput composition{};  // mole amounts; neo-pentane counts as i-pentane
};

struct Result {
  double viscosity = 0.0;      // dynamic [Pa s]
  double molar_density = 0.0;  // [kmol/m3]
  bool out_of_range = false;   // outside -20 to 40 degC and 0 to 10 MPa, where natural gas was compared
};

struct Cache {
  AGA8::CDetail detail;
};

// Status 1: an argument that no gas has. Status 2: a composition that cannot be used, or a state without a density.
// AGA8::composition_error: amounts that sum neither to 1 nor to 100.
Outcome calculate(const Arguments& in, Result& out, Cache& cache) noexcept;

extern const CoefficientSet coefficient_set;

}  // namespace norvane::ISO20765_5
