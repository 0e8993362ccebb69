// GERG by the vector instructions of the processor. For the files of the equation.
#pragma once

#include <array>
#include <cstddef>

#include "core/kernel.h"
#include "math/gas/gerg.h"

namespace norvane::GERG2008 {

// What the four vibrations of each gas of a list add to its cp/R, h/(R T) and the logarithms of its a0/(R T).
struct VibrationParts {
  using List = std::array<double, 4 * component_count>;
  alignas(64) List cp, h, logarithms;
};

// Every kernel gives the bits of every other.
struct Kernel {
  // At a temperature T [K], of `count` components; with or without the logarithms.
  void (*vibrate)(const std::size_t* components, std::size_t count, double T, bool with_logarithms,
                  VibrationParts& parts) noexcept;
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
