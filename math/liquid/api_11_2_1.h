// API MPMS Chapter 11.2.1 and 11.2.1M: compressibility factors for hydrocarbons, 0 to 90 degAPI and 638 to
// 1074 kg/m3. Full precision: the rounding of the printed chapters is refused.
#pragma once

#include "math/common/dual.h"
#include "math/liquid/compressibility.h"

namespace norvane::API_11_2_1 {

struct Coefficients {
  double a, b, c, d;
  double factor;
};
// F = factor exp(a + b t + (c + d t)/rho^2)
inline constexpr Coefficients customary = {-1.9947, 0.00013427, 793920, 2326.0, 1e-5};  // 60 degF; degF, 1/psi
inline constexpr Coefficients metric = {-1.62080, 0.00021592, 870960, 4209.2, 1e-6};    // 15 degC; degC, 1/kPa

// rho: density at the base temperature [kg/m3].
template <class Number>
Number compressibility(const Coefficients& k, Number rho, double t) noexcept {
  return k.factor * exponential((k.a + k.b * t) + (k.c + k.d * t) / (rho * rho));
}

// Whether the density at the base temperature or the temperature lie outside the chapter.
bool out_of_range(double rho60, double degF) noexcept;
bool out_of_range_metric(double rho15, double degC) noexcept;

// Density at 60 degF [kg/m3], degF, psi gauge: CPL and F in 1/psi. Below the equilibrium pressure CPL is 1.
// Errors: argument_error for what is not finite, a density that is not positive, rounding; calculation_error where
// F is no positive number or F times the pressure reaches 1.
Outcome factor(const liquid::Compression& in, liquid::Compressed& out) noexcept;
// Density at 15 degC [kg/m3], degC, bar gauge: CPL and F in 1/kPa.
Outcome factor_metric(const liquid::Compression& in, liquid::Compressed& out) noexcept;

}  // namespace norvane::API_11_2_1
