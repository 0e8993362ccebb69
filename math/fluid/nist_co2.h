// Carbon dioxide: the reference equation of state behind NIST's data.
//
// Source: R. Span, W. Wagner, A new equation of state for carbon dioxide covering the fluid region from the
// triple-point temperature to 1100 K at pressures up to 800 MPa, J. Phys. Chem. Ref. Data 25 (1996) 1509-1596. Check
// values: Tables 34 and 35.
#pragma once

#include "core/outcome.h"
#include "math/common/helmholtz.h"

namespace norvane::NIST_CO2 {

inline constexpr double molar_mass = 44.0098;                 // [kg/kmol]
inline constexpr double molar_gas_constant = 8.31451;         // [J/(mol K)]
inline constexpr double R = molar_gas_constant / molar_mass;  // [kJ/(kg K)]
inline constexpr double critical_temperature = 304.1282;      // [K]
inline constexpr double critical_pressure = 7.3773;           // [MPa]
inline constexpr double critical_density = 467.6;             // [kg/m3]
inline constexpr double triple_temperature = 216.592;         // [K]
inline constexpr double highest_temperature = 1100.0;         // [K]
inline constexpr double highest_pressure = 800.0;             // [MPa]

struct Arguments {
  double pressure = 0.101325;   // [MPa], above 0
  double temperature = 293.15;  // [K], above 0
};

enum class Range : int { normal = 0, outside = 1 };

struct Result {
  double density = 0.0;         // [kg/m3]
  Range range = Range::normal;  // outside: below the triple point, above 1100 K or 800 MPa, or solid
};

// Density of the stable phase; at the saturation pressure the liquid's. Errors: argument_error for a number that is
// no pressure or temperature, no_convergence when the equation has no density there, calculation_error when the
// density is not a positive number. Beyond its range the equation is continued, with a remark.
Outcome calculate(const Arguments& in, Result& out) noexcept;

// ---- The equation -----------------------------------------------------------------------------------------------

// Every property at T [K] and rho [kg/m3], per kilogram: kJ. Enthalpy and entropy are zero for the ideal gas at
// 298.15 K and 101.325 kPa.
helmholtz::State state(double T, double rho) noexcept;

// Density [kg/m3] of the stable phase at p [MPa] and T [K]. False when the equation has none.
bool density(double p, double T, double& rho) noexcept;

double vapour_pressure(double T) noexcept;   // [MPa], eq. (3.13): within 0.02 % of the equation of state
double melting_pressure(double T) noexcept;  // [MPa], eq. (3.10), from the triple point

}  // namespace norvane::NIST_CO2
