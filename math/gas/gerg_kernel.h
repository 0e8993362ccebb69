// GERG by the vector instructions of the processor. For the files of the equation.
#pragma once

#include <cstddef>

#include "core/kernel.h"
#include "math/gas/gerg.h"

namespace norvane::GERG2008 {

// Every kernel gives the bits of every other.
struct Kernel {
  // Vapour densities [kmol/m3] of rows with one mixture at temperatures T [K] and pressures p [MPa]. NaN where the
  // pressure may not rise with density all the way, and where the search fails: left to Isotherm::vapour_density.
  void (*densities)(const Mixture& mixture, const double* T, const double* p, double* rho, std::size_t rows) noexcept;
  // Properties at temperatures and densities of one mixture, without the entropy.
  void (*states)(const Mixture& mixture, const double* T, const double* rho, helmholtz::State* states,
                 std::size_t rows) noexcept;
};

// The one of an instruction set; null where the program has none for it. Runs on processors with these instructions only.
const Kernel* kernel(InstructionSet set) noexcept;
// The one in use.
const Kernel& kernel() noexcept;

}  // namespace norvane::GERG2008
