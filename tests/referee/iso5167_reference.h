// ISO 5167, orifice plates, as the standard prints it (editions 1991, 1998 and 2003), the mass flow rate iterated to its
// end.
#pragma once

#include "math/flow/iso5167.h"
#include "tests/referee/quad.h"

namespace norvane::referee {

struct OrificeFlow {
  Real C = 0, epsilon = 0, q_m = 0;  // [-], [-], [kg/s]
  Real p3 = 0;                       // [bar]
  bool settled = false;
};

inline OrificeFlow orifice_flow(const ISO5167::OrificeArguments& given) {
  using namespace ISO5167;
  using differential_pressure::Fluid;
  using differential_pressure::Location;
  using differential_pressure::TemperatureCorrection;
  const Measurement& m = given.device.measured;
  const Geometry& g = given.device.geometry;
  const Real dp = m.dp, kappa = m.kappa;
  const Real p1 = m.pressure_location == Location::upstream ? Real(m.pressure) : m.pressure + dp / 1000;
  const Real p2 = p1 - dp / 1000;
  const Real n_rho = m.density_exponent != 0 ? Real(m.density_exponent) : 1 / kappa;
  const Real n_T =
      m.temperature_correction == TemperatureCorrection::isentropic ? (1 - kappa) / kappa : m.temperature_exponent;

  OrificeFlow flow;
  flow.p3 = p2;
  for (int round = 0; round < 400; ++round) {
    const auto pressure = [&](Location at) {
      return at == Location::upstream ? p1 : at == Location::downstream ? p2 : flow.p3;
    };
    const Real p_T = pressure(m.temperature_location), p_rho = pressure(m.density_location);
    const Real T1 = m.temperature_correction == TemperatureCorrection::joule_thomson
                        ? m.temperature + (p1 - p_T) * n_T
                        : (m.temperature + 273.15_r) * pow(p_T / p1, n_T) - 273.15_r;
    const Real rho1 = m.density * pow(p1 / p_rho, n_rho);
    const Real D = g.pipe_diameter * (1 + g.pipe_expansion * (T1 - g.pipe_reference_temperature));
    const Real d = g.device_diameter * (1 + g.device_expansion * (T1 - g.device_reference_temperature)) *
                   (1 + 0.55_r * square(Real(given.drain_hole) / g.device_diameter));
    const Real beta = d / D;
    const Real beta4 = pow(beta, 4), beta8 = pow(beta, 8);

    const Real tau = p2 / p1;
    if (m.fluid == Fluid::liquid)
      flow.epsilon = 1;
    else if (given.edition == Edition::y2003)
      flow.epsilon = 1 - (0.351_r + 0.256_r * beta4 + 0.93_r * beta8) * (1 - pow(tau, 1 / kappa));
    else
      flow.epsilon = 1 - (0.41_r + 0.35_r * beta4) * (1 - tau) / kappa;

    const Real Re = round == 0 ? 100000 : 4 * flow.q_m / (pi * m.viscosity * D / 1000);
    Real L1 = 0, L2 = 0;
    if (given.tappings == Tappings::d_and_half_d) {
      L1 = 1;
      L2 = 0.47_r;
    } else if (given.tappings == Tappings::flange) {
      L1 = L2 = 25.4_r / D;
    }
    if (given.edition == Edition::y1991) {
      flow.C = 0.5959_r + 0.0312_r * pow(beta, 2.1_r) - 0.184_r * beta8 +
               0.0029_r * pow(beta, 2.5_r) * pow(1000000 / Re, 0.75_r) +
               (L1 < 0.4333_r ? 0.0900_r * L1 : 0.0390_r) * beta4 / (1 - beta4) - 0.0337_r * L2 * pow(beta, 3);
    } else {
      const Real A = pow(19000 * beta / Re, 0.8_r), M2 = 2 * L2 / (1 - beta);
      // What continues the equation below Reynolds numbers of 3700 is Reader-Harris's.
      Real ratio = pow(1000000 / Re, 0.3_r), factor = 1;
      if (22.7_r - 0.0047_r * Re > ratio) ratio = 22.7_r - 0.0047_r * Re;
      if (Re < 3700) factor += 8 * log(3700 / Re) / log(Real(10));
      flow.C = 0.5961_r + 0.0261_r * square(beta) - 0.216_r * beta8 + 0.000521_r * pow(1000000 * beta / Re, 0.7_r) +
               (0.0188_r + 0.0063_r * A) * pow(beta, 3.5_r) * ratio +
               (0.043_r + 0.080_r * exp(-10 * L1) - 0.123_r * exp(-7 * L1)) * (1 - 0.11_r * A) * beta4 / (1 - beta4) -
               0.031_r * (M2 - (M2 > 0 ? 0.8_r * pow(M2, 1.1_r) : 0)) * pow(beta, 1.3_r) * factor;
      if (D < 71.12_r) flow.C += 0.011_r * (0.75_r - beta) * (2.8_r - D / 25.4_r);
    }

    const Real root = sqrt(1 - beta4 * (1 - square(flow.C)));
    flow.p3 = p1 - (root - flow.C * square(beta)) / (root + flow.C * square(beta)) * dp / 1000;
    const Real before = flow.q_m;
    // dp in mbar and d in mm.
    flow.q_m = flow.C / sqrt(1 - beta4) * flow.epsilon * pi / 4 * square(d / 1000) * sqrt(2 * 100 * dp * rho1);
    flow.settled = abs(flow.q_m - before) < 1e-30_r * flow.q_m;
    if (flow.settled || !(flow.q_m > 0) || !(flow.p3 > 0)) break;
  }
  return flow;
}

}  // namespace norvane::referee
