// API MPMS Chapter 11.2.2 and 11.2.2M: compressibility factors for hydrocarbons, relative density 60/60 degF 0.350 to
// 0.637. Full precision: the rounding of the printed chapters is refused.
//
// The metric chapter prints the same correlation for 350 to 637 kg/m3 at 15 degC. The way from that density to the
// relative density at 60 degF is ours, Table 23E at 59 degF.
#pragma once

#include "math/liquid/compressibility.h"

namespace norvane::API_11_2_2 {

// F = 1/(A + B d) in 1/psi, d in psi above equilibrium. A and B are polynomials in the relative density G, with
// coefficients that depend on the temperature.
class Correlation {
 public:
  explicit Correlation(double degF) noexcept;

  // A + B d. F is its inverse where it is positive; where it is not, the correlation has no answer.
  template <class Number>
  Number inverse_compressibility(Number g, Number d) const noexcept {
    const Number g2 = g * g;
    const Number a = a0_ + a1_ * g + (a2_ + (a4_ + a6_ * g2) * g2) * g2;
    const Number b = b0_ + b1_ * g + b2_ * g2;
    return a + b * d;
  }

 private:
  double a0_, a1_, a2_, a4_, a6_;  // psi
  double b0_, b1_, b2_;
};

// Outside 0.350 to 0.637, -50 to 140 degF or above 0.96 of the critical temperature of the chapter.
bool out_of_range(double g, double degF) noexcept;
bool near_critical(double g, double degF) noexcept;  // above 0.96 of that

// Relative density at 60 degF, degF, psi gauge: CPL and F in 1/psi. Below the equilibrium pressure CPL is 1 and F that
// of the equilibrium pressure.
// Errors: argument_error for what is not finite, a density that is not positive, rounding; calculation_error where F
// is no positive number, F times the pressure reaches 1 or, metric, Table 23E has no relative density.
Outcome factor(const liquid::Compression& in, liquid::Compressed& out) noexcept;
// Density at 15 degC [kg/m3], degC, bar gauge: CPL and F in 1/kPa.
Outcome factor_metric(const liquid::Compression& in, liquid::Compressed& out) noexcept;

}  // namespace norvane::API_11_2_2
