// AGA-5: heating value of a natural gas from its specific gravity and the diluents it holds.
#pragma once

#include <cstddef>
#include <span>

namespace norvane::AGA5 {

// Components in the order of AGA-8 with neo-pentane behind; eight of them are looked at.
inline constexpr std::size_t n_fractions = 22;

enum class Status : int { ok = 0, bad_composition = 1, failed = 2 };

struct Result {
  Status status = Status::ok;
  double mass_based = 0.0;    // Btu/lbm
  double volume_based = 0.0;  // Btu/scf
};

// fractions: mole fractions (never percent: they are not normalised). specific_gravity: molar mass of the gas
// over that of air, 28.9644 lb/lbmol. The composition is refused when the eight diluents exceed 1 in sum or
// one is negative; a specific gravity below 1e-6 fails.
Result calculate(std::span<const double, n_fractions> fractions, double specific_gravity) noexcept;

}  // namespace norvane::AGA5
