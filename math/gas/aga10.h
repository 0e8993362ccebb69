// AGA Report No. 10 (2003): speed of sound and other thermodynamic properties of natural gas, from the AGA-8
// detail equation, its derivatives and ideal-gas correlations.
#pragma once

#include <array>
#include <cstddef>
#include <span>

#include "math/gas/aga8.h"

namespace norvane::AGA10 {

// What is to be calculated. Heat capacities, enthalpies and entropies are zero for no state in particular:
// the enthalpy of each ideal gas is zero at 0 K, its entropy is the absolute one at 101.325 kPa.
enum class Property : std::size_t {
  molar_mass,              // [kg/kmol]
  base_molar_density,      // [mol/m3]
  flowing_molar_density,   // [mol/m3]
  base_density,            // [kg/m3]
  flowing_density,         // [kg/m3]
  ideal_relative_density,  // molar mass over that of air
  real_relative_density,   // at base conditions
  speed_of_sound,          // [m/s]
  base_z,                  // compressibility factor
  flowing_z,
  supercompressibility,  // Fpv = sqrt(base_z / flowing_z)
  ideal_enthalpy,        // [kJ/kg]
  enthalpy,              // [kJ/kg]
  entropy,               // [kJ/(kg K)]
  ideal_cp,              // [kJ/(kg K)]
  cp,                    // [kJ/(kg K)]
  cv,                    // [kJ/(kg K)]
  ideal_molar_cp,        // [kJ/(kmol K)]
  molar_cp,              // [kJ/(kmol K)]
  molar_cv,              // [kJ/(kmol K)]
  cp_over_cv,
  isentropic_exponent,     // kappa
  critical_flow_factor,    // C* of a nozzle with this stagnation state
  ideal_molar_enthalpy,    // [kJ/kmol]
  molar_enthalpy,          // [kJ/kmol]
  ideal_gas_flow_factor,   // C* of a perfect gas with the ideal gas's ratio of heat capacities
  isentropic_flow_factor,  // C* of a perfect gas with this isentropic exponent, over sqrt(Z)
  count
};
using Properties = std::array<double, static_cast<std::size_t>(Property::count)>;

struct Conditions {
  double p;  // [MPa]
  double T;  // [K]
};
inline constexpr Conditions base_conditions{0.101325, 273.15};

enum Result : int {
  success = 0,
  flowing_density_failed = -1,  // no density at flowing conditions
  base_density_failed = -6,     // no density at base conditions
  unstable = 1,                 // a state without speed of sound: dp/drho or cv not positive
  throat_not_found = 2          // the nozzle-throat iteration did not converge
};

// Fills the requested properties and leaves the others as they are.
Result calculate(const AGA8::Composition& x, const Conditions& flowing, const Conditions& base,
                 std::span<const Property> requested, Properties& values) noexcept;

// Ideal-gas mixture at a temperature T [K]; its entropy is that at 101.325 kPa, without the entropy of mixing.
enum class Entropy { leave_out, include };  // leaving it out saves the logarithms
helmholtz::IdealGas ideal_mixture(const AGA8::Composition& x, double T, Entropy entropy) noexcept;

// The state of a mixture at a temperature T [K] and density rho [kmol/m3], per mole.
using MolarState = helmholtz::State;
MolarState state(const AGA8::Mixture& mixture, const AGA8::Composition& x, double T, double rho,
                 Entropy entropy) noexcept;

// ---- A gas as it is given ----------------------------------------------------------------------------------------

struct Gas {
  AGA8::CompositionInput composition;  // fractions
  AGA8::NeoPentaneMode neo_pentane;
  double pressure;     // absolute [MPa]
  double temperature;  // [degC]
  int critical_flow;   // 1: without the three critical flow factors, which are then 0; 2: with them
};

struct Answer {
  Properties values{};
  int range = 0;  // status: 0 normal, 1 extended, 2 out of range
};

// Statuses: no_convergence without a density, calculation_error for a composition that is none, for a state without speed of
// sound and for a nozzle without throat, AGA8::composition_error for a sum that is not 1. The call is refused when an
// amount lies outside 0 to 1.
Outcome speed_of_sound(const Gas& gas, Answer& answer) noexcept;
Outcome all_properties(const Gas& gas, Answer& answer) noexcept;

}  // namespace norvane::AGA10
