// Ethylene: the equation of state behind the IUPAC tables.
//
// Source: M. Jahangiri, R. T Jacobsen, R. B. Stewart, R. D. McCarty, Thermodynamic properties of ethylene from the
// freezing line to 450 K at pressures to 260 MPa, J. Phys. Chem. Ref. Data 15 (1986) 593-734; tabulated in
// International Thermodynamic Tables of the Fluid State, volume 10 (1988). Check values: Tables 24, 27 and 28.
//
// Uncertainty told by the authors: 0.1 % in density, 3 % in heat capacities, 1 % in the speed of sound.
#pragma once

#include "core/outcome.h"
#include "math/common/helmholtz.h"

namespace norvane::Ethylene_IUPAC {

inline constexpr double molar_mass = 28.054;                  // [kg/kmol]
inline constexpr double molar_gas_constant = 8.31434;         // [J/(mol K)]
inline constexpr double R = molar_gas_constant / molar_mass;  // [kJ/(kg K)]
inline constexpr double critical_temperature = 282.3452;      // [K], of the substance; the equation's own is 282.32 K
inline constexpr double critical_pressure = 5.0401;           // [MPa]
inline constexpr double critical_density = 7.634 * molar_mass;  // [kg/m3]
inline constexpr double triple_temperature = 103.986;           // [K]
inline constexpr double highest_temperature = 450.0;            // [K]
inline constexpr double highest_pressure = 260.0;               // [MPa]

struct Arguments {
  double pressure = 0.101325;   // [MPa], above 0
  double temperature = 293.15;  // [K], above 0
};

enum class Range : int { normal = 0, outside = 1 };

// Enthalpy and entropy of the ideal gas at 298.15 K and 101.325 kPa are 29610.08 J/mol and 219.2234 J/(mol K).
struct Result {
  double z = 0.0;               // compressibility factor
  double density = 0.0;         // [kg/m3]
  double enthalpy = 0.0;        // [kJ/kg]
  double entropy = 0.0;         // [kJ/(kg K)]
  double cp = 0.0;              // isobaric heat capacity [kJ/(kg K)]
  double cv = 0.0;              // isochoric heat capacity [kJ/(kg K)]
  double speed_of_sound = 0.0;  // [m/s]
  Range range = Range::normal;  // outside: below the triple point, above 450 K or 260 MPa
};

// Properties of the stable phase; at the saturation pressure the liquid's. Errors: argument_error for a number that
// is no pressure or temperature, no_convergence when the equation has no density there, calculation_error when a
// property is not a positive or finite number. Beyond its range the equation is continued, with a remark.
Outcome calculate(const Arguments& in, Result& out) noexcept;

// ---- The equation -----------------------------------------------------------------------------------------------

// Every property at T [K] and rho [kg/m3], per kilogram: kJ.
helmholtz::State state(double T, double rho) noexcept;

// Density [kg/m3] of the stable phase at p [MPa] and T [K]. False when the equation has none.
bool density(double p, double T, double& rho) noexcept;

double second_virial(double T) noexcept;  // [m3/kg]

}  // namespace norvane::Ethylene_IUPAC
