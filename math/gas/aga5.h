// AGA-5: heating value of a natural gas from its specific gravity and the diluents it holds.
#pragma once

#include <array>
#include <cstddef>

#include "core/coefficients.h"
#include "core/outcome.h"

namespace norvane::AGA5 {

// Components in the order of AGA-8 with neo-pentane behind; eight of them are looked at.
inline constexpr std::size_t n_fractions = 22;

struct Gas {
  std::array<double, n_fractions> fractions;  // mole fractions, never percent: they are not normalised
  double specific_gravity;                    // molar mass of the gas over that of air, 28.9644 lb/lbmol
};

struct Result {
  double mass_based = 0.0;    // Btu/lbm
  double volume_based = 0.0;  // Btu/scf
};

// argument_error when the eight diluents exceed 1 in sum or one is negative, calculation_error for a specific gravity
// below 1e-6 or a result that is no finite number.
Outcome calculate(const Gas& gas, Result& result) noexcept;

extern const CoefficientSet coefficient_set;

}  // namespace norvane::AGA5
