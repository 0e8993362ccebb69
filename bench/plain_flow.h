// Orifice plates transcribed as ISO 5167-2:2003 and AGA Report No. 3 (1992) print them, with the C library's functions:
// the baselines of the ratios. Pressure, temperature and density are measured upstream, the tappings are those of a
// flange; nothing is checked.
#pragma once

#include <cmath>
#include <numbers>

#include "math/flow/differential_pressure.h"

namespace norvane::bench {

// In the order of the functions' outputs, in the units of the standards.
struct PlainOrifice {
  double mass_rate = 0, beta, d, D, pressure[3], temperature[3], density[3], reynolds, C, expansion, approach;
};

namespace plain {

inline void set_geometry(PlainOrifice& o, const differential_pressure::Measurement& m,
                         const differential_pressure::Geometry& g) {
  o.D = g.pipe_diameter * (1.0 + g.pipe_expansion * (m.temperature - g.pipe_reference_temperature));
  o.d = g.device_diameter * (1.0 + g.device_expansion * (m.temperature - g.device_reference_temperature));
  o.beta = o.d / o.D;
  o.approach = 1.0 / std::sqrt(1.0 - std::pow(o.beta, 4));
}

// Temperatures and densities from the pressures, by the isentropic exponent.
inline void set_states(PlainOrifice& o, const differential_pressure::Measurement& m, double zero) {
  for (int i = 0; i < 3; ++i) {
    const double ratio = o.pressure[i] / o.pressure[0];
    o.temperature[i] = (m.temperature + zero) * std::pow(1.0 / ratio, (1.0 - m.kappa) / m.kappa) - zero;
    o.density[i] = m.density * std::pow(ratio, 1.0 / m.kappa);
  }
}

// Reader-Harris/Gallagher; D in mm.
inline double discharge_coefficient(double b, double D, double L1, double L2, double Re) {
  const double A = std::pow(19000.0 * b / Re, 0.8), M = 2.0 * L2 / (1.0 - b), b4 = std::pow(b, 4);
  double C =
      0.5961 + 0.0261 * b * b - 0.216 * std::pow(b, 8) + 0.000521 * std::pow(1e6 * b / Re, 0.7) +
      (0.0188 + 0.0063 * A) * std::pow(b, 3.5) * std::fmax(std::pow(1e6 / Re, 0.3), 22.7 - 0.0047 * Re) +
      (0.043 + 0.080 * std::exp(-10.0 * L1) - 0.123 * std::exp(-7.0 * L1)) * (1.0 - 0.11 * A) * b4 / (1.0 - b4) -
      0.031 * (M - 0.8 * std::pow(M, 1.1)) * std::pow(b, 1.3) * (1.0 + 8.0 * std::fmax(std::log10(3700.0 / Re), 0.0));
  if (D < 71.12) C += 0.011 * (0.75 - b) * (2.8 - D / 25.4);
  return C;
}

}  // namespace plain

// mbar, bar, degC, kg/m3, Pa s, mm; kg/s.
inline PlainOrifice plain_iso5167(const differential_pressure::Measurement& m,
                                  const differential_pressure::Geometry& g) {
  PlainOrifice o;
  plain::set_geometry(o, m, g);
  const double p1 = m.pressure, p2 = p1 - m.dp / 1000.0, b4 = std::pow(o.beta, 4), L = 25.4 / o.D;
  o.expansion = 1.0 - (0.351 + 0.256 * b4 + 0.93 * std::pow(o.beta, 8)) * (1.0 - std::pow(p2 / p1, 1.0 / m.kappa));
  o.reynolds = 1e5;
  for (int round = 1; round <= 25; ++round) {
    const double previous = o.mass_rate;
    o.C = plain::discharge_coefficient(o.beta, o.D, L, L, o.reynolds);
    o.mass_rate = o.C * o.approach * o.expansion * std::numbers::pi / 4.0 * std::pow(o.d / 1000.0, 2) *
                  std::sqrt(200.0 * m.dp * m.density);
    o.reynolds = 4.0 * o.mass_rate / (std::numbers::pi * m.viscosity * o.D / 1000.0);
    if (round >= 2 && std::fabs(previous - o.mass_rate) <= 1e-12) break;
  }
  const double root = std::sqrt(1.0 - b4 * (1.0 - o.C * o.C)), Cb2 = o.C * o.beta * o.beta;
  o.pressure[0] = p1;
  o.pressure[1] = p2;
  o.pressure[2] = p1 - (root - Cb2) / (root + Cb2) * m.dp / 1000.0;
  plain::set_states(o, m, 273.15);
  return o;
}

// Part 4 of the report: inH2O, psia, degF, lbm/ft3, cP, in; lbm/h.
inline PlainOrifice plain_aga3(const differential_pressure::Measurement& m,
                               const differential_pressure::Geometry& g) {
  constexpr double N3 = 27.7070, NIc = 6.23582e-4, N = 253.9025184025;
  PlainOrifice o;
  plain::set_geometry(o, m, g);
  const double b = o.beta, b4 = std::pow(b, 4), p1 = m.pressure, p2 = p1 - m.dp / N3;
  o.expansion = 1.0 - (0.41 + 0.35 * b4) * m.dp / (N3 * p1) / m.kappa;
  const double L1 = 1.0 / o.D, M2 = 2.0 * L1 / (1.0 - b);
  const double Tu = (0.0433 + 0.0712 * std::exp(-8.5 * L1) - 0.1145 * std::exp(-6.0 * L1)) * b4 / (1.0 - b4);
  const double Td = -0.0116 * (M2 - 0.52 * std::pow(M2, 1.3)) * std::pow(b, 1.1);
  const double Ts = o.D <= 2.8 ? 0.003 * (1.0 - b) * (2.8 - o.D) : 0.0;
  const double C0 = 0.5961 + 0.0291 * b * b - 0.229 * std::pow(b, 8) + Tu + Td + Ts;
  const double C1 = 0.000511 * std::pow(250.0 * b, 0.7), C2 = 0.021 * b4 * std::pow(250.0, 0.35);
  const double C3 = 0.0049 * b4 * std::pow(4.75 * b, 0.8) * std::pow(250.0, 0.35);
  const double C4 = (-0.23 * Tu - 0.14 * Td) * std::pow(4.75 * b, 0.8);
  const double FIp = std::sqrt(2.0 * m.density * m.dp);
  const double FI =
      std::fmin(4000.0 * NIc * o.D * m.viscosity / (o.approach * o.expansion * o.d * o.d * FIp), 1000.0);
  constexpr double Xc = 1.142139337256165, A = 4.343524261523267, B = 3.764387693320165;
  o.C = C0;
  for (int step = 1; step <= 20; ++step) {
    const double X = FI / o.C, X_0_7 = std::pow(X, 0.7), X_0_8 = std::pow(X, 0.8);
    const double D = X < Xc ? std::pow(X, 0.35) : A - B / X, dD = X < Xc ? 0.35 * D : B / X;
    const double F = C0 + C1 * X_0_7 + (C2 + C3 * X_0_8) * D + C4 * X_0_8;
    const double dF = 0.7 * C1 * X_0_7 + (C2 + C3 * X_0_8) * dD + 0.8 * C3 * X_0_8 * D + 0.8 * C4 * X_0_8;
    const double change = (o.C - F) / (1.0 + dF / o.C);
    o.C -= change;
    if (std::fabs(change) < 0.000005) break;
  }
  o.mass_rate = N * o.approach * o.expansion * o.d * o.d * o.C * FIp;
  o.reynolds = 48.0 * o.mass_rate / (3600.0 * std::numbers::pi * o.D * m.viscosity / 1488.16394356955);
  o.pressure[0] = p1;
  o.pressure[1] = o.pressure[2] = p2;
  plain::set_states(o, m, 459.67);
  return o;
}

}  // namespace norvane::bench
