// AGA-8 by the vector instructions of the processor. For the files of the equation and of those that build on it.
#pragma once

#include <array>
#include <cstddef>

#include "core/kernel.h"
#include "math/gas/aga8.h"

namespace norvane::AGA8 {

// Sums of the coefficients of the pairs: ten of the virial coefficient, those of U^5 and K^5.
using PairSums = std::array<double, 12>;

// Every kernel gives the bits of every other.
struct Kernel {
  void (*sum_pairs)(const Composition& x, PairSums& sums) noexcept;
  // Of one state: Isotherm::set, pressure and density, ResidualIsotherm::set and at.
  void (*set)(Isotherm& isotherm, const Mixture& mixture, double T) noexcept;
  double (*pressure)(const Isotherm& isotherm, double rho) noexcept;
  bool (*density)(const Isotherm& isotherm, double p, double& rho) noexcept;
  void (*set_residual)(ResidualIsotherm& isotherm, const Mixture& mixture, double T) noexcept;
  helmholtz::Residual (*residual)(const ResidualIsotherm& isotherm, double rho) noexcept;
  // Densities [kmol/m3] of rows with one mixture at temperatures T [K] and pressures p [MPa]. NaN where the search finds
  // none, and in rare rows that are left to Isotherm::density.
  void (*densities)(const Mixture& mixture, const double* T, const double* p, double* rho, std::size_t rows) noexcept;
  // The same with a composition a row, none with negative or infinite fractions or NaN, and its molar mass [kg/kmol].
  void (*gases)(const Composition* const* x, const double* T, const double* p, double* rho, double* molar_mass,
                std::size_t rows) noexcept;
  // Residual Helmholtz energy and its derivatives at temperatures [K] and densities [kmol/m3] of one mixture.
  void (*residuals)(const Mixture& mixture, const double* T, const double* rho, helmholtz::Residual* residuals,
                    std::size_t rows) noexcept;
};

// The one of an instruction set; null where the program has none for it. Runs on processors with these instructions only.
const Kernel* kernel(InstructionSet set) noexcept;
// The one in use.
const Kernel& kernel() noexcept;

}  // namespace norvane::AGA8
