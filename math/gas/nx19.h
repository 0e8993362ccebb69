// NX-19: supercompressibility of natural gas from specific gravity, carbon dioxide and nitrogen.
//
// Source: American Gas Association, Manual for the determination of supercompressibility factors for natural gas
// (1962), specific gravity method and methane method, for reduced pressures up to 2.
#pragma once

#include "core/outcome.h"

namespace norvane::NX19 {

// How pressure and temperature are adjusted to the gas.
enum class Method : int { specific_gravity = 1, methane = 2 };

struct Arguments {
  double pressure = 0.0;          // absolute [psi]
  double temperature = 0.0;       // [degF]
  double specific_gravity = 0.0;  // of the gas, air = 1
  double carbon_dioxide = 0.0;    // mole fraction
  double nitrogen = 0.0;          // mole fraction
  double methane = 0.0;           // mole fraction, of the methane method only
  Method method = Method::specific_gravity;
};

struct Result {
  double z = 0.0;             // 1/Fpv^2: compressibility factor over that at 14.7 psi and 60 degF
  bool out_of_range = false;  // composition or temperature outside the limits of the method
};

// Status 1: an argument that no gas has. Status 2: no equation of the report covers the state.
Outcome calculate(const Arguments& in, Result& out) noexcept;

// ---- The equation in reduced variables, also for the standards that take it over ----------------------------------

struct Reduced {
  double pressure;     // Pi
  double temperature;  // tau
};

// Where the correction E has which form. Region 4 continues region 3 below tau = 0.88.
//   1: Pi 0 to 2, tau 1.09 to 1.4      2: Pi 0 to 1.3, tau 0.84 to 1.09
//   3: Pi 1.3 to 2, tau 0.88 to 1.09   4: Pi 1.3 to 2, tau 0.84 to 0.88
// 0 outside all of them.
int region(const Reduced& reduced) noexcept;

// 1/Fpv^2 in a region 1 to 4. n4 is the coefficient of tau^-4 in m n, which GOST 30319.2 prints rounded.
// False when the equation has no solution.
bool compressibility(const Reduced& reduced, int region, double n4, double& z) noexcept;
inline constexpr double n4_as_reported = 0.0457697;

}  // namespace norvane::NX19
