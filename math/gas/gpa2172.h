// GPA 2172: gross and net heating value, relative density, compressibility factor and molar mass of a natural
// gas from its composition, with the component properties of GPA 2145.
#pragma once

#include <array>
#include <cstddef>

#include "core/outcome.h"

namespace norvane::GPA2172 {

// Components in the order of AGA-8 with neo-pentane behind.
inline constexpr std::size_t n_fractions = 22;

// Where the fraction of neo-pentane goes, which GPA 2145 does not hold.
enum class NeoPentane : int { to_isopentane = 1, to_n_pentane = 2, neglect = 3 };

inline constexpr int composition_error = 3;  // status

struct Gas {
  std::array<double, n_fractions> fractions;  // mole fractions that sum to 1 within 0.0001
  int edition;                                // 1: 2000, 2: 2003, 3: 2009, 4: 2016
  NeoPentane mode;
};

// One basis' results; metric units, customary units.
struct Basis {
  double gross_volume = 0.0;            // real gas, MJ/m3, Btu/scf
  double molar_mass = 0.0;              // kg/kmol, lb/lbmol
  double ideal_relative_density = 0.0;  // -
  double real_relative_density = 0.0;   // -
  double compressibility = 0.0;         // Z, -
  double gross_mass = 0.0;              // MJ/kg, Btu/lbm; see calculate
  double net_volume = 0.0;              // real gas, MJ/m3, Btu/scf
};

struct Result {
  Basis wet{};        // the gas as analysed
  Basis dry{};        // water removed
  Basis saturated{};  // dry gas saturated with water at base conditions
};

// Statuses: argument_error for an edition or a mode outside its list, composition_error for a sum that is not 1,
// calculation_error for a negative fraction and for a gas of nothing but water. The gross value by mass is the mole fraction-weighted sum of the components' values by mass, not the
// mass-weighted mean: it is exact for a pure gas and 2 to 4 % off it for ordinary mixtures.
Outcome metric(const Gas& gas, Result& result) noexcept;     // 15 degC, 101.325 kPa
Outcome customary(const Gas& gas, Result& result) noexcept;  // 60 degF, 14.696 psia

}  // namespace norvane::GPA2172
