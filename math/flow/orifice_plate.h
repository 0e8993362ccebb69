// Orifice plates after ISO 5167-2:2003, the parts that GOST 8.586.2-2005 has in common with it.
//
//   beta  d/D at the upstream temperature [-]       L1   distance of the upstream tapping from the plate / D
//   D     pipe diameter [mm]                        L2'  distance of the downstream tapping from the plate's
//   A     (19000 beta/Re_D)^0.8                          downstream face / D
//   M2'   2 L2'/(1 - beta)                          E    1/sqrt(1 - beta^4)
#pragma once

#include <algorithm>
#include <cmath>
#include <numbers>

#include "core/elementary.h"

namespace norvane::orifice_plate {

inline constexpr double mm_per_inch = 25.4;

// Geometry at the upstream temperature.
struct Flowing {
  double D = 0.0;  // [mm]
  double d = 0.0;  // [mm]
  double beta = 0.0;
  double beta2 = 0.0;
  double beta4 = 0.0;
  double E = 0.0;

  // False where no flow can be computed: a diameter of zero or below, a device as wide as the pipe.
  bool set(double pipe, double device) noexcept {
    D = pipe;
    d = device;
    beta = d / D;
    beta2 = beta * beta;
    beta4 = beta2 * beta2;
    E = 1.0 / std::sqrt(1.0 - beta4);
    return D > 0.0 && d > 0.0 && beta4 < 1.0 && std::isfinite(D) && std::isfinite(E);
  }
};

// (e^y - 1)/y. The series holds 1e-17 below 0.1, where the quotient loses digits.
inline double relative_growth(double y) noexcept {
  if (std::fabs(y) > 0.1) return (elementary::exp(y) - 1.0) / y;
  double sum = 1.0;
  for (int n = 10; n >= 2; --n) sum = 1.0 + y / n * sum;
  return sum;
}

// Expansibility, ISO 5167-2:2003, 5.3.2.2, equation (5), from ln(p2/p1).
inline double expansibility(double log_tau, double kappa, double beta4) noexcept {
  return 1.0 - (0.351 + 0.256 * beta4 + 0.93 * beta4 * beta4) * (1.0 - elementary::exp(log_tau / kappa));
}

// The least Reynolds number, ISO 5167-2:2003, 5.3.1. D [mm].
inline double least_reynolds(bool flange, double beta, double D) noexcept {
  const double beta2 = beta * beta;
  if (flange) return std::max(5000.0, 170.0 * beta2 * D);
  return beta <= 0.56 ? 5000.0 : 16000.0 * beta2;
}

// Discharge coefficient of Reader-Harris and Gallagher, ISO 5167-2:2003, 5.3.2.1, equation (4).
struct ReaderHarrisGallagher {
  static constexpr double A_of_one = 0.0419761768345636991;  // (19000/10^6)^0.8: A where beta is 1 and Re 10^6

  // Terms that the Reynolds number does not enter.
  double constant = 0.0;
  double reynolds_factor = 0.0;    // on (10^6/Re)^0.7
  double A_factor = 0.0;           // A = A_factor (10^6/Re)^0.8
  double beta_3_5 = 0.0;           // beta^3.5
  double upstream_factor = 0.0;    // on 1 - 0.11 A
  double downstream_factor = 0.0;  // on the low-Reynolds factor

  void set(const Flowing& f, double L1, double L2) noexcept {
    const auto cube = [](double x) { return x * x * x; };
    const double tenth = elementary::pow(f.beta, 0.1);
    const double tenth2 = tenth * tenth;
    const double beta_0_7 = cube(tenth2) * tenth;
    const double M2 = 2.0 * L2 / (1.0 - f.beta);
    const double M2_1_1 = M2 > 0.0 ? M2 * elementary::pow(M2, 0.1) : 0.0;
    const double small_pipe = f.D < 2.8 * mm_per_inch ? 0.011 * (0.75 - f.beta) * (2.8 - f.D / mm_per_inch) : 0.0;
    constant = 0.5961 + 0.0261 * f.beta2 - 0.216 * f.beta4 * f.beta4 + small_pipe;
    reynolds_factor = 0.000521 * beta_0_7;
    A_factor = A_of_one * beta_0_7 * tenth;
    beta_3_5 = f.beta2 * f.beta * std::sqrt(f.beta);
    // With corner tappings the three terms add up to nothing.
    const double tap =
        L1 > 0.0 ? 0.043 + 0.080 * elementary::exp(-10.0 * L1) - 0.123 * elementary::exp(-7.0 * L1) : 0.0;
    upstream_factor = tap * f.beta4 / (1.0 - f.beta4);
    downstream_factor = -0.031 * (M2 - 0.8 * M2_1_1) * f.beta * tenth2 * tenth;
  }

  // C at Re_D; `completed` adds what continues the equation below Reynolds numbers of 3700.
  double C(double Re, bool completed) const noexcept {
    // The powers 0.3, 0.7 and 0.8 of one ratio: a root and products.
    const double tenth = elementary::pow(1e6 / Re, 0.1);
    const double ratio_0_3 = tenth * tenth * tenth;
    const double ratio_0_7 = ratio_0_3 * ratio_0_3 * tenth;
    const double A = A_factor * ratio_0_7 * tenth;
    const double low_reynolds =
        completed && Re < 3700.0 ? 1.0 + 8.0 * elementary::log(3700.0 / Re) / std::numbers::ln10 : 1.0;
    return constant + reynolds_factor * ratio_0_7 +
           (0.0188 + 0.0063 * A) * beta_3_5 * (completed ? std::max(ratio_0_3, 22.7 - 0.0047 * Re) : ratio_0_3) +
           upstream_factor * (1.0 - 0.11 * A) + downstream_factor * low_reynolds;
  }
};

}  // namespace norvane::orifice_plate
