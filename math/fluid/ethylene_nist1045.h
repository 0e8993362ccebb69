// Ethylene: the 32-term equation of state of NBS Technical Note 1045.
//
// Source: R. D. McCarty, R. T Jacobsen, An equation of state for fluid ethylene, National Bureau of Standards
// Technical Note 1045 (1981). Check values: Tables B-1 and B-2.
#pragma once

#include "core/outcome.h"
#include "math/common/helmholtz.h"

namespace norvane::Ethylene_NIST1045 {

inline constexpr double molar_mass = 28.054;              // [kg/kmol]
inline constexpr double R = 8.31434;                      // [J/(mol K)]
inline constexpr double critical_temperature = 282.3428;  // [K]
inline constexpr double critical_pressure = 5.0403;       // [MPa]
inline constexpr double critical_density = 7.634;         // [kmol/m3]
inline constexpr double triple_temperature = 103.986;     // [K]
inline constexpr double highest_temperature = 450.0;      // [K]
inline constexpr double highest_pressure = 40.0;          // [MPa]

// Below the critical temperature liquid and gas take the dense and the dilute root, whichever is stable.
enum class Phase : int { automatic = 1, liquid = 2, gas = 3 };

// Critical: in the box around the critical point where, by the Note itself, the density may be 10 % off.
enum class Range : int { normal = 0, critical = 1, outside = 2 };

struct Arguments {
  double pressure = 0.101325;   // [MPa], above 0
  double temperature = 293.15;  // [K], above 0
  Phase phase = Phase::automatic;
};

struct Result {
  double z = 0.0;               // compressibility factor
  double density = 0.0;         // [kg/m3]
  double molar_density = 0.0;   // [kmol/m3]
  Range range = Range::normal;  // outside: below the triple point, above 450 K or 40 MPa
};

// At the saturation pressure the answer is the liquid's. Errors: argument_error for a number that is no pressure or
// temperature or a phase outside its list, no_convergence when the phase wanted, or in solid ethylene any, has no
// such pressure, calculation_error when the density is not a positive number. Beyond its range and for a phase that
// is not the stable one the equation is continued, with a remark.
Outcome calculate(const Arguments& in, Result& out) noexcept;

// ---- The equation -----------------------------------------------------------------------------------------------

// Every property at T [K] and rho [kmol/m3], per mole. Enthalpy and entropy of the ideal gas at 298.15 K and 101.325
// kPa are 29610.0025 J/mol and 219.225 J/(mol K).
helmholtz::State state(double T, double rho) noexcept;

// Density [kmol/m3] at p [MPa] and T [K]. False when the phase has none.
bool density(double p, double T, Phase phase, double& rho) noexcept;

}  // namespace norvane::Ethylene_NIST1045
